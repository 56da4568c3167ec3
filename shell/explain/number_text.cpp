#include "shell/explain/number_text.hpp"

#include <array>
#include <cstdio>
#include <fmt/core.h>

namespace korl {

std::string numberText(float number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3g", static_cast<double>(number));
    return text.data();
}

std::string numberText(const glm::vec3& vector) {
    return fmt::format("({}, {}, {})", numberText(vector.x), numberText(vector.y), numberText(vector.z));
}

} // namespace korl
