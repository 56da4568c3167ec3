#pragma once

#include "shell/explain/explanation.hpp"

#include <functional>
#include <glm/vec3.hpp>
#include <span>
#include <vector>

namespace korl {

/// What one light gives at points in scene space: for each of its parts (its light sources on the shader
/// path, directed and ambient light on the fixed-function path) a sample for each point. Throws Error where
/// it cannot be evaluated.
using LightParts = std::vector<std::vector<LightSample>>;
using SampleFunction = std::function<LightParts(std::span<const glm::vec3>)>;

/// The places where lights are judged, none of which need be in the picture.
struct SamplePoints {
    std::vector<SurfacePoint> points; ///< the pixel's, where there is one, otherwise spread over what is seen
    bool is_pixel = false;
    float size = 1;  ///< about that of the scene, above 0
    glm::vec3 eye{}; ///< in scene space
};

/// Looks at a light that takes part in the picture, and adds to `light` its findings, in words that go on
/// from its name, its intensity, attenuation, distance and share, and for a pixel its contribution. A light
/// that can't be evaluated gets its error as a finding.
void diagnoseLight(LightExplanation& light, const SampleFunction& sample, const SamplePoints& places);

} // namespace korl
