#pragma once

#include "shell/cli/program.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korl::cli {

/// The options that say what reading a model may take, shared by all commands that read any.
struct ModelOptions {
    double timeout = 0; ///< in seconds
    double memory = 0;  ///< in MiB
    bool anywhere = false;
};

/// Adds the options, with their defaults.
void addModelOptions(CLI::App& command, ModelOptions& options);

/// How a scene file is read with these options. What is to be told becomes notes. Throws UsageError for
/// limits that cannot be.
SceneReading readingWith(const ModelOptions& options);

/// The options that say what the scene is, shared by all commands that have one.
struct SceneOptions {
    std::string file;
    std::string model;
    std::string model_up = "y";
    ModelOptions models;
    std::vector<std::string> lights;
    std::vector<std::string> settings;
    std::vector<std::string> connections;
    bool no_default_light = false;
    std::string background;
    std::string camera, target, up;
    std::optional<double> fov;
};

void addSceneOptions(CLI::App& command, SceneOptions& options);

/// What a scene is built for.
enum class ScenePurpose {
    show, ///< a picture: what a scene file lacks to be seen is added
    keep  ///< a file or a script: a scene file's scene stays as it is, but for the options
};

/// Builds the scene: the scene file, the model or, where no mesh came of either, the built-in scene; the
/// lights, or a light by default, which it says; the settings; the camera.
/// @param aspect width of the picture by its height, for a camera that is fitted.
/// Throws UsageError for an option of the wrong form, Error for what cannot be done.
void fillScene(const SceneOptions& options, double aspect, Scene& scene,
               ScenePurpose purpose = ScenePurpose::show);

/// Refuses an output that is empty or "-": scene files, which name others beside them, are not written to
/// standard output.
CLI::Validator aFile();

/// What `--path` takes.
const std::map<std::string, RenderPath>& renderPaths();

/// Adds `--path`, to be looked up in `renderPaths`.
void addPathOption(CLI::App& command, std::string& path);

/// Reads a size such as "640x480", in pixels. Throws UsageError for any other form, and for a side of no
/// pixels.
std::pair<int, int> parseSize(const std::string& text);

} // namespace korl::cli
