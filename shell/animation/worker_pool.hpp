#pragma once

#include "shell/animation/worker_protocol.hpp"
#include "shell/base/child_process.hpp"

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korl {

/// Has frames made by worker programs, each of which has a modules' and a driver's process of its own: what
/// crashes there ends one frame, and nothing here.
class WorkerPool {
public:
    struct Settings {
        std::filesystem::path program; ///< the korl program
        int meshes = -1;               ///< descriptor of a MemoryFile, the scene's models in order
        int jobs = 1;                  ///< how many workers at once, at least 1
        std::chrono::milliseconds time_to_unload{5000}; ///< that workers without work get to end
        std::function<void(const std::string&)> report; ///< takes what the workers tell users, each text once
        /// Is told how many frames are done and how many have failed, at least ten times a second; it may
        /// throw to end it all.
        std::function<void(int done, int failed)> progress;
    };

    WorkerPool(Settings settings, WorkerJob job, std::vector<FrameRequest> frames);
    /// Ends the workers that still run, whatever they do.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Makes all frames. One that fails, by an error or by its worker's end, is tried once more.
    /// @returns the reasons of the frames that failed twice, by their numbers.
    /// Throws Error where a worker cannot be started or cannot set up the job.
    std::map<int, std::string> run();

private:
    struct Frame {
        FrameRequest request;
        bool has_failed = false;
    };
    struct Worker {
        ChildProcess process;
        MessageSocket socket; ///< closed before the process is waited for
        bool is_ready = false;
        std::optional<Frame> frame{}; ///< that it makes now
    };

    void endWorkers();
    void startWorkers();
    void startWorker();
    void handOutFrames();
    void waitForMessages();
    /// @returns false where the worker has gone.
    bool handle(Worker& worker);
    void takeFailure(Worker& worker, const std::string& reason);
    bool isIdle() const;

    Settings my_settings;
    WorkerJob my_job;
    std::deque<Frame> my_waiting;
    std::list<Worker> my_workers;
    int my_done = 0;
    std::map<int, std::string> my_failed;
    std::vector<std::string> my_reported;
};

} // namespace korl
