// A module that does while it is loaded, or unloaded, what the environment variables KORL_TEST_LOADING and
// KORL_TEST_UNLOADING say. It is in order where they are not set.

#include <sorvik/initialization.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

void doWhatIsAsked(const char* variable) {
    const char* const value = std::getenv(variable);
    const std::string asked = value ? value : "";
    if (asked == "print")
        std::puts("a module is here");
    else if (asked == "exit")
        std::exit(0);
    else if (asked == "exit at once")
        ::_exit(0);
    else if (asked == "signal")
        std::raise(SIGSEGV);
    else if (asked == "abort with a word") {
        std::fputs("first line\nodd.cpp:7: this cannot be\n", stderr);
        std::abort();
    } else if (asked == "print for ever") {
        while (std::puts("a module is here, and here, and here, and here, and here") >= 0)
            continue;
        ::_exit(7); // when no more is taken
    } else if (asked == "throw a number")
        throw 5;
    else if (asked == "work for ever")
        while (true)
            ::usleep(1000);
}

struct Module {
    Module() {
        VInitialization::initPlugin(0, "odd_initializer", VInitialization::interfaceKey);
        doWhatIsAsked("KORL_TEST_LOADING");
    }
    ~Module() {
        VInitialization::initPlugin(1, "odd_initializer", VInitialization::interfaceKey);
        doWhatIsAsked("KORL_TEST_UNLOADING");
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
} const module_of_this_library;

} // namespace

extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__odd_initializer(VInitialization* shell) {
    return shell->IsCompatible(VInitialization::interfaceKey);
}
