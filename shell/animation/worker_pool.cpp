#include "shell/animation/worker_pool.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fmt/core.h>
#include <iterator>
#include <poll.h>
#include <thread>

namespace korl {

namespace {

using Clock = std::chrono::steady_clock;

/// More than the second that a worker takes at most for a file that it writes (see worker.cpp).
constexpr std::chrono::milliseconds time_to_stop{1200};

constexpr int milliseconds_between_progress = 100;
constexpr const char* rasteriser_threads = "LP_NUM_THREADS";

std::chrono::milliseconds timeUntil(Clock::time_point end) {
    return std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
}

/// The workers share the processor's cores: Mesa's software rasteriser would start a thread for each core in
/// each worker. How many there are changes no pixel. A number that the user set stays.
std::vector<std::pair<std::string, std::string>> environmentOf(int jobs) {
    if (jobs == 1 || std::getenv(rasteriser_threads))
        return {};
    const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    return {{rasteriser_threads, std::to_string(std::max(1, cores / jobs))}};
}

} // namespace

WorkerPool::WorkerPool(Settings settings, WorkerJob job, std::vector<FrameRequest> frames)
    : my_settings(std::move(settings)), my_job(std::move(job)) {
    for (FrameRequest& frame : frames)
        my_waiting.push_back({std::move(frame)});
}

WorkerPool::~WorkerPool() {
    const Clock::time_point end = Clock::now() + time_to_stop; // for all of them together
    for (Worker& worker : my_workers)
        worker.process.terminate();
    for (Worker& worker : my_workers)
        worker.process.end(timeUntil(end));
}

std::map<int, std::string> WorkerPool::run() {
    while (!my_waiting.empty() || !isIdle()) {
        startWorkers();
        handOutFrames();
        waitForMessages();
        my_settings.progress(my_done, static_cast<int>(my_failed.size()));
    }
    endWorkers();
    return std::move(my_failed);
}

/// The workers end by themselves, so that the modules are unloaded in order; the frames are there already.
void WorkerPool::endWorkers() {
    for (Worker& worker : my_workers)
        worker.socket.close();
    const Clock::time_point end = Clock::now() + my_settings.time_to_unload; // for all of them together
    bool has_hung = false;
    for (Worker& worker : my_workers)
        if (!worker.process.waitFor(timeUntil(end))) {
            worker.process.kill();
            has_hung = true;
        }
    my_workers.clear();
    if (has_hung)
        my_settings.report(
            "a worker did not end after its last frame and was stopped: a module may hang when "
            "it is unloaded; the frames are not affected");
}

void WorkerPool::startWorkers() {
    const auto busy = static_cast<std::size_t>(std::count_if(
        my_workers.begin(), my_workers.end(), [](const Worker& worker) { return worker.frame.has_value(); }));
    const std::size_t wanted = std::min(static_cast<std::size_t>(my_settings.jobs), my_waiting.size() + busy);
    while (my_workers.size() < wanted)
        startWorker();
}

void WorkerPool::startWorker() {
    auto [here, there] = MessageSocket::makePair();
    ProcessStart start{my_settings.program, {"sequence-worker"}};
    start.environment = environmentOf(my_settings.jobs);
    start.input = there.descriptor();
    start.shared = my_settings.meshes;
    my_workers.push_back({ChildProcess(start), std::move(here)});
    my_workers.back().socket.send(my_job.message()); // one that has gone is noticed when it is listened to
}

void WorkerPool::handOutFrames() {
    for (Worker& worker : my_workers)
        if (worker.is_ready && !worker.frame && !my_waiting.empty()) {
            worker.frame = std::move(my_waiting.front());
            my_waiting.pop_front();
            worker.socket.send(worker.frame->request.message());
        }
}

void WorkerPool::waitForMessages() {
    std::vector<pollfd> polled;
    for (const Worker& worker : my_workers)
        polled.push_back({worker.socket.descriptor(), POLLIN, 0});
    if (::poll(polled.data(), polled.size(), milliseconds_between_progress) < 0 && errno != EINTR)
        throw Error("the workers cannot be listened to any more");
    auto worker = my_workers.begin();
    for (const pollfd& event : polled)
        worker = event.revents != 0 && !handle(*worker) ? my_workers.erase(worker) : std::next(worker);
}

bool WorkerPool::handle(Worker& worker) {
    const auto message = worker.socket.receive();
    if (!message || message->empty()) {
        const std::string end = endText(worker.process.wait());
        if (!worker.is_ready)
            throw Error(fmt::format(
                "the frames cannot be made: a worker ended with {} before it had the scene", end));
        if (worker.frame)
            takeFailure(worker, "its worker ended with " + end);
        return false;
    }
    const std::string& word = message->front();
    const std::string text = message->size() > 1 ? (*message)[1] : "";
    if (word == ready_word) {
        worker.is_ready = true;
    } else if (word == done_word) {
        worker.frame.reset();
        ++my_done;
    } else if (word == failed_word && worker.frame) {
        takeFailure(worker, text);
    } else if (word == failed_word) {
        throw Error(text);
    } else if (std::find(my_reported.begin(), my_reported.end(), text) == my_reported.end()) {
        my_reported.push_back(text);
        my_settings.report(text);
    }
    return true;
}

void WorkerPool::takeFailure(Worker& worker, const std::string& reason) {
    Frame frame = std::move(*worker.frame);
    worker.frame.reset();
    if (std::exchange(frame.has_failed, true))
        my_failed.emplace(frame.request.number, reason);
    else
        my_waiting.push_back(std::move(frame));
}

bool WorkerPool::isIdle() const {
    return std::none_of(my_workers.begin(), my_workers.end(),
                        [](const Worker& worker) { return worker.frame.has_value(); });
}

} // namespace korl
