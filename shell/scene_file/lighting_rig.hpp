#pragma once

#include "shell/scene_file/scene_file.hpp"

#include <filesystem>
#include <string>

namespace korl {

/// Writes a scene's lights alone to a file, to be put into other scenes: with their parameters, connections
/// among them, mutes, and values that views have for them. It is a scene file. Throws Error as `saveScene`
/// does.
/// @param warn is called for connections to what is not a light, which are left out.
void saveRig(const std::filesystem::path& file, const Scene& scene, const SceneNotes& warn = {});

/// What `saveRig` writes.
std::string rigText(const Scene& scene, const SceneNotes& warn = {});

/// Adds the lights of a scene file to a scene; whatever else the file describes is passed over. A light whose
/// name is taken gets a number behind it, and what follows it follows it still.
///
/// Throws Error as `readSceneFile` does, and where no loaded module has the type of an object in the file.
/// The scene is then as it was.
/// @param replace deletes the scene's own lights first.
void loadRig(const std::filesystem::path& file, Scene& scene, bool replace = false,
             const SceneNotes& warn = {});

} // namespace korl
