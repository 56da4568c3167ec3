// An exception leaves a static initialiser, which ends the process under glibc.

#include <stdexcept>

class VInitialization;

namespace {

struct Thrower {
    Thrower() { throw std::runtime_error("the initialiser failed"); }
} const thrower;

} // namespace

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__unlucky(VInitialization*) {
    return true;
}
