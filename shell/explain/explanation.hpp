#pragma once

#include "shell/explain/reflection.hpp"
#include "shell/render/render_settings.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korl {

/// What can be found about a scene or a light. Where several make a picture dark, the first of them is the
/// main cause.
enum class FindingKind {
    // of the whole scene
    no_lights,        ///< there are none
    no_mesh_in_view,  ///< the picture shows no mesh, or hardly any
    normals_missing,  ///< a mesh has one and the same normal everywhere, whichever way its triangles face
    normals_inverted, ///< most of what is seen of a mesh has normals that point away from the camera
    black_surface,    ///< what is seen has (nearly) black colours
    overexposed,      ///< much of what is seen is clipped to white
    // of a light
    shader_failed,      ///< the driver refuses its snippet, or a value of a uniform
    not_finite,         ///< it gives numbers that are not finite, and so adds nothing
    muted,              ///< it is switched off
    silenced,           ///< another light shines alone
    left_out,           ///< OpenGL's lights were all held by others (fixed-function path)
    no_opengl_light,    ///< its type sets up no OpenGL light (fixed-function path)
    below_horizon,      ///< its light travels upwards
    facing_away,        ///< it shines on the backs of the surfaces
    too_far,            ///< little of its strength is left at the distance
    zero_intensity,     ///< its intensity is 0
    negative_intensity, ///< its intensity is below 0, so that it takes light away
    weak,               ///< its intensity is low
    grazing,            ///< it strikes the surfaces at a small angle
    uniform_undeclared, ///< it writes a uniform that its snippet does not declare
    uniform_unwritten   ///< its snippet declares a uniform that it does not write
};

/// A kind as scripts and JSON name it, such as "zero_intensity".
std::string nameOf(FindingKind kind);

struct Finding {
    FindingKind kind;
    std::string text;     ///< in words; of a light without its name, such as: is muted
    bool is_cause = true; ///< whether it keeps light from the picture; otherwise it is a note
};

/// What was found about one light.
struct LightExplanation {
    std::string name, type;
    std::vector<Finding> findings; ///< the weightiest first
    std::string opengl_light;      ///< which of OpenGL's lights it holds, or why none, in words
    int opengl_number = 0;         ///< of that light, from 1; 0 where it holds none
    /// What it gives where the look was taken, on the path that is explained; nothing where it takes no part.
    std::optional<float> intensity;         ///< the largest component, before it meets a surface
    std::optional<float> attenuation;       ///< how much of its strength is left there, 0 to 1
    std::optional<float> distance;          ///< from where it has all of its strength, in units of the scene
    std::optional<float> lit_share;         ///< of what is seen, 0 to 1, that it faces
    std::optional<Reflection> contribution; ///< at the pixel, where one was asked for and shows a mesh
};

/// What was found about a pixel.
struct PixelExplanation {
    int x, y;                            ///< from the left and from the top, from 0
    std::array<std::uint8_t, 4> color{}; ///< in the picture
    std::optional<SurfacePoint> surface; ///< what it shows, or nothing for the background
    std::string mesh;                    ///< the name of the mesh that it shows
    glm::vec3 sum{0};                    ///< of all lights' contributions, before it is clamped to 1
};

/// Why a picture is as bright or as dark as it is.
struct Explanation {
    RenderPath path;
    int width, height;
    std::string view;                ///< its name, empty for the scene's own
    std::string failure;             ///< why there is no picture; empty where there is one
    bool is_dark;                    ///< the pixel, where one was asked for, otherwise the picture
    float brightness;                ///< of the pixel, or the mean of what shows a mesh: 0 black to 1 white
    float coverage;                  ///< the share of the picture that shows a mesh, 0 to 1
    std::string summary;             ///< the main cause, or that there is none, in a sentence
    std::vector<FindingKind> causes; ///< of the darkness, the main one first
    std::vector<Finding> scene;
    std::vector<LightExplanation> lights; ///< in the order of their creation
    std::optional<PixelExplanation> pixel;
};

} // namespace korl
