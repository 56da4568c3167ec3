#include "shell/cli/scene_options.hpp"

#include "shell/scene/builtin_scene.hpp"
#include "shell/scene/color_text.hpp"
#include "shell/scene/model_import.hpp"
#include "shell/scene/scene_file.hpp"

#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <array>
#include <charconv>

namespace korl::cli {

namespace {

/// Runs `step`; what is wrong with an option's text is wrong usage, and the option is named.
template <class Step>
auto usage(const std::string& option, Step step) {
    try {
        return step();
    } catch (const Error& error) {
        throw UsageError(option + ": " + error.what());
    }
}

glm::dvec3 parsePoint(const std::string& option, const std::string& text) {
    std::array<double, 3> point{};
    if (!Qelt::componentsFromText(point, text))
        throw UsageError(option + " takes three numbers \"x y z\", found \"" + text + "\"");
    return {point[0], point[1], point[2]};
}

/// "TYPE" or "TYPE:NAME".
void addLight(const std::string& text, Scene& scene) {
    const std::size_t colon = text.find(':');
    const std::string type = text.substr(0, colon);
    const std::string name = colon == std::string::npos ? "" : text.substr(colon + 1);
    if (type.empty() || (colon != std::string::npos && name.empty()))
        throw UsageError("--light takes TYPE or TYPE:NAME, found \"" + text + "\"");
    scene.create(type, name);
}

/// "NAME.PARAM=VALUE". The object's name may have dots in it, the parameter's has none.
void applySetting(const std::string& text, Scene& scene) {
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.rfind('.', equals);
    if (equals == std::string::npos || dot == std::string::npos || dot == 0 || dot + 1 == equals)
        throw UsageError("--set takes NAME.PARAM=VALUE such as \"sun.latitude=52\", found \"" + text + "\"");
    scene.setParameter(text.substr(0, dot), text.substr(dot + 1, equals - dot - 1), text.substr(equals + 1));
}

/// A light that goes with the viewer shows any scene; where no module has one, light from everywhere does.
void addDefaultLight(Scene& scene) {
    for (const char* const type : {"Headlight", "AmbientLight"})
        if (Qelt::VCreatorBase::find(type)) {
            const std::string name = scene.create(type).Name();
            note("the scene has no light, so it gets a " + std::string(type) + " named \"" + name +
                 "\"; --light adds another one instead, --no-default-light leaves it dark");
            return;
        }
    note("the scene has no light and stays dark: no module is loaded that has a Headlight or an AmbientLight");
}

void setCamera(const SceneOptions& options, double aspect, Scene& scene) {
    if (options.camera.empty() && options.target.empty() && options.up.empty() && !options.fov)
        return;
    const Ball ball = scene.boundingBall().value_or(Ball{{0, 0, 0}, 1});
    Camera camera = scene.camera ? *scene.camera : fitCamera(ball, aspect);
    if (!options.camera.empty())
        camera.position = parsePoint("--camera", options.camera);
    if (!options.target.empty())
        camera.target = parsePoint("--target", options.target);
    if (!options.up.empty())
        camera.up = parsePoint("--up", options.up);
    if (options.fov)
        camera.fov_degrees = *options.fov;
    usage("the camera", [&] { validate(camera); });
    scene.camera = camera;
}

} // namespace

void addSceneOptions(CLI::App& command, SceneOptions& options) {
    command.add_option("SCENE.json", options.file, "A scene file");
    command.add_option("--model", options.model,
                       "A model (OBJ, PLY, STL, glTF, 3DS), scaled to a radius of 0.5 at the origin");
    command.add_option("--model-up", options.model_up, "Which axis of the model is up: x, y or z")
        ->capture_default_str();
    command.add_option("--light", options.lights, "Add a light: TYPE or TYPE:NAME")->allow_extra_args(false);
    command.add_option("--set", options.settings, "Set a parameter: NAME.PARAM=VALUE")->allow_extra_args(false);
    command.add_flag("--no-default-light", options.no_default_light, "Add no light where there is none");
    command.add_option("--background", options.background, "\"#rrggbb[aa]\" or \"red green blue [alpha]\", 0 to 1");
    command.add_option("--camera", options.camera, "Where the eye is: \"x y z\", z up; fitted if left out");
    command.add_option("--target", options.target, "Where the eye looks: \"x y z\"");
    command.add_option("--up", options.up, "Which way is up in the picture: \"x y z\"");
    command.add_option("--fov", options.fov, "The vertical angle of view, in degrees");
}

void fillScene(const SceneOptions& options, double aspect, Scene& scene) {
    if (!options.file.empty())
        readSceneFile(options.file, scene);
    const UpAxis up = usage("--model-up", [&] { return parseUpAxis(options.model_up); });
    if (!options.model.empty())
        scene.addMesh(importModel(options.model, up));
    if (scene.meshes().empty())
        for (Mesh& mesh : builtinScene())
            scene.addMesh(std::move(mesh));
    for (const std::string& light : options.lights)
        addLight(light, scene);
    if (!scene.hasLight() && !options.no_default_light)
        addDefaultLight(scene);
    for (const std::string& setting : options.settings)
        applySetting(setting, scene);
    if (!options.background.empty())
        scene.background = usage("--background", [&] { return parseColor(options.background); });
    setCamera(options, aspect, scene);
}

std::pair<int, int> parseSize(const std::string& text) {
    int width = 0, height = 0;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    const bool has_x = first.ec == std::errc() && first.ptr != end && *first.ptr == 'x';
    const auto second = has_x ? std::from_chars(first.ptr + 1, end, height) : first;
    if (!has_x || second.ec != std::errc() || second.ptr != end || width < 1 || height < 1)
        throw UsageError("--size takes WIDTHxHEIGHT in pixels, each at least 1, such as 640x480; found \"" + text +
                         "\"");
    return {width, height};
}

} // namespace korl::cli
