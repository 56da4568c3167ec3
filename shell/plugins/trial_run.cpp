#include "shell/plugins/trial_run.hpp"

#include "shell/base/caught_exception.hpp"
#include "shell/base/error.hpp"
#include "shell/plugins/plugin_handle.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace korl {

namespace {

namespace words = trial_words;

int answer_descriptor = -1;

void send(const std::string& word) {
    [[maybe_unused]] const ssize_t written = ::write(answer_descriptor, word.c_str(), word.size() + 1);
}

/// Comes when an exception leaves a static initialiser or a destructor of the module.
[[noreturn]] void onTerminate() {
    if (!std::current_exception())
        std::abort();
    try {
        throw;
    } catch (...) {
        send(words::threw + nameOfCaughtException());
    }
    ::_exit(1);
}

/// A module that prints without end is not to fill the memory: writing more fails. That the process ends is
/// nothing to be looked into: it leaves no core file.
void limitWhatIsLeft() {
    constexpr rlim_t max_output = 16 << 20; // bytes
    const rlimit output{max_output, max_output}, core{0, 0};
    ::setrlimit(RLIMIT_FSIZE, &output);
    ::setrlimit(RLIMIT_CORE, &core);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace

void runTrial(const PluginInspection& plugin, int answers, const std::function<bool()>& isUnharmed) {
    answer_descriptor = answers;
    limitWhatIsLeft();
    std::set_terminate(onTerminate);
    try {
        send(words::loading);
        const PluginHandle module = openPlugin(plugin);
        send(words::unloading);
    } catch (const Error& error) {
        send(words::refused + std::string(error.what()));
        ::_exit(1);
    }
    if (!isUnharmed()) {
        std::fputs("it wrote into memory that is not its own", stderr);
        std::abort();
    }
    send(words::passed);
    ::_exit(0); // nothing of the module is there any more that could be ended
}

} // namespace korl
