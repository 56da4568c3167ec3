#pragma once

#include "shell/render/gl_objects.hpp"
#include "shell/render/gl_state.hpp"

#include <doltra/light_source.hpp>
#include <glm/vec3.hpp>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korl {

/// What a light gives at a place.
struct LightSample {
    glm::vec3 incidence; ///< the direction in which the light travels, in scene space; zero for ambient light
    glm::vec3 intensity;
    glm::vec3 specular_intensity;

    bool isFinite() const;
};

/// Evaluates lights one by one, in the driver: a light's snippet, with the values that its uniforms have. A
/// context must be current. What glPushAttrib keeps of its state is left as it was, and so are its
/// framebuffers. No program, vertex array or buffer texture stays bound, and pixels are read as
/// `setReadingState` says.
class LightSampler {
public:
    /// What a light source gives at points in scene space.
    /// @param light_name by which errors speak of the light.
    /// @param eye in scene space, for snippets that ask for the direction of view.
    /// Throws Error if the driver refuses the snippet, or a uniform's value for its declared type.
    std::vector<LightSample> sample(const Qelt::RenderNamespace::LightSource& source,
                                    const std::string& light_name, std::span<const glm::vec3> points,
                                    const glm::vec3& eye);

    /// The same at the points of a buffer, which holds `count` of them, three floats each.
    std::vector<LightSample> sample(const Qelt::RenderNamespace::LightSource& source,
                                    const std::string& light_name, const Buffer& points, int count,
                                    const glm::vec3& eye);

    /// The most points that the driver of the current context can take at once.
    static int maxPoints();

    /// The value that a uniform of floats has as the light source's snippet declares it, before any is set;
    /// zeros where the program does without it.
    /// @param uniform its name, with "$$".
    std::array<float, 4> declaredValue(const Qelt::RenderNamespace::LightSource& source,
                                       const std::string& light_name, const std::string& uniform);

private:
    struct Target {
        Framebuffer framebuffer;
        std::array<Renderbuffer, 3> outputs;
        int rows = 0;
    };
    /// A uniform of floats, and the value that it is declared with.
    struct Declared {
        std::string name; ///< with "$$"
        GLint location;   ///< -1 where the program does without it
        int size;
        std::array<float, 4> value;
    };
    struct SnippetProgram {
        Program program;
        std::string suffix;
        std::vector<Declared> declared;
    };

    SnippetProgram& programFor(const Qelt::RenderNamespace::LightSource& source,
                               const std::string& light_name);
    void bindTarget(int count);

    std::map<std::string, SnippetProgram, std::less<>> my_programs; ///< by the snippet
    std::unique_ptr<Target> my_target;
    std::optional<DrawingState> my_drawing_state; ///< once a context was there to ask
};

} // namespace korl
