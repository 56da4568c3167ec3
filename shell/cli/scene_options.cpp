#include "shell/cli/scene_options.hpp"

#include "shell/base/color_text.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/mesh/model_import.hpp"

#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fmt/core.h>

namespace korl::cli {

namespace {

constexpr double mebibyte = 1 << 20; ///< in bytes

/// Runs `step`; what is wrong with an option's text is wrong usage, and the option is named.
template <class Step>
auto usage(const std::string& option, Step step) {
    try {
        return step();
    } catch (const Error& error) {
        throw UsageError(fmt::format("{}: {}", option, error.what()));
    }
}

/// Nothing for an option that was left out.
std::optional<glm::dvec3> parsePoint(const std::string& option, const std::string& text) {
    std::array<double, 3> point{};
    if (text.empty())
        return std::nullopt;
    if (!Qelt::componentsFromText(point, text))
        throw UsageError(fmt::format("{} takes three numbers \"x y z\", found \"{}\"", option, text));
    return glm::dvec3(point[0], point[1], point[2]);
}

struct Light {
    std::string type, name;
};

/// Reads "TYPE" or "TYPE:NAME".
Light parseLight(const std::string& text) {
    const std::size_t colon = text.find(':');
    Light light{text.substr(0, colon), colon == std::string::npos ? "" : text.substr(colon + 1)};
    if (light.type.empty() || (colon != std::string::npos && light.name.empty()))
        throw UsageError(fmt::format("--light takes TYPE or TYPE:NAME, found \"{}\"", text));
    return light;
}

struct Setting {
    std::string object, parameter, value;
};

/// Reads "NAME.PARAM=VALUE". The object's name may have dots in it, the parameter's has none.
Setting parseSetting(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.rfind('.', equals);
    if (equals == std::string::npos || dot == std::string::npos || dot == 0 || dot + 1 == equals)
        throw UsageError(
            fmt::format("--set takes NAME.PARAM=VALUE such as \"sun.latitude=52\", found \"{}\"", text));
    return {text.substr(0, dot), text.substr(dot + 1, equals - dot - 1), text.substr(equals + 1)};
}

struct Connection {
    Setting follower; ///< its value unused
    std::string object, parameter;
};

/// Reads "NAME.PARAM=NAME.PARAM".
Connection parseConnection(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.rfind('.');
    const std::size_t first_dot = text.rfind('.', equals);
    if (equals == std::string::npos || first_dot == std::string::npos || first_dot == 0 ||
        first_dot + 1 == equals || dot < equals + 2 || dot + 1 == text.size())
        throw UsageError(fmt::format(
            "--connect takes NAME.PARAM=NAME.PARAM such as \"a.direction=b.direction\", found \"{}\"", text));
    return {parseSetting(text), text.substr(equals + 1, dot - equals - 1), text.substr(dot + 1)};
}

/// The words of the command line, understood. Wrong usage shows before any work is done.
struct ParsedOptions {
    explicit ParsedOptions(const SceneOptions& options)
        : model_up(usage("--model-up", [&] { return parseUpAxis(options.model_up); })) {
        for (const std::string& text : options.lights)
            lights.push_back(parseLight(text));
        for (const std::string& text : options.settings)
            settings.push_back(parseSetting(text));
        for (const std::string& text : options.connections)
            connections.push_back(parseConnection(text));
        if (!options.background.empty())
            background = usage("--background", [&] { return parseColor(options.background); });
        position = parsePoint("--camera", options.camera);
        target = parsePoint("--target", options.target);
        up = parsePoint("--up", options.up);
    }

    UpAxis model_up;
    std::vector<Light> lights;
    std::vector<Setting> settings;
    std::vector<Connection> connections;
    std::optional<Orvid::rgba_float_t> background;
    std::optional<glm::dvec3> position, target, up;
};

/// A light that goes with the viewer shows any scene; where no module has one, light from everywhere does.
void addDefaultLight(Scene& scene) {
    for (const char* const type : {"Headlight", "AmbientLight"})
        if (Qelt::VCreatorBase::find(type)) {
            note(fmt::format("the scene has no light, so the {} \"{}\" was added; "
                             "choose others with --light, or leave it dark with --no-default-light",
                             type, scene.create(type).Name()));
            return;
        }
    note(
        "the scene has no light and stays dark: no module is loaded that has a Headlight or an AmbientLight");
}

void setCamera(const ParsedOptions& parsed, std::optional<double> fov, double aspect, Scene& scene) {
    if (!parsed.position && !parsed.target && !parsed.up && !fov)
        return;
    const Ball ball = scene.boundingBall().value_or(Ball{{0, 0, 0}, 1});
    const double field = fov.value_or(Camera().fov_degrees);
    Camera camera = scene.camera ? *scene.camera : fitCamera(ball, aspect, field);
    camera.fov_degrees = fov.value_or(camera.fov_degrees);
    camera.position = parsed.position.value_or(camera.position);
    camera.target = parsed.target.value_or(camera.target);
    camera.up = parsed.up.value_or(camera.up);
    validate(camera);
    scene.camera = camera;
}

} // namespace

void addModelOptions(CLI::App& command, ModelOptions& options) {
    const ModelReading usual;
    options.timeout = std::chrono::duration<double>(usual.timeout).count();
    options.memory = std::floor(static_cast<double>(usual.memory) / mebibyte);
    command.add_option("--model-timeout", options.timeout, "How many seconds reading a model may take")
        ->capture_default_str();
    command.add_option("--model-memory", options.memory,
                       "How many MiB of memory reading a model may take; half of the machine's if left out");
    command.add_flag("--model-anywhere", options.anywhere,
                     "Read what a model names outside its folder too: buffers, material libraries");
}

SceneReading readingWith(const ModelOptions& options) {
    constexpr double maximum = 1e9;
    const auto require = [](const std::string& option, double found, double minimum,
                            const std::string& unit) {
        if (!(found >= minimum && found <= maximum))
            throw UsageError(fmt::format("{} takes {} to 1e9 {}, found {}", option,
                                         minimum < 1 ? "0.001" : "1", unit,
                                         Qelt::VValueTrait<double>::Text(found)));
    };
    require("--model-timeout", options.timeout, 0.001, "seconds");
    require("--model-memory", options.memory, 1, "MiB");
    ModelReading reading;
    reading.timeout =
        std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(options.timeout));
    reading.memory = static_cast<std::uint64_t>(options.memory * mebibyte);
    reading.anywhere = options.anywhere;
    reading.warn = note;
    return {note, modelImportWith(reading)};
}

