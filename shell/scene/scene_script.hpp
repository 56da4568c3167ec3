#pragma once

#include <string>

namespace korl {

class Scene;

/// The Python script that builds a scene with the `korl` module, draws it and writes the picture to
/// scene.png. It names models by their absolute paths. What the scene keeps for modules that are not loaded
/// is named in comments. Throws Error for a value that is not finite.
std::string sceneScript(const Scene& scene);

} // namespace korl
