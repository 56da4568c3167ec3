#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace korl {

/// How a program is started.
struct ProcessStart {
    std::filesystem::path program;      ///< a path, or a name to be looked up on the PATH
    std::vector<std::string> arguments; ///< without the program's own name
    std::vector<std::pair<std::string, std::string>> environment{}; ///< beside what this process has
    std::filesystem::path folder{};                                 ///< to work in; empty for this process's
    int input = -1;  ///< its descriptor 0; -1 for nothing to read
    int shared = -1; ///< its descriptor 3, beside the usual three; -1 for none
    int output = -1; ///< its descriptors 1 and 2; -1 for standard error
};

/// The descriptor at which a program finds `ProcessStart::shared`.
inline constexpr int shared_descriptor = 3;

/// A program that runs beside this one, in a process group of its own: a Ctrl-C on the terminal ends it only
/// through this process. Started without a fork, so that it does not matter what threads, locks and drivers
/// this process has.
class ChildProcess {
public:
    /// Throws Error where the program cannot be started.
    explicit ChildProcess(const ProcessStart& start);
    /// Ends the program if it still runs.
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept : my_id(std::exchange(other.my_id, -1)) {}
    ChildProcess& operator=(ChildProcess&&) = delete;

    /// Asks the program to end.
    void terminate() noexcept;

    /// Ends the program at once, whatever it does, and what it has started in its group.
    void kill() noexcept;

    /// Waits for the program's end. @returns what `waitpid` tells of it, or `unknown_end`.
    int wait() noexcept;

    /// The same without waiting: nothing where the program still runs.
    std::optional<int> poll() noexcept;

    /// The same, but waiting for no longer than `limit`.
    std::optional<int> waitFor(std::chrono::milliseconds limit) noexcept;

    /// Asks the program to end, and kills it where it has not done so within `limit`.
    void end(std::chrono::milliseconds limit) noexcept;

    /// The time that a program gets to end when it is asked to.
    static constexpr std::chrono::milliseconds grace{500};

private:
    pid_t my_id;
};

/// How a program ended where the system does not tell, as when this process was started with SIGCHLD ignored.
/// It is neither an exit nor a signal.
inline constexpr int unknown_end = -1;

/// How a program ended, for users: "exit code 3", "signal 11 (Segmentation fault)".
std::string endText(int wait_status);

/// Has the system kill this process when its parent ends, and ends it now where the parent has gone already.
void endWithParent(pid_t parent);

/// The program that this process runs.
std::filesystem::path thisProgram();

} // namespace korl
