#pragma once

#include "shell/base/caught_exception.hpp"
#include "shell/base/error.hpp"
#include "shell/session/shell.hpp"

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace korl {

/// The shell was closed before it was asked for something.
class ClosedShell : public Error {
public:
    using Error::Error;
};

/// A shell that may be used, closed and destroyed on any thread. The types of objects and the OpenGL driver
/// belong to the whole process, so all such shells take turns: one piece of work at a time in the process.
/// Between two of them no thread has the OpenGL context, and any thread can take it. A process that is forked
/// after the first use lacks the threads and the OpenGL of its parent: there every use throws Error, and
/// shells are let go of as they are.
class SharedShell {
public:
    /// Loads the plug-ins, then those of the directories. Throws Error as PluginSet does.
    SharedShell(const std::vector<std::filesystem::path>& plugins,
                const std::vector<std::filesystem::path>& directories);
    ~SharedShell();
    SharedShell(const SharedShell&) = delete;
    SharedShell& operator=(const SharedShell&) = delete;

    /// Lets go of the shell with all that it has; once is enough. Throws Error within work with a shared
    /// shell on the same thread.
    void close();
    bool isClosed() const;

    /// Closes all shells when the work that goes on has ended, since the process is about to end. From then
    /// on they are closed for this thread, which can make no others; other threads wait for their turn for
    /// ever.
    static void closeAllForGood();

    /// Whether this process was forked from one that had used such shells.
    static bool isForked();

    /// Does a piece of work with the shell, when it is this thread's turn. Nothing of the shell may be
    /// kept beyond it. What a module throws becomes an Error, while the module is still there. Throws
    /// ClosedShell after `close`, and Error within work with a shared shell on the same thread.
    template <class Work>
    auto use(Work work) -> decltype(work(std::declval<Shell&>())) {
        const Turn turn(*this);
        try {
            return work(turn.shell());
        } catch (const Error&) {
            throw; // the shell's own
        } catch (...) {
            throw Error(textOfCaughtException());
        }
    }

    /// What the user should know about the pictures so far and was not given yet.
    std::vector<std::string> takeReports();

private:
    /// This thread's turn, as long as it lives.
    class Turn {
    public:
        explicit Turn(SharedShell& shared);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        Shell& shell() const { return *my_shared.my_shell; }

    private:
        std::unique_lock<std::mutex> my_lock;
        SharedShell& my_shared;
    };

    std::vector<std::string> my_reports;
    std::unique_ptr<Shell> my_shell;
};

} // namespace korl
