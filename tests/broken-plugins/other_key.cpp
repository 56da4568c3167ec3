// The entry point has the right name and asks for an interface that no shell has. The module announces itself
// as a good one does, so a test sees that it went again.

#include <sorvik/initialization.hpp>

namespace {

struct Announcement {
    Announcement() { VInitialization::initPlugin(VInitialization::loading, "stranger", "STRANGE_KEY"); }
    ~Announcement() { VInitialization::initPlugin(VInitialization::unloading, "stranger", "STRANGE_KEY"); }
} const announcement;

} // namespace

extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__stranger(VInitialization* initialization) {
    return initialization->IsCompatible("STRANGE_KEY");
}
