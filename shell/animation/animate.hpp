#pragma once

#include "shell/animation/variation.hpp"
#include "shell/render/render_settings.hpp"
#include "shell/session/shell.hpp"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace korl {

/// A sequence of pictures of one scene in which parameters go from one value to another.
struct SequenceSettings {
    std::vector<Variation> variations; ///< a frame is drawn with the values of all of them
    int frames = 25;
    RenderSettings picture{};
    std::string view{};             ///< the view to draw; the varied values are then that view's own
    std::filesystem::path output{}; ///< "day_####.png", "day.mp4" or "day.gif"
    double frames_per_second = 25;  ///< of a film
    int jobs = 0;                   ///< how many frames are drawn at once; 0 for one on each processor core
    bool resume = false;            ///< leaves frames alone that are there and are those of this sequence
    /// The korl program, which draws the frames; empty where this process runs it.
    std::filesystem::path program{};
};

/// How far a sequence is.
struct SequenceProgress {
    int frames = 0; ///< of the whole sequence
    int made = 0;
    int kept = 0; ///< that were there already
    int failed = 0;
    bool makes_film = false; ///< all frames are there, and the film is made of them
};

/// Who is told about a sequence while it is made. Both may be left out.
struct SequenceListener {
    /// Called at least ten times a second while there is something to wait for. It may throw to end the
    /// sequence: the workers are stopped, and the frames that are there stay, each one whole.
    std::function<void(const SequenceProgress&)> progress{};
    /// Takes what the user should know, each thing once.
    std::function<void(const std::string&)> report{};
};

/// Makes a sequence of the shell's scene, which stays as it is.
///
/// The frames are drawn by worker programs, so that several are drawn at once, a driver or module that
/// crashes ends one frame alone, and it does not matter what this process has under way. They get the scene
/// as it is now in a file, and the modules that are loaded. How many there are changes no byte of a frame. A
/// frame that fails is tried once more.
///
/// Pictures are numbered from 1 and replace files of their names. Each is an own PNG file, whole or not
/// there, whose texts tell its values. The frames of a film lie in a folder beside it, its name followed by
/// ".frames"; the folder goes when the film is there, and stays for `resume` when it could not be made.
///
/// @returns how the sequence was when it ended; no frame has failed then.
/// Throws Error for settings that cannot be, before any frame is made; for frames that failed twice, by
/// their numbers, after all others were made; and where a film cannot be made.
SequenceProgress animate(Shell& shell, const SequenceSettings& settings,
                         const SequenceListener& listener = {});

/// What varies in a sequence, for users: "sun.timeofday from 6 to 18 (equinox, solar time)".
std::string describeVariation(const Variation& variation, const Scene& scene);

} // namespace korl
