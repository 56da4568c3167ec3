#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korl {

/// The GLSL text that one light source hands to the renderer, under the name by which errors speak of it.
struct LightSnippet {
    std::string light_name;
    std::string text;
};

/// Where the snippet of one light source lies in the assembled fragment shader.
struct SnippetSection {
    std::string light_name;
    std::string suffix; ///< What replaces "$$" in this snippet, and in the names of its uniforms.
    int first_line = 0; ///< Of the fragment source, counted from 1.
    int line_count = 0;
};

/// A lighting shader as text, ready for the driver.
struct AssembledShader {
    std::string vertex;
    std::string fragment;
    std::vector<SnippetSection> sections; ///< One per light source, in the order in which they were given.
};

/// A line of a light's snippet, counted from 1.
struct SourceLocation {
    std::string light_name;
    int line = 0;

    bool operator==(const SourceLocation&) const = default;
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
/// - The sum is clamped to 0..1; alpha is the vertex colour's. No light at all gives black.
///
/// Uniforms: mat4 korl_view (scene to eye space), mat4 korl_projection, vec3 korl_eye (scene space), float
/// korl_specular, float korl_shininess. Each snippet stays as it is but for its "$$". Each function that a
/// snippet imports by `#pragma import "NAME"` is defined once, before all snippets. The text depends on the
/// snippets and the version alone, not on the lights' names, so a program can be cached by it.
///
/// Throws Error for a GLSL version other than glsl_versions, an import that is unknown or can't be read, and
/// a snippet that does not define getLight_$$.
AssembledShader assembleShader(std::span<const LightSnippet> snippets,
                               int glsl_version = default_glsl_version);

/// Which light's snippet a line of the fragment source (counted from 1) belongs to; none for the shell's own
/// lines.
std::optional<SourceLocation> locate(const AssembledShader& shader, int fragment_line);

/// What to tell the user when the driver refuses the fragment shader: the light, the line of its snippet with
/// its text, and the driver's own words. Understands the line numbers of the forms "0:12(3): error: ...",
/// "0(12) : error C1503: ..." and "ERROR: 0:12: ...". A snippet with brackets or a comment left open is named
/// first: a driver only notices it in a later snippet.
std::string compileErrorText(const AssembledShader& shader, std::string_view driver_log);

} // namespace korl
