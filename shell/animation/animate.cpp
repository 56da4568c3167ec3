#include "shell/animation/animate.hpp"

#include "shell/animation/film.hpp"
#include "shell/animation/frame_stamp.hpp"
#include "shell/animation/output_files.hpp"
#include "shell/animation/sequence_lock.hpp"
#include "shell/animation/worker_pool.hpp"
#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"
#include "shell/base/temporary_folder.hpp"
#include "shell/mesh/mesh_memory.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <map>
#include <optional>
#include <system_error>
#include <thread>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr const char* solar_time_note = "equinox, solar time";
constexpr double max_gif_frames_per_second = 50; ///< viewers slow down what is faster
constexpr int max_film_frames = 999'999;         ///< the digits of the frames' names

/// Makes a scene's background opaque, where that is asked for, until this object goes.
class OpaqueBackground {
public:
    OpaqueBackground(Scene& scene, bool is_wanted) : my_scene(scene), my_alpha(scene.background.a) {
        if (is_wanted)
            my_scene.background.a = 1;
    }
    ~OpaqueBackground() { my_scene.background.a = my_alpha; }
    OpaqueBackground(const OpaqueBackground&) = delete;
    OpaqueBackground& operator=(const OpaqueBackground&) = delete;

private:
    Scene& my_scene;
    float my_alpha;
};

std::string nameOf(const Variation& variation) {
    return fmt::format("{}.{}", variation.object, variation.parameter);
}

std::string withNote(const std::string& text, bool is_solar_time) {
    return is_solar_time ? fmt::format("{} ({})", text, solar_time_note) : text;
}

/// "3, 7-9": the numbers of frames, in order.
std::string listed(const std::vector<int>& numbers) {
    std::string text;
    for (std::size_t first = 0, last; first < numbers.size(); first = last + 1) {
        for (last = first; last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1;)
            ++last;
        text += fmt::format("{}{}", text.empty() ? "" : ", ", numbers[first]);
        if (last > first)
            text += fmt::format("-{}", numbers[last]);
    }
    return text;
}

[[noreturn]] void throwFailures(const std::map<int, std::string>& failures, int frames) {
    std::map<std::string, std::vector<int>> numbers_by_reason;
    for (const auto& [number, reason] : failures)
        numbers_by_reason[reason].push_back(number);
    std::string text = fmt::format("{} of {} frames could not be made, though each was tried twice",
                                   failures.size(), frames);
    for (const auto& [reason, numbers] : numbers_by_reason)
        text += fmt::format("\nframe {}: {}", listed(numbers), reason);
    throw Error(text);
}

/// A sequence on its way from its settings to its files.
class Sequence {
public:
    Sequence(Shell& shell, const SequenceSettings& settings, const SequenceListener& listener)
        : my_shell(shell), my_settings(settings), my_listener(listener),
          my_kind(sequenceKind(settings.output)) {
        if (my_kind == SequenceKind::pictures)
            my_names.emplace(settings.output);
        my_progress.frames = settings.frames;
        check();
        my_film = isFilm() ? regularTarget(settings.output) : fs::path();
    }

    SequenceProgress make() {
        const std::string scene = sceneToDraw();
        const SequenceLock lock(isFilm() ? my_film : my_settings.output);
        if (!lock.isHeld())
            report(fmt::format("the file system of {} has no locks; "
                               "see to it that no other process makes the same sequence",
                               printable(my_settings.output.string())));
        if (isFilm())
            makeFilmFolder();
        std::vector<FrameRequest> missing = missingFrames(checksum(my_shell.scene(), scene));
        reportProgress();
        if (!missing.empty()) {
            const auto failures = makeFrames(scene, std::move(missing));
            if (!failures.empty())
                throwFailures(failures, my_settings.frames);
        }
        if (isFilm())
            makeFilmOfFrames();
        return my_progress;
    }

private:
    void check() const {
        checkNumbers();
        for (auto varied = my_settings.variations.begin(); varied != my_settings.variations.end(); ++varied) {
            validate(*varied, my_shell.scene(), my_settings.view);
            if (std::any_of(my_settings.variations.begin(), varied,
                            [&](const Variation& other) { return nameOf(other) == nameOf(*varied); }))
                throw Error(inQuotes(nameOf(*varied)) + " is varied twice; once is enough");
        }
        if (!my_settings.view.empty())
            my_shell.scene().view(my_settings.view); // throws where there is none
        const fs::path folder = my_settings.output.parent_path();
        if (!folder.empty() && !fs::is_directory(folder))
            throw Error(fmt::format("cannot write {}: the folder {} does not exist; make it first",
                                    printable(my_settings.output.string()), printable(folder.string())));
        if (fs::is_directory(my_settings.output))
            throw Error(
                fmt::format("cannot write {}: it is a directory", printable(my_settings.output.string())));
        if (isFilm())
            requireFfmpeg(my_settings.output);
    }

    void checkNumbers() const {
        const int max_frames = my_names && my_names->digits() < 6
                                   ? static_cast<int>(std::pow(10, my_names->digits())) - 1
                                   : max_film_frames;
        if (my_settings.frames < 1)
            throw Error(fmt::format("a sequence has at least one frame, found {}", my_settings.frames));
        if (my_settings.frames > max_frames)
            throw Error(
                fmt::format("{} takes {} frames at most, found {}{}",
                            inQuotes(my_settings.output.filename().string()), max_frames, my_settings.frames,
                            max_frames < max_film_frames ? "; put more # characters into the name" : ""));
        if (my_settings.picture.width < 1 || my_settings.picture.height < 1)
            throw Error("a picture has at least one pixel");
        if (my_settings.jobs < 0)
            throw Error(fmt::format("the frames are made by at least one job, found {}", my_settings.jobs));
        const double rate = my_settings.frames_per_second;
        if (!std::isfinite(rate) || rate <= 0)
            throw Error("a film has more than 0 frames per second");
        if (my_kind == SequenceKind::gif && rate > max_gif_frames_per_second)
            throw Error("a GIF shows 50 frames per second at most; ask for fewer, or for an MP4");
    }

