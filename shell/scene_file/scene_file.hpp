#pragma once

#include "shell/mesh/model_import.hpp"

#include <filesystem>
#include <functional>
#include <string>

namespace korl {

class Scene;

/// Takes what the user should know about a scene file that was read or written all the same: what it needs
/// that is not there, and what was left out.
using SceneNotes = std::function<void(const std::string&)>;

/// How a scene file is read.
struct SceneReading {
    SceneNotes warn{};

    /// Reads the model files that the scene names; `importModel` where it is left out.
    ModelImport import_model{};
};

/// Adds what a scene file describes to a scene. docs/scene-files.md describes the format,
/// docs/scene.schema.json defines it.
///
/// An object whose type no loaded module has is told of and kept (`Scene::unresolved`), with the connections
/// to it and the values that views have for it. A view that the scene has already gets the file's values
/// added.
///
/// Throws Error that names the file, the place in it (line and column where it is not JSON, a JSON pointer
/// otherwise), what was found and what was expected. The scene is then as it was.
void readSceneFile(const std::filesystem::path& file, Scene& scene, const SceneReading& reading = {});

/// The same for a text that is in memory already.
/// @param file what to call it in messages; the paths of models are relative to its folder.
void readSceneText(std::string text, const std::filesystem::path& file, Scene& scene,
                   const SceneReading& reading = {});

/// Writes a scene to a file: the old or the new file is there whole, whatever happens. What is read from it
/// shows the same pictures and is written as the same bytes again. Throws Error where it cannot be written,
/// and for a value that is not finite.
/// @param warn is called for connections that are left out, since what they lead to is not in the scene.
void saveScene(const std::filesystem::path& file, const Scene& scene, const SceneNotes& warn = {});

/// What `saveScene` writes.
/// @param folder the file's folder, to which the paths of models are relative.
std::string sceneText(const Scene& scene, const std::filesystem::path& folder, const SceneNotes& warn = {});

} // namespace korl
