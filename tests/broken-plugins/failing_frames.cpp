// A module with a type whose objects spoil the frames that they are in, each in the way that their parameter
// tells.

#include <doltra/renderable.hpp>
#include <sorvik/module.hpp>
#include <sorvik/slot_access.hpp>
#include <sorvik/value_pool.hpp>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace {

/// What "mood" tells.
constexpr double good = 0, throwing = 1, deadly = 2, deadly_once = 3, slow = 4, greedy = 5, stuck = 6;

/// @returns whether it is the first in this test to ask; the test names a file that isn't there yet, and gets
/// the number of this process in it.
bool isFirst() {
    const char* const marker = std::getenv("KORL_TEST_MARKER");
    const int file = marker ? ::open(marker, O_WRONLY | O_CREAT | O_EXCL, 0600) : -1;
    if (file >= 0) {
        ::dprintf(file, "%d", ::getpid());
        ::close(file);
    }
    return file >= 0;
}

/// Waits for ever once the pipe is full; SIGTERM does not end it.
void writeToPipe() {
    static const int end = [] {
        std::signal(SIGTERM, SIG_IGN);
        int ends[2];
        return ::pipe(ends) == 0 ? ends[1] : -1;
    }();
    const char bytes[4096] = {};
    static_cast<void>(::write(end, bytes, sizeof bytes));
}

struct Moody : Qelt::RenderAble {
    Moody(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : RenderAble(name, 0, preferences) {
        enableRequestProcessing();
    }

    bool update(Qelt::VRequest& request, double) override {
        const double value = Qelt::readTypedOr(good, mood, request.pool());
        if (value == throwing)
            throw std::runtime_error("in no mood for it");
        if (value == deadly || (value == deadly_once && isFirst()))
            std::raise(SIGKILL);
        if (value == greedy)
            throw std::bad_alloc();
        if (value == stuck && isFirst()) // in a write that nobody reads, for ever
            while (true)
                writeToPipe();
        if (value == slow)
            ::usleep(200'000);
        return true;
    }

    Qelt::TypedSlot<double> mood{this, "mood", good};
};

struct Module {
    Qelt::ModuleAnnouncement announcement{"failing_frames"};
    Qelt::ValueType<double> numbers;
    Qelt::VCreator<Moody, void> moody{std::string("Moody"), 0};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(failing_frames);
