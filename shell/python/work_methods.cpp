#include "shell/python/session_class.hpp"

#include "shell/animation/animate.hpp"
#include "shell/explain/explain.hpp"
#include "shell/explain/explanation_text.hpp"
#include "shell/scene_file/lighting_rig.hpp"
#include "shell/scene_file/scene_file.hpp"
#include "shell/scene_file/scene_script.hpp"

#include <optional>
#include <tuple>
#include <utility>

namespace korl::python {

namespace {

SceneNotes notesOf(Shell& shell) {
    return [&shell](const std::string& text) { shell.report(text); };
}

void defineFiles(Session& session) {
    add(session, "save", [](Shell& shell, const std::filesystem::path& file) {
        saveScene(file, shell.scene(), notesOf(shell));
    });
    session.def("load_scene", [](SharedShell& shared, const std::filesystem::path& file) {
        workWithInterrupts(shared, [&](Shell& shell, const Interrupt& interrupt) {
            readSceneFile(file, shell.scene(),
                          {notesOf(shell), modelImportWith(interruptibleReading(shell, interrupt))});
        });
    });
    add(session, "save_rig", [](Shell& shell, const std::filesystem::path& file) {
        saveRig(file, shell.scene(), notesOf(shell));
    });
    add(session, "load_rig", [](Shell& shell, const std::filesystem::path& file, bool replace) {
        loadRig(file, shell.scene(), replace, notesOf(shell));
    });
    add(session, "script", [](Shell& shell) { return sceneScript(shell.scene()); });
}

using Progress = std::tuple<int, int, int>; ///< frames that are made, that were there already, and all

/// Makes a sequence, and tells `progress` of it.
Progress animateScene(SharedShell& shared, const SequenceSettings& settings,
                      const std::optional<std::string>& sun_time, const py::object& progress) {
    SequenceProgress latest;
    workWithInterrupts(shared, [&](Shell& shell, const Interrupt& interrupt) {
        const auto listen = [&](const SequenceProgress& now) {
            interrupt([&] {
                if (!progress.is_none())
                    progress(now.made + now.kept, now.frames);
            });
        };
        shell.reportEmptyPicture();
        SequenceSettings all = settings;
        if (sun_time)
            all.variations.push_back(sunTime(shell.scene(), *sun_time));
        latest = animate(shell, all, {.progress = listen, .report = notesOf(shell)});
    });
    return {latest.made, latest.kept, latest.frames};
}

void defineSequences(py::module_& module, Session& session) {
    py::class_<SequenceSettings>(module, "SequenceSettings")
        .def(py::init(
            [](std::filesystem::path output, int frames, double frames_per_second, int jobs, bool resume) {
                SequenceSettings settings;
                settings.output = std::move(output);
                settings.frames = frames;
                settings.frames_per_second = frames_per_second;
                settings.jobs = jobs;
                settings.resume = resume;
                settings.program = homeFolder() / "bin/korl";
                return settings;
            }))
        .def("vary",
             [](SequenceSettings& settings, const std::string& object, const std::string& parameter,
                const std::string& from, const std::string& to) {
                 settings.variations.push_back({object, parameter, from, to});
             })
        .def("show",
             [](SequenceSettings& settings, int width, int height, RenderPath path, const std::string& view) {
                 settings.picture = {width, height, path};
                 settings.view = view;
             });
    session.def("animate", &animateScene);
}

void defineExplanations(Session& session) {
    add(session, "explain",
        [](Shell& shell, int width, int height, RenderPath path,
           const std::optional<std::pair<int, int>>& pixel, const std::string& view) {
            const Explanation explanation = explain(shell, {width, height, path, pixel, view});
            return std::pair(toText(explanation), toJson(explanation));
        });
}

} // namespace

void workWithInterrupts(SharedShell& shared, const std::function<void(Shell&, const Interrupt&)>& work) {
    std::optional<py::error_already_set> stopped;
    const auto interrupt = [&](const std::function<void()>& act) {
        if (isEnding())
            throw Error("stopped");
        const py::gil_scoped_acquire acquired;
        try {
            if (PyErr_CheckSignals() != 0)
                throw py::error_already_set();
            act();
        } catch (py::error_already_set& thrown) {
            stopped.emplace(thrown);
            throw Error("stopped"); // what is thrown through the shell must be its own
        }
    };
    try {
        const Released released;
        shared.use([&](Shell& shell) { work(shell, interrupt); });
    } catch (const Error&) {
        if (!stopped)
            throw;
    }
    if (stopped)
        throw py::error_already_set(*stopped);
}

ModelReading interruptibleReading(Shell& shell, const Interrupt& interrupt) {
    ModelReading reading = shell.modelReading();
    reading.meanwhile = [&interrupt] { interrupt([] {}); };
    return reading;
}

void defineWork(py::module_& module, Session& session) {
    defineFiles(session);
    defineSequences(module, session);
    defineExplanations(session);
}

} // namespace korl::python
