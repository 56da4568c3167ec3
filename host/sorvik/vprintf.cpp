#include <sorvik/vprintf.hpp>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace Qelt {

namespace {

std::atomic<int> shell_verbosity{0};

} // namespace

void Vprintf(int level, const char* format, ...) {
    if (level > verbosity())
        return;
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

void setVerbosity(int level) noexcept {
    shell_verbosity.store(level, std::memory_order_relaxed);
}

int verbosity() noexcept {
    return shell_verbosity.load(std::memory_order_relaxed);
}

} // namespace Qelt
