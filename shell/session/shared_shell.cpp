#include "shell/session/shared_shell.hpp"

#include "shell/base/printable.hpp"

#include <atomic>
#include <set>
#include <unistd.h>
#include <utility>

namespace korl {

namespace {

/// Never destroyed: shells may still go while the process ends.
std::mutex& processLock() {
    static auto& lock = *new std::mutex;
    return lock;
}

/// Whether this thread has its turn. It must not wait for another one then.
thread_local bool is_at_work = false;

/// Whether this thread has closed all shells for good. It has the process's lock then.
thread_local bool has_ended = false;

/// The process that was the first to use a shell; 0 before.
std::atomic<pid_t> first_process = 0;

/// The shells that are not closed. Never destroyed, as the lock, which has to be held for its use.
std::set<SharedShell*>& openShells() {
    static auto& shells = *new std::set<SharedShell*>;
    return shells;
}

std::unique_lock<std::mutex> lockForWork() {
    if (is_at_work)
        throw Error("a shell is at work on this thread already; use shells when that has ended");
    pid_t none = 0;
    first_process.compare_exchange_strong(none, ::getpid());
    if (SharedShell::isForked()) // where the lock may be held by a thread that is not there
        throw Error("korl cannot be used in a forked process; start it with the \"spawn\" method");
    if (has_ended)
        return {};
    return std::unique_lock(processLock());
}

} // namespace

SharedShell::Turn::Turn(SharedShell& shared) : my_lock(lockForWork()), my_shared(shared) {
    if (!shared.my_shell)
        throw ClosedShell("the shell is closed; make another one");
    is_at_work = true;
}

SharedShell::Turn::~Turn() {
    my_shared.my_shell->releaseContext();
    is_at_work = false;
}

SharedShell::SharedShell(const std::vector<std::filesystem::path>& plugins,
                         const std::vector<std::filesystem::path>& directories) {
    const auto turn = lockForWork();
    if (has_ended)
        throw ClosedShell("a shell cannot be made any more, since the program is ending");
    auto shell = std::make_unique<Shell>(
        [this](const std::string& report) { my_reports.push_back(printableLines(report)); });
    shell->load(plugins, directories);
    openShells().insert(this);
    my_shell = std::move(shell);
}

SharedShell::~SharedShell() {
    if (is_at_work) // this thread has its turn, for work with another shell
        openShells().erase(this);
    else
        close();
}

void SharedShell::close() {
    if (isForked()) {
        static_cast<void>(my_shell.release()); // the parent's
        return;
    }
    const auto turn = lockForWork();
    openShells().erase(this);
    my_shell.reset();
}

void SharedShell::closeAllForGood() {
    lockForWork().release(); // the lock is never given back
    has_ended = true;
    for (SharedShell* const shell : openShells())
        shell->my_shell.reset();
    openShells().clear();
}

bool SharedShell::isForked() {
    const pid_t first = first_process;
    return first != 0 && first != ::getpid();
}

bool SharedShell::isClosed() const {
    const auto turn = lockForWork();
    return !my_shell;
}

std::vector<std::string> SharedShell::takeReports() {
    const auto turn = lockForWork();
    return std::exchange(my_reports, {});
}

} // namespace korl
