#include "shell/base/child_process.hpp"

#include "shell/base/descriptor.hpp"
#include "shell/base/error.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fmt/core.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korl {

namespace {

/// What is done to the descriptors of the new process, in this order.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&my_actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&my_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t* get() { return &my_actions; }

private:
    posix_spawn_file_actions_t my_actions{};
};

/// A process group of its own, and no signal blocked or ignored on this process's account.
class Attributes {
public:
    Attributes() {
        posix_spawnattr_init(&my_attributes);
        posix_spawnattr_setflags(&my_attributes,
                                 POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals{};
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&my_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&my_attributes, &signals);
    }
    ~Attributes() { posix_spawnattr_destroy(&my_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &my_attributes; }

private:
    posix_spawnattr_t my_attributes{};
};

/// A copy of a descriptor that is none of those which the new process gets, even where this one's standard
/// streams are closed; -1 for -1.
Descriptor copyOutOfTheWay(int descriptor) {
    if (descriptor < 0)
        return Descriptor();
    Descriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, shared_descriptor + 1));
    if (!copy.isOpen())
        throw Error(fmt::format("cannot start a program: {}", std::strerror(errno)));
    return copy;
}

/// This process's environment and some more, as texts "NAME=VALUE".
std::vector<std::string> environmentWith(const std::vector<std::pair<std::string, std::string>>& additions) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry; ++entry) {
        const std::string name(*entry, std::strcspn(*entry, "="));
        if (std::none_of(additions.begin(), additions.end(),
                         [&](const auto& addition) { return addition.first == name; }))
            all.emplace_back(*entry);
    }
    for (const auto& [name, value] : additions)
        all.push_back(fmt::format("{}={}", name, value));
    return all;
}

/// The list as the system takes it: pointers to the texts, which must stay where they are, and null.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ChildProcess::ChildProcess(const ProcessStart& start) : my_id(-1) {
    std::vector<std::string> words{start.program.string()};
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
    std::vector<std::string> environment = environmentWith(start.environment);

    const Descriptor input = copyOutOfTheWay(start.input), output = copyOutOfTheWay(start.output),
                     shared = copyOutOfTheWay(start.shared);
    FileActions actions;
    if (input.isOpen())
        posix_spawn_file_actions_adddup2(actions.get(), input.get(), STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output.isOpen())
        posix_spawn_file_actions_adddup2(actions.get(), output.get(), STDERR_FILENO);
    posix_spawn_file_actions_adddup2(actions.get(), STDERR_FILENO, STDOUT_FILENO);
    if (shared.isOpen())
        posix_spawn_file_actions_adddup2(actions.get(), shared.get(), shared_descriptor);
    else // not one that this process inherited and has forgotten
        posix_spawn_file_actions_addclose(actions.get(), shared_descriptor);
    if (!start.folder.empty())
        posix_spawn_file_actions_addchdir_np(actions.get(), start.folder.c_str());

    const Attributes attributes;
    const int problem = posix_spawnp(&my_id, start.program.c_str(), actions.get(), attributes.get(),
                                     pointersTo(words).data(), pointersTo(environment).data());
    if (problem != 0) {
        my_id = -1;
        throw Error(
            fmt::format("cannot start the program {}: {}", start.program.string(), std::strerror(problem)));
    }
}

ChildProcess::~ChildProcess() {
    end(grace);
}

void ChildProcess::terminate() noexcept {
    if (my_id > 0)
        ::kill(my_id, SIGTERM);
}

void ChildProcess::kill() noexcept {
    if (my_id > 0)
        ::kill(-my_id, SIGKILL);
}

int ChildProcess::wait() noexcept {
    int status = 0;
    while (my_id > 0 && ::waitpid(my_id, &status, 0) < 0) {
        if (errno == EINTR)
            continue;
        status = unknown_end;
        break;
    }
    my_id = -1;
    return status;
}

std::optional<int> ChildProcess::poll() noexcept {
    int status = 0;
    const pid_t ended = my_id > 0 ? ::waitpid(my_id, &status, WNOHANG) : my_id;
    if (my_id > 0 && ended == 0)
        return std::nullopt;
    if (my_id > 0 && ended < 0)
        status = unknown_end;
    my_id = -1;
    return status;
}

std::optional<int> ChildProcess::waitFor(std::chrono::milliseconds limit) noexcept {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + limit;
    // It can be read once the program has ended. Some sandboxes refuse it; then we look again and again.
    const Descriptor ended(my_id > 0 ? static_cast<int>(::syscall(SYS_pidfd_open, my_id, 0)) : -1);
    const std::chrono::milliseconds max_wait(ended.isOpen() ? 1'000'000 : 10);
    std::optional<int> status = poll();
    for (auto left = limit; !status && left.count() > 0;
         left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now())) {
        pollfd waiting{ended.get(), POLLIN, 0}; // a negative one is passed over
        ::poll(&waiting, 1, static_cast<int>(std::min(left, max_wait).count()));
        status = poll();
    }
    return status;
}

void ChildProcess::end(std::chrono::milliseconds limit) noexcept {
    terminate();
    if (!waitFor(limit))
        kill();
    wait();
}

std::string endText(int wait_status) {
    if (wait_status == unknown_end)
        return "an unknown exit code";
    if (WIFSIGNALED(wait_status))
        return fmt::format("signal {} ({})", WTERMSIG(wait_status), strsignal(WTERMSIG(wait_status)));
    return fmt::format("exit code {}", WEXITSTATUS(wait_status));
}

void endWithParent(pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
}

std::filesystem::path thisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace korl
