#pragma once

#include "shell/render/glsl_text.hpp"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korl {

/// The GLSL text that one light source hands to the renderer, under the name by which errors speak of it.
struct LightSnippet {
    std::string light_name;
    std::string text;
    /// Whether it stands for any number of light sources that have the same text: the shader holds it once
    /// and evaluates it in a loop.
    bool is_repeated = false;
};

/// Where the snippet of one light source, or of those that share it, lies in the assembled fragment shader.
struct SnippetSection {
    std::string light_name;
    std::string suffix; ///< What replaces "$$" in this snippet, and in the names of its uniforms.
    int first_line = 0; ///< Of the fragment source, counted from 1.
    int line_count = 0;
    /// For a repeated snippet: the uniforms that have become variables, in the order in which the loop fills
    /// them.
    std::vector<UniformDeclaration> uniforms{};
};

/// A lighting shader as text, ready for the driver.
struct AssembledShader {
    std::string vertex;
    std::string fragment;
    std::vector<SnippetSection> sections; ///< One per snippet, in the order in which they were given.
};

inline constexpr std::array<int, 4> glsl_versions{120, 130, 330, 450};
inline constexpr int default_glsl_version = 330;

/// The vertex attributes; the index is the location to which a program binds the name. Position and normal
/// are vec3 in scene space, the colour is a vec4 (alpha 1 where the vertices have three components).
inline constexpr std::array<const char*, 3> vertex_attribute_names{"korl_position", "korl_normal",
                                                                   "korl_color"};

/// Replaces each "$$" of a snippet or of a uniform's name by the light source's suffix; from the left, so
/// "$$$" becomes the suffix and a "$".
std::string applySuffix(std::string_view name, std::string_view suffix);

/// Joins the snippets of the light sources into a lighting shader. Every light is evaluated per fragment, in
/// scene space, where light and material meet by the Blinn-Phong model (J. F. Blinn, "Models of Light
/// Reflection for Computer Synthesized Pictures", 1977) as OpenGL's fixed-function lighting has it, one-sided
/// and with a local viewer: the material's ambient and diffuse colours are the vertex colour, its specular
/// colour is white times korl_specular, its exponent korl_shininess.
///
/// - A zero incidence is ambient light: intensity times diffuse colour, whatever the normal.
/// - A light with a NaN or an infinity in any of its three outputs adds nothing.
/// - The sum is clamped to 0..1; alpha is 1. No light at all gives black.
///
/// Uniforms: mat4 korl_view (scene to eye space), mat4 korl_projection, vec3 korl_eye (scene space), float
/// korl_specular, float korl_shininess. Each snippet stays as it is but for its "$$". Each function that a
/// snippet imports by `#pragma import "NAME"` is defined once, before all snippets. The text depends on the
/// snippets and the version alone, not on the lights' names, so a program can be cached by it.
///
/// A repeated snippet's uniforms become variables. For each of `int korl_count_SUFFIX` light sources they are
/// filled from the buffer `samplerBuffer korl_lights` of four floats a texel: one texel for each uniform, in
/// the order of their declaration, from the texel `int korl_first_SUFFIX` on, light source after light
/// source. However many there are, the text is the same; unrolled, the time to compile it grows faster than
/// their number.
///
/// Throws Error for a GLSL version other than glsl_versions, an import that is unknown or can't be read, a
/// snippet that does not define getLight_$$, and a repeated one for which canRepeat is false or the version
/// is below 330.
AssembledShader assembleShader(std::span<const LightSnippet> snippets,
                               int glsl_version = default_glsl_version);

/// Whether a snippet can stand for many light sources: its uniforms are floats and vectors of them, each in a
/// declaration of its own.
bool canRepeat(std::string_view snippet);

/// A program of GLSL 3.30 that evaluates a snippet alone at points in scene space, in the fragment stage as
/// the lighting shader does. Three vertices without attributes cover the target; pixel i of it, row by row in
/// a width of `int korl_target_width`, takes point `int korl_first_point` + i of `samplerBuffer korl_points`,
/// which holds one float a texel. The incidence, intensity and specular intensity go to the colour outputs 0,
/// 1 and 2. Throws Error as assembleShader does.
AssembledShader assembleSampler(const LightSnippet& snippet);

} // namespace korl
