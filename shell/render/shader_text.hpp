#pragma once

#include <array>
#include <string_view>

/// The shell's own GLSL, from which the assembly makes lighting shaders. Written for every version that it
/// offers: korl_in, korl_out and korl_fragment_color are made to fit by a few lines in front.
namespace korl::shader_text {

/// A function that a snippet may import by name.
struct ImportableFunction {
    std::string_view name;
    std::string_view definition;
};

inline constexpr std::array importable_functions{
    ImportableFunction{"getViewDir", R"(
// The unit vector from the eye to the fragment, in scene space.
vec3 getViewDir()
{
    return normalize(korl_scene_position - korl_eye);
}
)"},
};

inline constexpr std::string_view vertex_body = R"(
uniform mat4 korl_view;
uniform mat4 korl_projection;

korl_in vec3 korl_position;
korl_in vec3 korl_normal;
korl_in vec4 korl_color;

korl_out vec3 korl_scene_position;
korl_out vec3 korl_scene_normal;
korl_out vec4 korl_material_color;

void main()
{
    korl_scene_position = korl_position;
    korl_scene_normal = korl_normal;
    korl_material_color = korl_color;
    gl_Position = korl_projection * (korl_view * vec4(korl_position, 1.0));
}
)";

inline constexpr std::string_view fragment_inputs = R"(
uniform vec3 korl_eye;
uniform float korl_specular;
uniform float korl_shininess;

korl_in vec3 korl_scene_position;
korl_in vec3 korl_scene_normal;
korl_in vec4 korl_material_color;
)";

// The comparisons of korl_isFinite are written so that no driver can turn one into its negation, which would
// be true for NaN: isnan and isinf are missing from GLSL 1.20.
inline constexpr std::string_view fragment_shading = R"(
bool korl_isFinite(vec3 value)
{
    return all(lessThanEqual(abs(value), vec3(3.402823466e+38)));
}

// Scaled by the largest component first, so that no square over- or underflows; a zero vector stays zero.
vec3 korl_unit(vec3 value)
{
    vec3 size = abs(value);
    float largest = max(size.x, max(size.y, size.z));
    return largest > 0.0 ? normalize(value / largest) : vec3(0.0);
}

vec3 korl_reflected(vec3 incidence, vec3 intensity, vec3 specular_intensity)
{
    vec3 diffuse = intensity * korl_material_color.rgb;
    if (incidence == vec3(0.0))
        return diffuse;

    vec3 normal = korl_unit(korl_scene_normal);
    vec3 to_light = korl_unit(-incidence);
    float n_dot_l = dot(normal, to_light);
    if (n_dot_l <= 0.0)
        return vec3(0.0);

    vec3 to_eye = korl_unit(korl_eye - korl_scene_position);
    float n_dot_h = max(dot(normal, korl_unit(to_light + to_eye)), 0.0);
    float highlight = korl_shininess > 0.0 ? pow(n_dot_h, korl_shininess) : 1.0;
    return n_dot_l * diffuse + highlight * korl_specular * specular_intensity;
}

vec3 korl_contribution(vec3 incidence, vec3 intensity, vec3 specular_intensity)
{
    if (korl_isFinite(incidence) && korl_isFinite(intensity) && korl_isFinite(specular_intensity))
        return korl_reflected(incidence, intensity, specular_intensity);
    return vec3(0.0);
}

void main()
{
    vec3 korl_sum = vec3(0.0);
    vec3 korl_incidence = vec3(0.0);
    vec3 korl_intensity = vec3(0.0);
    vec3 korl_specular_intensity = vec3(0.0);
)";

inline constexpr std::string_view fragment_end = R"(
    korl_fragment_color = vec4(clamp(korl_sum, 0.0, 1.0), 1.0);
}
)";

// The light sampler: one triangle covers the target, and each of its pixels takes the point of its number.

inline constexpr std::string_view sampler_vertex = R"(
void main()
{
    gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0);
}
)";

inline constexpr std::string_view sampler_inputs = R"(
uniform vec3 korl_eye;
uniform samplerBuffer korl_points;
uniform int korl_first_point;
uniform int korl_target_width;

layout(location = 0) out vec4 korl_incidence;
layout(location = 1) out vec4 korl_intensity;
layout(location = 2) out vec4 korl_specular_intensity;

vec3 korl_scene_position;
)";

inline constexpr std::string_view sampler_main = R"(
void main()
{
    int point = korl_first_point + int(gl_FragCoord.y) * korl_target_width + int(gl_FragCoord.x);
    korl_scene_position = vec3(texelFetch(korl_points, point * 3).r, texelFetch(korl_points, point * 3 + 1).r,
                               texelFetch(korl_points, point * 3 + 2).r);
    vec3 incidence = vec3(0.0);
    vec3 intensity = vec3(0.0);
    vec3 specular_intensity = vec3(0.0);
    getLight_L1(korl_scene_position, incidence, intensity, specular_intensity);
    korl_incidence = vec4(incidence, 1.0);
    korl_intensity = vec4(intensity, 1.0);
    korl_specular_intensity = vec4(specular_intensity, 1.0);
}
)";

} // namespace korl::shader_text
