#pragma once

#include <filesystem>
#include <span>
#include <string>

namespace korl {

class Scene;

/// The Python script that builds a scene with the `korl` module, draws it and writes the picture to
/// scene.png. It names models by their absolute paths. What the scene keeps for modules that are not loaded
/// is named in comments. Throws Error for a value that is not finite.
/// @param plugins modules that the script loads beside those on the search path.
std::string sceneScript(const Scene& scene, std::span<const std::filesystem::path> plugins = {});

} // namespace korl
