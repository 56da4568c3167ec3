#include "shell/session/shell.hpp"

#include <utility>

namespace korl {

Shell::Shell(Reports::Sink report) : my_report(std::move(report)) {
    my_model_reading.tell = [this](const std::string& text) { this->report(text); };
}

Shell::~Shell() {
    if (my_context)
        my_context->makeCurrent(); // for the renderer, whose buffers and programs go with it
}

GLContext& Shell::context() {
    if (!my_context)
        my_context = std::make_unique<GLContext>();
    return *my_context;
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
