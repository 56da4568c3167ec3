#pragma once

#include "shell/render/gl_objects.hpp"
#include "shell/render/light_sampler.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/result_check.hpp"
#include "shell/render/shader_assembly.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace korl {

/// Assembles the lighting shader of the lights in a frame that has begun.
AssembledShader assembleFrame(const View& view);

/// Draws with the lights' GLSL snippets. Every light is evaluated per fragment, in scene space.
///
/// A program is compiled when a combination of snippets comes up for the first time, and a uniform is
/// uploaded when its value has changed since; a steady frame allocates nothing. Light sources that share a
/// snippet, from a few of them on, are evaluated in a loop over values in a buffer (see assembleShader), so
/// that a program compiles as fast for a thousand lights of a type as for one.
class ShaderPath {
public:
    /// Has every light of the frame fill its uniforms: those that are not shader lights do it while they set
    /// up their fixed-function light, and find light number 1 and OpenGL's light state as it was before for
    /// each of them.
    void fillUniforms(View& view, const Viewpoint& viewpoint);

    /// Draws the meshes under the lights of the frame, into the framebuffer and viewport that are current. A
    /// light whose result is not finite adds nothing there and is reported by name; so is one that writes
    /// other uniforms than its snippet declares. Throws Error if the driver refuses a light's snippet, or a
    /// uniform's value for its declared type, and for more values of lights than the driver's buffers hold.
    void draw(const View& view, const Viewpoint& viewpoint, const MeshBufferCache& meshes, Reports& reports);

    /// What evaluates single lights.
    LightSampler& sampler() noexcept { return my_sampler; }

    /// How many programs were compiled, and how many light uniforms and buffers of them were uploaded, so
    /// far.
    std::size_t compileCount() const noexcept { return my_compile_count; }
    std::size_t uploadCount() const noexcept { return my_upload_count; }

private:
    struct Uniform {
        GLint location;
        bool uploaded = false;
        Qelt::RenderNamespace::UniformValue value;
    };

    /// A snippet of a lighting program.
    struct Section {
        std::string suffix;
        bool is_repeated = false;
        std::map<std::string, Uniform, std::less<>> uniforms; ///< by name with its "$$"; not repeated
        std::uint64_t served = 0; ///< the serial number of the source whose values these are; 0 for none
        /// What a repeated one has instead: its variables and the values that they are declared with.
        std::vector<UniformDeclaration> variables;
        std::vector<std::array<float, 4>> declared_values;
        GLint first = -1, count = -1; ///< locations
    };

    struct LightingProgram {
        Program program;
        GLint view, projection, eye, specular, shininess, lights;
        std::vector<Section> sections;
    };

    /// Which program serves the light sources of a frame, and which of them each of its sections serves.
    struct ProgramAssignment {
        LightingProgram* lighting = nullptr;
        std::vector<std::vector<std::size_t>> sources;
    };

    /// The values of the lights that are evaluated in loops, as the program reads them.
    struct LightTexels {
        Buffer buffer;
        Texture texture;
        std::vector<std::array<float, 4>> values, uploaded;

        /// Has the program in use read the values through its sampler. @returns whether they were uploaded.
        bool bind(GLint sampler);
    };

    const ProgramAssignment& assignmentFor(const View& view, Reports& reports);
    std::unique_ptr<LightingProgram> build(const AssembledShader& shader,
                                           std::span<const LightSnippet> snippets, const View& view,
                                           const std::vector<std::vector<std::size_t>>& sources);
    void reportNotFinite(const View& view, Reports& reports) const;
    /// Brings the uniforms that a section's last light source has set, and this one does not, back to the
    /// values that the snippet declares.
    void resetToDeclared(const Qelt::RenderNamespace::LightSource& source, const std::string& light_name,
                         Section& section);
    void uploadSingle(const View& view, std::size_t source, const LightingProgram& lighting,
                      Section& section);
    void packInstances(const View& view, const std::vector<std::size_t>& sources, const Section& section);
    void uploadLights(const View& view, const ProgramAssignment& assignment);

    std::map<std::string, std::unique_ptr<LightingProgram>>
        my_programs; ///< by the text of the fragment shader
    std::map<std::vector<std::uint64_t>, ProgramAssignment>
        my_assignments;                                         ///< by the serial numbers of the sources
    std::unordered_map<std::uint64_t, std::string> my_snippets; ///< by the serial number of the source
    std::vector<std::uint64_t> my_serials;                      ///< of the frame; kept for its capacity
    std::unique_ptr<LightTexels> my_texels;                     ///< once there are lights for it
    LightSampler my_sampler;
    ResultCheck my_result_check;
    std::size_t my_compile_count = 0;
    std::size_t my_upload_count = 0;
};

} // namespace korl
