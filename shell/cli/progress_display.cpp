#include "shell/cli/progress_display.hpp"

#include "shell/cli/program.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fmt/core.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace korl::cli {

namespace {

constexpr std::chrono::seconds between_lines{5};
constexpr int max_bar_width = 40;  ///< columns
constexpr int beside_the_bar = 40; ///< columns for the words

int terminalColumns() {
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

int done(const SequenceProgress& progress) {
    return progress.made + progress.kept + progress.failed;
}

std::string counted(const SequenceProgress& progress) {
    return fmt::format("{} of {} frames", done(progress), progress.frames);
}

} // namespace

ProgressDisplay::ProgressDisplay(bool quiet)
    : my_is_quiet(quiet), my_is_terminal(::isatty(STDERR_FILENO) == 1) {}

void ProgressDisplay::show(const SequenceProgress& progress) {
    if (my_is_quiet)
        return;
    if (my_is_terminal)
        showBar(progress);
    else
        showLine(progress);
}

void ProgressDisplay::show(const std::string& text) {
    clear();
    note(text);
}

void ProgressDisplay::clear() {
    if (!my_bar.empty())
        std::fputs("\r\x1b[K", stderr);
    my_bar.clear();
}

void ProgressDisplay::showBar(const SequenceProgress& progress) {
    const int width = std::min(max_bar_width, terminalColumns() - beside_the_bar);
    const int filled = width * done(progress) / progress.frames;
    std::string bar;
    if (width > 0)
        bar = fmt::format("[{:{}}] ", std::string(static_cast<std::size_t>(filled), '#'), width);
    bar += progress.makes_film ? "making the film" : counted(progress) + timeLeft(progress);
    if (bar == my_bar)
        return;
    std::fprintf(stderr, "\r%s\x1b[K", bar.c_str());
    my_bar = bar;
}

void ProgressDisplay::showLine(const SequenceProgress& progress) {
    const Clock::time_point now = Clock::now();
    if (now - my_last_line < between_lines || done(progress) == progress.frames)
        return; // what is done is told by others
    my_last_line = now;
    note(counted(progress) + timeLeft(progress));
}

std::string ProgressDisplay::timeLeft(const SequenceProgress& progress) const {
    const int drawn = progress.made + progress.failed;
    if (drawn == 0 || done(progress) == progress.frames)
        return "";
    const double seconds = std::chrono::duration<double>(Clock::now() - my_start).count();
    const long left = std::lround(std::ceil(seconds / drawn * (progress.frames - done(progress))));
    return left < 60 ? fmt::format(", {} s left", left)
                     : fmt::format(", {} min {} s left", left / 60, left % 60);
}

} // namespace korl::cli
