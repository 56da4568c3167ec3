#pragma once

#include "shell/animation/animate.hpp"

#include <chrono>
#include <string>

namespace korl::cli {

/// Shows on standard error how far a sequence is: a bar on a terminal, elsewhere a line now and then.
class ProgressDisplay {
public:
    /// @param quiet shows no progress, only notes.
    explicit ProgressDisplay(bool quiet);
    /// Takes the bar away.
    ~ProgressDisplay() { clear(); }
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    void show(const SequenceProgress& progress);

    /// Shows the user a text above the bar.
    void show(const std::string& text);

private:
    using Clock = std::chrono::steady_clock;

    void clear();
    void showBar(const SequenceProgress& progress);
    void showLine(const SequenceProgress& progress);
    std::string timeLeft(const SequenceProgress& progress) const;

    bool my_is_quiet, my_is_terminal;
    std::string my_bar; ///< as it stands on the terminal; empty for none
    Clock::time_point my_start = Clock::now(), my_last_line = my_start;
};

} // namespace korl::cli
