#pragma once

#include <sorvik/export.hpp>

namespace Qelt {

/// Prints a diagnostic on standard output, in the manner of printf, if the shell's verbosity is at least
/// `verbosity`. Level 0 is always shown, 50 traces parameters, 100 traces creators.
SORVIK_EXPORT void Vprintf(int verbosity, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Sets the shell's verbosity; it starts at 0.
SORVIK_EXPORT void setVerbosity(int verbosity) noexcept;

/// The shell's verbosity.
SORVIK_EXPORT int verbosity() noexcept;

} // namespace Qelt
