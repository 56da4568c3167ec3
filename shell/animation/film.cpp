#include "shell/animation/film.hpp"

#include "shell/base/child_process.hpp"
#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"
#include "shell/base/written_text.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fmt/core.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr const char* encoder = "ffmpeg";
constexpr const char* frame_pattern = "frame_%06d.png"; ///< as ffmpeg and printf understand it

/// H.264 halves the colours' resolution, so its sides are even.
constexpr const char* mp4_filter =
    "scale=out_color_matrix=bt709:out_range=tv,format=yuv420p,pad=ceil(iw/2)*2:ceil(ih/2)*2";
constexpr const char* gif_filter =
    "split[frames][seen];[seen]palettegen[palette];[frames][palette]paletteuse";

std::string numberText(double number) {
    std::ostringstream text;
    text.precision(17);
    text << number;
    return text.str();
}

std::vector<std::string> encoderArguments(const Film& film, const std::string& output) {
    std::vector<std::string> words{"-hide_banner", "-loglevel", "error", "-xerror", "-nostdin", "-y"};
    const auto add = [&](const std::vector<std::string>& more) {
        words.insert(words.end(), more.begin(), more.end());
    };
    add({"-framerate", numberText(film.frames_per_second), "-start_number", "1", "-i", frame_pattern});
    add({"-frames:v", std::to_string(film.frames)});
    if (film.kind == SequenceKind::gif)
        add({"-filter_complex", gif_filter, "-loop", "0"});
    else
        add({"-vf", mp4_filter, "-c:v", "libx264", "-crf", "18", "-color_primaries", "bt709", "-color_trc",
             "bt709", "-colorspace", "bt709", "-movflags", "+faststart"});
    add({output});
    return words;
}

/// Whether a file is a film to its end: ffmpeg has been seen to report success for less on a full disk.
bool isWhole(const fs::path& file, SequenceKind kind) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    if (stream.tellg() <= 0)
        return false;
    constexpr char gif_trailer = ';';
    stream.seekg(-1, std::ios::end);
    return kind != SequenceKind::gif || stream.get() == gif_trailer;
}

[[noreturn]] void throwFailure(const Film& film, const fs::path& folder, const std::string& what,
                               const std::string& said) {
    throw Error(
        fmt::format("cannot make the film {}: ffmpeg {}{}\n"
                    "The frames stay in {}: mend the cause, a full disk perhaps, and resume the sequence.",
                    printable(film.file.string()), what, said.empty() ? "" : " and said:\n" + said,
                    printable(folder.string())));
}

} // namespace

void requireFfmpeg(const fs::path& film) {
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (::access((fs::path(folder.empty() ? "." : folder) / encoder).c_str(), X_OK) == 0)
            return;
    throw Error(
        fmt::format("cannot make the film {}: there is no ffmpeg on the PATH; "
                    "install it (on Debian the package ffmpeg), or write pictures, such as \"day_####.png\"",
                    printable(film.string())));
}

fs::path filmFrame(const fs::path& folder, int number) {
    char name[32];
    std::snprintf(name, sizeof name, frame_pattern, number);
    return folder / name;
}

void makeFilm(const Film& film, const fs::path& folder, const std::function<void()>& wait) {
    // ffmpeg works in the folder: no path of the user's can be taken for an option, a pattern or an address.
    const std::string written = film.kind == SequenceKind::gif ? "film.gif" : "film.mp4";
    // Also where a process that was killed left its ffmpeg at work: that one goes on with the file it has.
    std::error_code problem;
    fs::remove(folder / written, problem);
    ProcessStart start{encoder, encoderArguments(film, written)};
    start.folder = folder;
    const WrittenText log;
    start.output = log.descriptor();
    ChildProcess process(start);
    std::optional<int> end;
    while (!(end = process.poll())) {
        wait();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    const bool has_succeeded = WIFEXITED(*end) && WEXITSTATUS(*end) == 0;
    const std::string said = log.lastLines(5);
    if (!has_succeeded || !said.empty() || !isWhole(folder / written, film.kind)) {
        fs::remove(folder / written, problem); // the disk may be full
        throwFailure(film, folder, has_succeeded ? "did not write all of it" : "ended with " + endText(*end),
                     said);
    }
    moveIntoPlace(folder / written, film.file);
}

} // namespace korl
