#pragma once

#include "shell/render/gl_objects.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/shader_assembly.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace korl {

/// Assembles the lighting shader of the lights in a frame that has begun.
AssembledShader assembleFrame(const View& view);

/// Draws with the lights' GLSL snippets. Every light is evaluated per fragment, in scene space.
///
/// A program is compiled when a combination of snippets comes up for the first time, and a uniform is
/// uploaded when its value has changed since; a steady frame allocates nothing.
class ShaderPath {
public:
    /// Has every light of the frame fill its uniforms: those that are no shader lights do it while they set
    /// up their fixed-function light, and find light number 1 and OpenGL's light state as it was before for
    /// each of them.
    void fillUniforms(View& view, const Viewpoint& viewpoint);

    /// Draws the meshes under the lights of the frame, into the framebuffer and viewport that are current. A
    /// light whose result is not finite adds nothing; one that has such a uniform is reported by name. Throws
    /// Error if the driver refuses a light's snippet, or a uniform's value for its declared type.
    void draw(const View& view, const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes,
              Reports& reports);

    /// How many programs were compiled, and how many light uniforms were uploaded, so far.
    std::size_t compileCount() const noexcept { return my_compile_count; }
    std::size_t uploadCount() const noexcept { return my_upload_count; }

private:
    struct Uniform {
        GLint location;
        bool uploaded = false;
        Qelt::RenderNamespace::UniformValue value;
    };

    struct LightingProgram {
        Program program;
        GLint view, projection, eye, specular, shininess;
        std::vector<std::string> suffixes; ///< one for each light source
        std::vector<std::map<std::string, Uniform, std::less<>>>
            uniforms; ///< likewise, by name with its "$$"
    };

    LightingProgram& programFor(const View& view);
    void uploadLights(const View& view, LightingProgram& lighting, Reports& reports);

    std::map<std::string, std::unique_ptr<LightingProgram>>
        my_programs; ///< by the text of the fragment shader
    std::map<std::vector<std::uint64_t>, LightingProgram*>
        my_lineups;                                             ///< by the serial numbers of the sources
    std::unordered_map<std::uint64_t, std::string> my_snippets; ///< by the serial number of the source
    std::vector<std::uint64_t> my_serials;                      ///< of the frame; kept for its room
    std::size_t my_compile_count = 0;
    std::size_t my_upload_count = 0;
};

} // namespace korl
