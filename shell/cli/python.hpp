#pragma once

#include "shell/cli/program.hpp"

namespace korl::cli {

/// Whether a user sits at both ends of the program.
bool isOnTerminal();

/// Turns this process into Python's interactive prompt with a shell ready. Throws Error where there is no
/// Python.
[[noreturn]] void openPrompt(const Program& program);

} // namespace korl::cli
