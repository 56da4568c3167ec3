#pragma once

#include "shell/explain/explanation.hpp"

#include <string>

namespace korl {

/// The explanation in words, line by line: the main cause, the pixel, the lights one by one, the scene.
std::string toText(const Explanation& explanation);

/// The explanation as JSON, indented, with a line break at its end. The kinds are named as `nameOf` does,
/// points and colours are lists of three numbers; a number that is not finite is null.
std::string toJson(const Explanation& explanation);

} // namespace korl
