#include "shell/session/shared_shell.hpp"

#include <utility>

namespace korl {

namespace {

/// Never destroyed: shells may still go while the process ends.
std::mutex& processLock() {
    static auto& lock = *new std::mutex;
    return lock;
}

} // namespace

SharedShell::Turn::Turn(SharedShell& shared) : my_lock(processLock()), my_shared(shared) {
    if (!shared.my_shell)
        throw ClosedShell("the shell is closed; make another one");
}

SharedShell::SharedShell(const std::vector<std::filesystem::path>& plugins,
                         const std::vector<std::filesystem::path>& directories) {
    const std::lock_guard turn(processLock());
    auto shell = std::make_unique<Shell>([this](const std::string& report) { my_reports.push_back(report); });
    for (const std::filesystem::path& file : plugins)
        shell->plugins().load(file);
    shell->plugins().loadFrom(directories);
    my_shell = std::move(shell);
}

void SharedShell::close() noexcept {
    const std::lock_guard turn(processLock());
    my_shell.reset();
}

bool SharedShell::isClosed() const {
    const std::lock_guard turn(processLock());
    return !my_shell;
}

std::vector<std::string> SharedShell::takeReports() {
    const std::lock_guard turn(processLock());
    return std::exchange(my_reports, {});
}

} // namespace korl
