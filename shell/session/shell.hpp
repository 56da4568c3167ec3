#pragma once

#include "shell/image/image.hpp"
#include "shell/mesh/model_import.hpp"
#include "shell/plugins/plugin_library.hpp"
#include "shell/render/gl_context.hpp"
#include "shell/render/render_settings.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"
#include "shell/scene/scene.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace korl {

class Renderer;

/// A shell at work: its modules, the scene that is built with them, and what draws it. They go in reverse:
/// the scene and all that was drawn from it before the modules. All operations belong to one thread at a
/// time.
class Shell {
public:
    /// A shell without any module and an empty scene.
    /// @param report takes what the user should know about the pictures, each thing once.
    explicit Shell(Reports::Sink report = {});
    /// Where another thread has the OpenGL context, what was drawn with it stays until the process ends, and
    /// that is told.
    ~Shell();
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    /// Loads modules: the files, then those of the directories. Throws Error as PluginSet does. A type that
    /// is shadowed by another module's is told of once.
    void load(const std::vector<std::filesystem::path>& files,
              const std::vector<std::filesystem::path>& directories = {});

    PluginSet& plugins() noexcept { return my_plugins; }
    const PluginSet& plugins() const noexcept { return my_plugins; }
    Scene& scene() noexcept { return my_scene; }
    const Scene& scene() const noexcept { return my_scene; }

    /// What reading a model may take. Whom it tells is this shell's report.
    ModelReading& modelReading() noexcept { return my_model_reading; }

    /// The OpenGL context, made at its first use. Throws Error where there is no OpenGL to be had.
    GLContext& context();

    /// Tells the user something, as reports on pictures are told.
    void report(const std::string& text) const {
        if (my_report)
            my_report(text);
    }

    /// Tells that a picture of the scene would show nothing, for lack of a light or of a mesh; each of the
    /// two once until it has been there.
    void reportEmptyPicture();

    /// Leaves this thread without the OpenGL context, so that another thread can go on with the shell.
    void releaseContext();

    /// What draws the scene, made with its context at its first use.
    Renderer& renderer();

    /// What a view of the scene looks at it with; the empty name for the view without values of its own.
    /// Throws Error for a name of which the scene has no view.
    View& view(const std::string& name = {});

    /// Draws a frame of the scene in one of its views.
    Image render(const RenderSettings& settings, const std::string& view_name = {});

private:
    PluginSet my_plugins;
    Scene my_scene;
    Reports::Sink my_report;
    ModelReading my_model_reading;
    bool has_warned_of_no_light = false, has_warned_of_no_mesh = false;
    std::set<std::string> my_reported_types;               ///< what was told of types that are shadowed
    std::map<std::string, std::unique_ptr<View>> my_views; ///< those that were asked for, by name
    std::unique_ptr<GLContext> my_context;
    std::unique_ptr<Renderer> my_renderer;
};

} // namespace korl