    bool isFilm() const { return my_kind != SequenceKind::pictures; }

    fs::path filmFolder() const { return my_film.string() + ".frames"; }

    void makeFilmFolder() const {
        std::error_code problem;
        fs::create_directory(filmFolder(), problem);
        if (problem || !fs::is_directory(filmFolder()))
            throw Error(fmt::format("cannot make the folder {} for the film's frames: {}",
                                    printable(filmFolder().string()),
                                    problem ? problem.message() : "there is a file of that name"));
    }

    fs::path frameFile(int number) const {
        return my_names ? my_names->file(number) : filmFrame(filmFolder(), number);
    }

    /// The scene as a file in the root folder has it. An mp4 has no alpha: where its scene's background is
    /// seen, it is opaque.
    std::string sceneToDraw() {
        Scene& scene = my_shell.scene();
        const OpaqueBackground opaque(scene, my_kind == SequenceKind::mp4);
        return sceneText(scene, "/");
    }

    /// The requests for all frames, but for those that are there already where that is asked for.
    std::vector<FrameRequest> missingFrames(std::uint32_t scene) {
        std::vector<FrameRequest> missing;
        for (int number = 1; number <= my_settings.frames; ++number) {
            FrameRequest request = requestFor(number, scene);
            regularTarget(frameFile(number)); // throws for a pipe, which would keep a worker waiting
            if (my_settings.resume && frameStamp(request.file) == request.stamp)
                ++my_progress.kept;
            else
                missing.push_back(std::move(request));
        }
        return missing;
    }

    /// @param scene its checksum.
    FrameRequest requestFor(int number, std::uint32_t scene) const {
        FrameRequest request{number, fs::absolute(frameFile(number)).string(), {}, {}, {}};
        const RenderSettings& picture = my_settings.picture;
        std::string stamped = fmt::format("korl {} {} {}x{} {} {}", KORL_VERSION, scene, picture.width,
                                          picture.height, static_cast<int>(picture.path), my_settings.view);
        for (const Variation& variation : my_settings.variations) {
            const std::string text =
                valueAt(variation, number - 1, my_settings.frames, isDirection(variation, my_shell.scene()));
            request.values.push_back({variation.object, variation.parameter, text});
            const std::string varied = fmt::format("{} = {}", nameOf(variation), text);
            stamped += "; " + varied;
            request.description += (request.description.empty() ? "" : "; ") +
                                   withNote(varied, isSolarTime(variation, my_shell.scene()));
        }
        request.stamp = std::to_string(checksum(stamped));
        return request;
    }

    std::map<int, std::string> makeFrames(const std::string& scene, std::vector<FrameRequest> missing) {
        const TemporaryFolder folder;
        WorkerJob job{(folder.path() / "scene.json").string(),
                      my_settings.picture,
                      my_settings.view,
                      Qelt::verbosity(),
                      {}};
        writeFileAtomically(job.scene_file, scene);
        for (const PluginLibrary& plugin : my_shell.plugins().libraries())
            job.plugins.push_back(plugin.file().string());

        // The models as they are in the scene, read once, whatever has become of their files since.
        const MemoryFile meshes;
        MeshWriter writer(meshes);
        for (const auto& mesh : my_shell.scene().meshes())
            if (mesh->source)
                writer.put(*mesh);
        meshes.seal();

        WorkerPool::Settings pool;
        pool.meshes = meshes.descriptor();
        pool.program = my_settings.program.empty() ? thisProgram() : my_settings.program;
        const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
        pool.jobs = my_settings.jobs > 0 ? my_settings.jobs : cores;
        pool.report = [this](const std::string& text) { report(text); };
        pool.progress = [this](int done, int failed) {
            my_progress.made = done;
            my_progress.failed = failed;
            reportProgress();
        };
        return WorkerPool(std::move(pool), std::move(job), std::move(missing)).run();
    }

    void makeFilmOfFrames() {
        my_progress.makes_film = true;
        makeFilm({my_film, my_kind, my_settings.frames_per_second, my_settings.frames}, filmFolder(),
                 [this] { reportProgress(); });
        // Frames of a longer film that was given up may be there too; a file of the user's stays, and with it
        // the folder.
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(filmFolder(), ignored))
            if (!frameStamp(entry.path()).empty())
                fs::remove(entry.path(), ignored);
        fs::remove(filmFolder(), ignored);
    }

    void report(const std::string& text) const {
        if (my_listener.report)
            my_listener.report(text);
    }

    void reportProgress() const {
        if (my_listener.progress)
            my_listener.progress(my_progress);
    }

    Shell& my_shell;
    const SequenceSettings& my_settings;
    const SequenceListener& my_listener;
    SequenceKind my_kind;
    std::optional<FrameNames> my_names; ///< of pictures, not of a film
    fs::path my_film;                   ///< the film, where a symbolic link to it was named
    SequenceProgress my_progress;
};

} // namespace

SequenceProgress animate(Shell& shell, const SequenceSettings& settings, const SequenceListener& listener) {
    return Sequence(shell, settings, listener).make();
}

std::string describeVariation(const Variation& variation, const Scene& scene) {
    return withNote(fmt::format("{} from {} to {}", nameOf(variation), variation.from, variation.to),
                    isSolarTime(variation, scene));
}

} // namespace korl
