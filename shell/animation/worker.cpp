#include "shell/animation/worker.hpp"

#include "shell/animation/frame_stamp.hpp"
#include "shell/animation/worker_protocol.hpp"
#include "shell/base/caught_exception.hpp"
#include "shell/base/child_process.hpp"
#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/image/png.hpp"
#include "shell/mesh/mesh_memory.hpp"
#include "shell/scene_file/scene_file.hpp"
#include "shell/session/shell.hpp"

#include <sorvik/vprintf.hpp>

#include <atomic>
#include <csignal>
#include <fmt/core.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korl {

namespace {

constexpr int ended_by_request = 128 + SIGTERM;
constexpr unsigned seconds_to_write = 1; ///< what is being written; a disk that hangs gets no more

/// Read and written by the handler, which may run in any thread.
std::atomic<bool> is_writing{false};
std::atomic<bool> is_to_end{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void onTerminate(int) {
    is_to_end = true;
    if (!is_writing)
        ::_exit(ended_by_request); // nothing that is drawn is worth waiting for
    ::alarm(seconds_to_write);     // which ends the process
}

/// While one lives, a SIGTERM waits for a moment: no frame is left half written, and no temporary file stays.
class WritingFile {
public:
    WritingFile() { is_writing = true; }
    ~WritingFile() {
        is_writing = false;
        if (is_to_end)
            ::_exit(ended_by_request);
    }
    WritingFile(const WritingFile&) = delete;
    WritingFile& operator=(const WritingFile&) = delete;
};

/// Has this process end with the one at the socket's other end, whatever either does then.
void endWithSender(int socket) {
    ucred sender{};
    socklen_t size = sizeof sender;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &sender, &size) == 0)
        endWithParent(sender.pid);
    // Where it is not a socket, the user is told when there is nothing to read.
}

void makeFrame(Shell& shell, const FrameRequest& request, const WorkerJob& job) {
    for (const auto& [object, parameter, text] : request.values)
        shell.scene().setParameterText(object, parameter, text, job.view);
    const Image image = shell.render(job.picture, job.view);
    std::vector<std::pair<std::string, std::string>> texts{{"Software", "korl " KORL_VERSION}};
    if (!request.description.empty())
        texts.emplace_back("Comment", request.description);
    texts.emplace_back(frame_stamp_keyword, request.stamp);
    const auto bytes = encodePng(image, texts);
    const WritingFile writing;
    writeFileAtomically(request.file, bytes);
}

void setUp(Shell& shell, const WorkerJob& job, const MessageSocket& socket) {
    Qelt::setVerbosity(job.verbosity);
    for (const std::string& plugin : job.plugins)
        shell.plugins().load(plugin);
    const MemoryFile models(shared_descriptor);
    MeshReader meshes(models);
    const auto nextModel = [&](const std::filesystem::path&, UpAxis) { return meshes.mesh(); };
    readSceneFile(job.scene_file, shell.scene(), {{}, nextModel});
    const GLContext::Info& info = shell.context().info();
    if (job.verbosity > 0)
        socket.send(
            {report_word, fmt::format("renderer: {}, OpenGL {}, {}", info.renderer, info.version, info.how)});
    socket.send({ready_word});
}

void makeFrames(Shell& shell, const WorkerJob& job, const MessageSocket& socket) {
    while (const auto message = socket.receive()) {
        const FrameRequest request = FrameRequest::from(*message);
        try {
            makeFrame(shell, request, job);
            socket.send({done_word});
        } catch (...) {
            socket.send({failed_word, textOfCaughtException()});
        }
    }
}

} // namespace

void runSequenceWorker(int descriptor) {
    endWithSender(descriptor);
    std::signal(SIGTERM, onTerminate);
    const MessageSocket socket(descriptor);
    const auto message = socket.receive();
    if (!message)
        throw Error("no frames to make were sent; workers are started by korl animate itself");
    Shell shell([&](const std::string& text) { socket.send({report_word, text}); });
    try {
        const WorkerJob job = WorkerJob::from(*message);
        setUp(shell, job, socket);
        makeFrames(shell, job, socket);
    } catch (...) {
        socket.send({failed_word, textOfCaughtException()});
    }
}

} // namespace korl
