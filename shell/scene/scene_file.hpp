#pragma once

#include <filesystem>

namespace korl {

class Scene;

/// Adds what a scene file describes to a scene. The file is JSON, an object with
/// - "korl": the version of the format, 1;
/// - "objects": a list of {"type", "name", "parameters": {NAME: text form}}; the name may be left out;
/// - "meshes": a list of {"file", "up"}; the path is relative to the scene file, "up" is "x", "y" or "z" (y
/// if left
///   out);
/// - "camera": {"position", "target", "up", "fov"}: three points as text forms and an angle in degrees;
/// - "background": a colour as `parseColor` takes it.
/// Only "korl" is required. A key that is not listed here is an error.
///
/// Throws Error that names the file, the place in it (line and column where it is no JSON, a JSON pointer
/// otherwise), what was found and what was expected.
void readSceneFile(const std::filesystem::path& file, Scene& scene);

} // namespace korl
