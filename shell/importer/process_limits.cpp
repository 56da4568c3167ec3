#include "shell/importer/process_limits.hpp"

#include "shell/scene/model_file.hpp"

#include <chrono>
#include <csignal>
#include <fstream>
#include <new>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace korl {

namespace {

void endWithoutMemory() {
    ::_exit(import_exit_code_no_memory);
}

#ifdef KORL_SANITIZED
void requireResidentBelow(std::uint64_t bytes) {
    std::uint64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    if (resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) > bytes)
        endWithoutMemory();
}

/// Sanitizers reserve terabytes of addresses, so that what is resident is watched instead.
void watchResidentSize(std::uint64_t bytes) {
    requireResidentBelow(bytes); // before the watcher has its turn all may be over
    std::thread([=] {
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(5)))
            requireResidentBelow(bytes);
    }).detach();
}
#endif

} // namespace

void endWithParent(pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
}

void limitMemory(std::uint64_t bytes) {
    const rlimit no_core{0, 0};
    ::setrlimit(RLIMIT_CORE, &no_core);
    std::set_new_handler(endWithoutMemory);
#ifdef KORL_SANITIZED
    watchResidentSize(bytes);
#else
    const rlimit addresses{bytes, bytes};
    ::setrlimit(RLIMIT_AS, &addresses);
#endif
}

} // namespace korl