void addSceneOptions(CLI::App& command, SceneOptions& options) {
    const CLI::Validator given([](const std::string& text) { return text.empty() ? "it is empty" : ""; }, "",
                               "given");
    command.add_option("SCENE.json", options.file, "A scene file")->check(given);
    command
        .add_option("--model", options.model,
                    "A model (OBJ, PLY, STL, glTF, 3DS), scaled to a radius of 0.5 at the origin")
        ->check(given);
    command.add_option("--model-up", options.model_up, "Which axis of the model is up: x, y or z")
        ->capture_default_str();
    addModelOptions(command, options.models);
    command.add_option("--light", options.lights, "Add a light: TYPE or TYPE:NAME")->allow_extra_args(false);
    command.add_option("--set", options.settings, "Set a parameter: NAME.PARAM=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--connect", options.connections,
                    "Make a parameter follow another: NAME.PARAM=NAME.PARAM")
        ->allow_extra_args(false);
    command.add_flag("--no-default-light", options.no_default_light, "Add no light where there is none");
    command.add_option("--background", options.background,
                       "\"#rrggbb[aa]\" or \"red green blue [alpha]\", 0 to 1");
    command.add_option("--camera", options.camera, "Where the eye is: \"x y z\", z up; fitted if left out");
    command.add_option("--target", options.target, "Where the eye looks: \"x y z\"");
    command.add_option("--up", options.up, "Which way is up in the picture: \"x y z\"");
    command.add_option("--fov", options.fov, "The vertical angle of view, in degrees");
}

void fillScene(const SceneOptions& options, double aspect, Scene& scene, ScenePurpose purpose) {
    const ParsedOptions parsed(options);
    const SceneReading reading = readingWith(options.models);
    const bool is_completed = purpose == ScenePurpose::show || options.file.empty();
    if (!options.file.empty())
        readSceneFile(options.file, scene, reading);
    if (!options.model.empty())
        scene.addMesh(reading.import_model(options.model, parsed.model_up));
    if (is_completed && scene.meshes().empty())
        for (Mesh& mesh : builtinScene())
            scene.addMesh(std::move(mesh));
    for (const Light& light : parsed.lights)
        scene.create(light.type, light.name);
    if (is_completed && !scene.hasLight() && !options.no_default_light)
        addDefaultLight(scene);
    for (const Setting& setting : parsed.settings)
        scene.setParameterText(setting.object, setting.parameter, setting.value);
    for (const Connection& connection : parsed.connections)
        scene.connect(connection.follower.object, connection.follower.parameter, connection.object,
                      connection.parameter);
    scene.background = parsed.background.value_or(scene.background);
    setCamera(parsed, options.fov, aspect, scene);
}

CLI::Validator aFile() {
    return CLI::Validator(
        [](const std::string& text) {
            return text.empty() || text == "-" ? "a scene is written to a file; name one" : "";
        },
        "", "a file");
}

const std::map<std::string, RenderPath>& renderPaths() {
    static const std::map<std::string, RenderPath> paths{
        {"shader", RenderPath::shader}, {"fixed", RenderPath::fixed}, {"both", RenderPath::both}};
    return paths;
}

void addPathOption(CLI::App& command, std::string& path) {
    command.add_option("--path", path, "shader, fixed, or both side by side")
        ->check(CLI::IsMember({"shader", "fixed", "both"}))
        ->capture_default_str();
}

std::pair<int, int> parseSize(const std::string& text) {
    int width = 0, height = 0;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    const bool has_x = first.ec == std::errc() && first.ptr != end && *first.ptr == 'x';
    const auto second = has_x ? std::from_chars(first.ptr + 1, end, height) : first;
    if (!has_x || second.ec != std::errc() || second.ptr != end || width < 1 || height < 1)
        throw UsageError(fmt::format(
            "--size takes WIDTHxHEIGHT in pixels, each at least 1, such as 640x480; found \"{}\"", text));
    return {width, height};
}

} // namespace korl::cli
