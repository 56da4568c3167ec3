#include "shell/session/shell.hpp"

#include "shell/base/error.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/render/renderer.hpp"

#include <mutex>
#include <utility>
#include <vector>

namespace korl {

namespace {

/// Keeps a renderer that cannot go: without its context, OpenGL would delete another one's buffers and
/// programs.
void abandon(std::unique_ptr<Renderer> renderer) {
    static std::mutex lock;
    static auto& kept = *new std::vector<std::unique_ptr<Renderer>>;
    const std::lock_guard locked(lock);
    kept.push_back(std::move(renderer));
}

} // namespace

Shell::Shell(Reports::Sink report) : my_report(std::move(report)) {
    my_model_reading.warn = [this](const std::string& text) { this->report(text); };
}

Shell::~Shell() {
    if (!my_renderer)
        return;
    try {
        my_context->makeCurrent(); // for the renderer, whose buffers and programs go with it
    } catch (const Error& error) {
        abandon(std::move(my_renderer));
        try {
            report(error.what());
        } catch (...) { // whoever takes the reports must not end the program from here
        }
    }
}

void Shell::load(const std::vector<std::filesystem::path>& files,
                 const std::vector<std::filesystem::path>& directories) {
    for (const std::filesystem::path& file : files)
        my_plugins.load(file);
    my_plugins.loadFrom(directories);
    for (const std::string& sentence : shadowedTypes())
        if (my_reported_types.insert(sentence).second)
            report(sentence);
}

GLContext& Shell::context() {
    if (!my_context)
        my_context = std::make_unique<GLContext>();
    return *my_context;
}

void Shell::reportEmptyPicture() {
    const auto warnOnce = [&](bool is_missing, bool& is_reported, const char* text) {
        if (is_missing && !is_reported)
            report(text);
        is_reported = is_missing;
    };
    warnOnce(!my_scene.hasLight(), has_warned_of_no_light,
             "the scene has no light and stays dark; create one, such as a Headlight");
    warnOnce(
        my_scene.meshes().empty() && !my_scene.boundingBall(), has_warned_of_no_mesh,
        "the scene has no mesh, so that only its background is seen; add a model, arrays or the landscape");
}

void Shell::releaseContext() {
    if (my_context)
        my_context->release();
}

Renderer& Shell::renderer() {
    if (!my_renderer)
        my_renderer = std::make_unique<Renderer>(context(), my_report);
    return *my_renderer;
}

View& Shell::view(const std::string& name) {
    if (name.empty()) {
        auto& view = my_views[name];
        if (!view)
            view = std::make_unique<View>();
        return *view;
    }
    const auto& pool = my_scene.view(name);
    auto& view = my_views[name];
    if (!view || &view->pool() != pool.get()) // none yet, or that of another view that had the name before
        view = std::make_unique<View>(pool);
    return *view;
}

Image Shell::render(const RenderSettings& settings, const std::string& view_name) {
    View& seen = view(view_name);
    return renderer().render(my_scene, seen, settings);
}

} // namespace korl
