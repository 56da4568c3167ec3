#pragma once

#include <doltra/uniform_map.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace korl {

/// Where the uniforms that a light writes and those that its snippet declares differ. Names have their "$$".
struct UniformMismatch {
    std::vector<std::string> undeclared; ///< written, but not declared
    std::vector<std::string> unwritten;  ///< declared, but not written
};

/// Compares what a light's snippet declares with what the light has written. A part of an array or a
/// structure, such as "Lamps$$[2].place", counts as the whole of it. A snippet with macros may declare a
/// uniform in any way in which it mentions its name.
UniformMismatch compareUniforms(std::string_view snippet, const Qelt::RenderNamespace::UniformMap& written);

/// What is said of such a light, in words that go on from its name; empty where there is nothing.
std::string undeclaredText(const UniformMismatch& mismatch);
std::string unwrittenText(const UniformMismatch& mismatch);

} // namespace korl
