#include "shell/base/child_process.hpp"

#include "shell/error.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
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
        all.push_back(name + "=" + value);
    return all;
}

/// The list as the system takes it: pointers to the texts, which must stay where they are, and null.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
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

    FileActions actions;
    if (start.input >= 0)
        posix_spawn_file_actions_adddup2(actions.get(), start.input, STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (!start.log.empty())
        posix_spawn_file_actions_addopen(actions.get(), STDERR_FILENO, start.log.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0666);
    else if (start.output >= 0)
        posix_spawn_file_actions_adddup2(actions.get(), start.output, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(actions.get(), STDERR_FILENO, STDOUT_FILENO);
    if (start.shared >= 0)
        posix_spawn_file_actions_adddup2(actions.get(), start.shared, shared_descriptor);
    else // not one that this process inherited and has forgotten
        posix_spawn_file_actions_addclose(actions.get(), shared_descriptor);
    if (!start.folder.empty())
        posix_spawn_file_actions_addchdir_np(actions.get(), start.folder.c_str());

    const Attributes attributes;
    const int problem = posix_spawnp(&my_id, start.program.c_str(), actions.get(), attributes.get(),
                                     pointersTo(words).data(), pointersTo(environment).data());
    if (problem != 0) {
        my_id = -1;
        throw Error("cannot start the program " + start.program.string() + ": " + std::strerror(problem));
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
        ::kill(my_id, SIGKILL);
}

int ChildProcess::wait() noexcept {
    int status = 0;
    while (my_id > 0 && ::waitpid(my_id, &status, 0) < 0 && errno == EINTR) {
    }
    my_id = -1;
    return status;
}

std::optional<int> ChildProcess::poll() noexcept {
    int status = 0;
    if (my_id > 0 && ::waitpid(my_id, &status, WNOHANG) == 0)
        return std::nullopt;
    my_id = -1;
    return status;
}

std::optional<int> ChildProcess::waitFor(std::chrono::milliseconds limit) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + limit;
    // A descriptor that can be read once the program has ended; -1 for a program that was waited for already.
    const int descriptor = my_id > 0 ? static_cast<int>(::syscall(SYS_pidfd_open, my_id, 0)) : -1;
    if (my_id > 0 && descriptor < 0)
        throw Error(std::string("cannot wait for a program: ") + std::strerror(errno));
    std::optional<int> status = poll();
    for (auto left = limit; !status && left.count() > 0;
         left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now())) {
        pollfd waiting{descriptor, POLLIN, 0};
        ::poll(&waiting, 1,
               static_cast<int>(std::min<std::chrono::milliseconds::rep>(left.count(), 1'000'000)));
        status = poll();
    }
    if (descriptor >= 0)
        ::close(descriptor);
    return status;
}

void ChildProcess::end(std::chrono::milliseconds limit) noexcept {
    terminate();
    bool has_ended = false;
    try {
        has_ended = waitFor(limit).has_value();
    } catch (const Error&) { // it cannot be waited for with a limit, so it gets no time
    }
    if (!has_ended)
        kill();
    wait();
}

std::string endText(int wait_status) {
    if (WIFSIGNALED(wait_status))
        return "signal " + std::to_string(WTERMSIG(wait_status)) + " (" + strsignal(WTERMSIG(wait_status)) +
               ")";
    return "exit code " + std::to_string(WEXITSTATUS(wait_status));
}

std::filesystem::path thisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace korl
