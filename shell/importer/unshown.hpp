#pragma once

#include <string>

struct aiScene;

namespace korl {

/// What an imported model has that is not shown, as a sentence: "some of it is not shown: 2 textures, 1
/// light". Empty where all of it is shown.
std::string unshownContent(const aiScene& scene);

} // namespace korl
