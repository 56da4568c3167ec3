#include "shell/cli/program.hpp"
#include "shell/cli/progress_display.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/animation/animate.hpp"
#include "shell/animation/worker.hpp"
#include "shell/base/printable.hpp"

#include <array>
#include <csignal>
#include <fmt/core.h>
#include <memory>
#include <sys/time.h>
#include <unistd.h>
#include <utility>

namespace korl::cli {

namespace {

struct AnimateOptions {
    SceneOptions scene;
    std::string path = "shader";
    std::string size = "640x480";
    std::vector<std::string> variations;
    std::string sun_time;
    SequenceSettings sequence;
    std::string output;
    int jobs = 0;
    bool quiet = false;
};

volatile std::sig_atomic_t stop_signal = 0;

/// Longer than what the worker pool needs to end its workers.
constexpr itimerval time_to_stop{{0, 0}, {1, 800'000}};

void noteSignal(int signal) {
    if (stop_signal != 0)
        return; // a second one must not postpone the end
    stop_signal = signal;
    ::setitimer(ITIMER_REAL, &time_to_stop, nullptr);
}

/// What the signal asked for hangs, in a write perhaps that nobody reads. The workers end with this process.
void endAtOnce(int) {
    std::signal(stop_signal, SIG_DFL);
    std::raise(stop_signal);
}

/// While one lives, Ctrl-C, SIGTERM and a terminal that goes away are noted instead of ending the program:
/// its workers are to be stopped first, for which there is a moment. A signal that was ignored stays so, as
/// under nohup.
class NotedSignals {
public:
    NotedSignals() {
        std::signal(SIGALRM, endAtOnce);
        for (std::size_t i = 0; i < signals.size(); ++i) {
            struct sigaction noting {};
            noting.sa_handler = noteSignal;
            ::sigaction(signals[i], nullptr, &my_former[i]);
            if (my_former[i].sa_handler != SIG_IGN)
                ::sigaction(signals[i], &noting, nullptr);
        }
    }
    ~NotedSignals() {
        for (std::size_t i = 0; i < signals.size(); ++i)
            ::sigaction(signals[i], &my_former[i], nullptr);
    }
    NotedSignals(const NotedSignals&) = delete;
    NotedSignals& operator=(const NotedSignals&) = delete;

private:
    static constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, signals.size()> my_former{};
};

std::vector<Variation> variationsOf(const AnimateOptions& options, const Scene& scene) {
    std::vector<Variation> variations;
    try {
        for (const std::string& text : options.variations)
            variations.push_back(parseVariation(text));
    } catch (const Error& error) {
        throw UsageError(fmt::format("--vary: {}", error.what()));
    }
    if (!options.sun_time.empty())
        variations.push_back(sunTime(scene, options.sun_time));
    return variations;
}

void printResult(const AnimateOptions& options, const SequenceProgress& result) {
    const bool is_film = result.makes_film;
    note(fmt::format("wrote {}, {} frame{}{}{}", printable(options.output), result.frames,
                     result.frames == 1 ? "" : "s", is_film ? "" : " numbered from 1",
                     result.kept > 0 ? fmt::format("; {} of them were there already", result.kept) : ""));
}

void animate(Shell& shell, const AnimateOptions& options, std::pair<int, int> size) {
    const auto [width, height] = size;
    fillScene(options.scene, static_cast<double>(width) / height, shell.scene());
    SequenceSettings settings = options.sequence;
    settings.variations = variationsOf(options, shell.scene());
    settings.picture = {width, height, renderPaths().at(options.path)};
    settings.output = options.output;
    settings.jobs = options.jobs;

    SequenceProgress latest;
    const NotedSignals noted;
    try {
        ProgressDisplay display(options.quiet);
        SequenceListener listener;
        bool is_told = options.quiet;
        listener.progress = [&](const SequenceProgress& progress) {
            latest = progress;
            if (!std::exchange(is_told, true))
                for (const Variation& variation : settings.variations)
                    display.show("varies " + describeVariation(variation, shell.scene()));
            display.show(progress);
            if (stop_signal != 0)
                throw Error(fmt::format("stopped by signal {} with {} of {} frames there; "
                                        "--resume goes on from here",
                                        int{stop_signal}, progress.made + progress.kept, progress.frames));
        };
        listener.report = [&](const std::string& text) { display.show(text); };
        latest = korl::animate(shell, settings, listener);
    } catch (const Error& error) {
        if (stop_signal == 0)
            throw;
        note(error.what());
    }
    if (stop_signal == 0 && !options.quiet)
        printResult(options, latest);
}

} // namespace

void addAnimateCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("animate", "Render a sequence in which parameters vary, to pictures or to a film");
    const auto options = std::make_shared<AnimateOptions>();
    SequenceSettings& sequence = options->sequence;
    addSceneOptions(*command, options->scene);
    command
        ->add_option("--vary", options->variations,
                     "Vary a parameter: NAME.PARAM=FROM:TO, such as sun.timeofday=6:18")
        ->allow_extra_args(false);
    command->add_option("--sun-time", options->sun_time,
                        "Vary the time of the scene's first Sun: FROM:TO in hours, such as 6:18");
    command->add_option("--frames", sequence.frames, "How many frames; the first and the last have the ends")
        ->capture_default_str();
    addPathOption(*command, options->path);
    command->add_option("--view", sequence.view, "The scene's view to render");
    command->add_option("--size", options->size, "WIDTHxHEIGHT in pixels, of the picture of one path")
        ->capture_default_str();
    command
        ->add_option("-o,--output", options->output,
                     "\"NAME_####.png\" for pictures, or a film, .mp4 or .gif")
        ->required();
    command->add_option("--fps", sequence.frames_per_second, "Frames per second of a film")
        ->capture_default_str();
    command
        ->add_option("--jobs", options->jobs, "How many frames to draw at once; one on each core if left out")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--resume", sequence.resume, "Leave out frames that are there already");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    command->callback([&program, options] {
        program.command = [&program, options] {
            const auto size = parseSize(options->size);
            withShell(program, [&](Shell& shell) { animate(shell, *options, size); });
            if (stop_signal != 0)
                std::raise(stop_signal); // whoever started the program sees what ended it
        };
    });
}

void addSequenceWorkerCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("sequence-worker", "Make frames for korl animate");
    command->group(""); // not listed: the program starts it itself
    command->callback([&program] { program.command = [] { runSequenceWorker(STDIN_FILENO); }; });
}

} // namespace korl::cli
