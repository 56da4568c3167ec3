#pragma once

#include "shell/animation/output_files.hpp"

#include <filesystem>
#include <functional>

namespace korl {

/// A film of a sequence's frames, made by the ffmpeg program.
struct Film {
    std::filesystem::path file;
    SequenceKind kind = SequenceKind::mp4; ///< not pictures
    double frames_per_second = 25;
    int frames = 1;
};

/// Throws Error where there is no ffmpeg on the PATH.
void requireFfmpeg(const std::filesystem::path& film);

/// Which file in the folder holds a frame of the film, counted from 1.
std::filesystem::path filmFrame(const std::filesystem::path& folder, int number);

/// Makes the film from the frames in the folder, which must all be there. The file is written in that folder
/// first, synced and renamed, so the folder must be on the disk of the film. An MP4 is H.264 with 4:2:0
/// colours of BT.709, as browsers play it; an odd width or height gets one column or row of black more. A GIF
/// has one palette of its own colours and is repeated for ever.
/// @param wait is called at least ten times a second; it may throw to end it.
/// Throws Error, with ffmpeg's last words, where it fails or wrote less than a film; the frames stay then.
void makeFilm(const Film& film, const std::filesystem::path& folder, const std::function<void()>& wait);

} // namespace korl
