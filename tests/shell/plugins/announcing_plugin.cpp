// A small module that does what every module does: it says that it comes and that it goes, and asks for the
// shell's interface. The build names it; it also prints when it goes, so that tests see the order.

#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

namespace {

struct Announcement {
    Announcement() {
        VInitialization::initPlugin(VInitialization::loading, MODULE_NAME, VInitialization::interfaceKey);
    }
    ~Announcement() {
        VInitialization::initPlugin(VInitialization::unloading, MODULE_NAME, VInitialization::interfaceKey);
        Qelt::Vprintf(0, "%s goes\n", MODULE_NAME);
    }
} const announcement;

} // namespace

extern "C" __attribute__((visibility("default"))) bool MODULE_ENTRY(VInitialization* initialization) {
    return initialization->IsCompatible(VInitialization::interfaceKey);
}

// A shell of another interface version finds its own entry point in the same library.
extern "C" __attribute__((visibility("default"))) bool MODULE_ELDER_ENTRY(VInitialization*) {
    return true;
}
