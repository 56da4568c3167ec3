#include "shell/session/shared_shell.hpp"

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

std::unique_lock<std::mutex> lockForWork() {
    if (is_at_work)
        throw Error("a shell is at work on this thread already; use shells when that has ended");
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
    auto shell = std::make_unique<Shell>([this](const std::string& report) { my_reports.push_back(report); });
    for (const std::filesystem::path& file : plugins)
        shell->plugins().load(file);
    shell->plugins().loadFrom(directories);
    my_shell = std::move(shell);
}

SharedShell::~SharedShell() {
    if (!is_at_work) // otherwise this thread has its turn, for work with another shell
        close();
}

void SharedShell::close() {
    const auto turn = lockForWork();
    my_shell.reset();
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
