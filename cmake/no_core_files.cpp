// Tests of what ends by a signal leave no core files behind: neither do test programs, nor what they start.

#include <sys/resource.h>

namespace {

struct NoCoreFiles {
    NoCoreFiles() {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
    }
};

const NoCoreFiles no_core_files;

} // namespace
