#pragma once

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <glm/geometric.hpp>
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

/// The direction of a vector that is finite, of unit length; zero for a zero vector. Scaled by the largest
/// component first, so that no square over- or underflows.
template <class Number>
glm::vec<3, Number> directionOf(const glm::vec<3, Number>& vector) {
    const Number largest = std::max({std::abs(vector.x), std::abs(vector.y), std::abs(vector.z)});
    return largest > 0 ? glm::normalize(vector / largest) : glm::vec<3, Number>(0);
}

} // namespace korl
