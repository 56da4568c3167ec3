#pragma once

namespace korl {

// The one material that everything is drawn with, on both paths: Blinn-Phong, its ambient colour equal to its
// diffuse colour, which is that of the vertices, and white highlights.

/// How much of a light's specular intensity the material reflects, 0 to 1.
inline constexpr float material_specular = 0.5f;

/// The exponent of the highlights: the larger, the smaller they are.
inline constexpr float material_shininess = 32.0f;

} // namespace korl
