#pragma once

#include <sorvik/component_text.hpp>

#include <array>
#include <cmath>
#include <glm/vec3.hpp>
#include <string>

namespace korl {

/// The components as values of parameters have them, "x y z": each is the shortest text that reads back to
/// the same bits.
template <class Number>
std::string componentsText(const glm::vec<3, Number>& vector) {
    return Qelt::componentsToText(std::array{vector.x, vector.y, vector.z});
}

inline bool isFinite(const glm::dvec3& vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

} // namespace korl
