#pragma once

#include <glm/vec3.hpp>
#include <string>

namespace korl {

/// A number for people to read: three significant digits, such as 0.25, 12.3 or 1.2e-05.
std::string numberText(float number);

/// Three numbers for people to read, such as (0.25, 0, 1).
std::string numberText(const glm::vec3& vector);

} // namespace korl
