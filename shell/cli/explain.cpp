#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/explain/explain.hpp"
#include "shell/explain/explanation_text.hpp"

#include <charconv>
#include <fmt/core.h>
#include <memory>

namespace korl::cli {

namespace {

struct ExplainOptions {
    SceneOptions scene;
    std::string path = "shader";
    std::string size = "640x480";
    std::string pixel;
    std::string view;
    bool json = false;
};

/// Reads "X,Y".
std::optional<std::pair<int, int>> parsePixel(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    std::pair<int, int> pixel;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, pixel.first);
    const bool has_comma = first.ec == std::errc() && first.ptr != end && *first.ptr == ',';
    const auto second = has_comma ? std::from_chars(first.ptr + 1, end, pixel.second) : first;
    if (!has_comma || second.ec != std::errc() || second.ptr != end)
        throw UsageError(fmt::format(
            "--pixel takes X,Y in pixels from the upper left corner, such as 320,240; found \"{}\"", text));
    return pixel;
}

void explainScene(Shell& shell, const ExplainOptions& options, const ExplainSettings& settings) {
    SceneOptions scene = options.scene;
    scene.no_default_light = true; // it is the scene itself that is explained
    fillScene(scene, static_cast<double>(settings.width) / settings.height, shell.scene());
    const Explanation explanation = explain(shell, settings);
    print(options.json ? toJson(explanation) : toText(explanation));
}

} // namespace

void addExplainCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("explain", "Explain why the picture of a scene is dark");
    const auto options = std::make_shared<ExplainOptions>();
    addSceneOptions(*command, options->scene);
    command->add_option("--path", options->path, "Explain the picture of this path: shader or fixed")
        ->check(CLI::IsMember({"shader", "fixed"}))
        ->capture_default_str();
    command->add_option("--size", options->size, "WIDTHxHEIGHT of the picture, in pixels")
        ->capture_default_str();
    command->add_option("--pixel", options->pixel,
                        "Explain the pixel X,Y, counted from 0 at the upper left corner");
    command->add_option("--view", options->view, "Explain the scene in the view of this name");
    command->add_flag("--json", options->json, "Write JSON instead of words");
    command->callback([&program, options] {
        program.command = [&program, options] {
            const auto [width, height] = parseSize(options->size);
            const ExplainSettings settings{width, height,
                                           options->path == "fixed" ? RenderPath::fixed : RenderPath::shader,
                                           parsePixel(options->pixel), options->view};
            withShell(program, [&](Shell& shell) { explainScene(shell, *options, settings); });
        };
    });
}

} // namespace korl::cli
