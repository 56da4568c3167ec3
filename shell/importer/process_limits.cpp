#include "shell/importer/process_limits.hpp"

#include "shell/mesh/model_file.hpp"

#include <chrono>
#include <fstream>
#include <new>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace korl {

namespace {

void endWithoutMemory() {
    ::_exit(import_exit_code_no_memory);
}

/// What counts of this process's memory, in pages: its addresses or, with sanitizers, which reserve terabytes
/// of these, what is resident.
std::uint64_t pagesInUse() {
    std::uint64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
#ifdef KORL_SANITIZED
    return resident;
#else
    return size;
#endif
}

void requireLessThan(std::uint64_t bytes) {
    if (pagesInUse() * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) > bytes)
        endWithoutMemory();
}

#ifdef KORL_SANITIZED
void watchMemory(std::uint64_t bytes) {
    std::thread([=] {
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(5)))
            requireLessThan(bytes);
    }).detach();
}
#endif

} // namespace

void limitMemory(std::uint64_t bytes) {
    const rlimit no_core{0, 0};
    ::setrlimit(RLIMIT_CORE, &no_core);
    std::set_new_handler(endWithoutMemory);
    requireLessThan(bytes); // a limit below this would end the process in some other way
#ifdef KORL_SANITIZED
    watchMemory(bytes);
#else
    const rlimit addresses{bytes, bytes};
    ::setrlimit(RLIMIT_AS, &addresses);
#endif
}

} // namespace korl
