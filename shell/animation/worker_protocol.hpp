#pragma once

#include "shell/base/descriptor.hpp"
#include "shell/render/render_settings.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korl {

/// What passes between a shell that makes a sequence and its workers: short lists of texts without zero
/// bytes, each list one packet of a local socket.
using Message = std::vector<std::string>;

/// One end of a connection that carries messages.
class MessageSocket {
public:
    explicit MessageSocket(int descriptor) noexcept : my_descriptor(descriptor) {}

    /// Both ends; programs that are started inherit neither. Throws Error where the system has no more.
    static std::pair<MessageSocket, MessageSocket> makePair();

    /// @returns false where the other end is gone. Throws Error for a message that is too long, and for a
    /// text with a zero byte.
    bool send(const Message& message) const;

    /// Waits for a message. @returns nothing where the other end is gone.
    std::optional<Message> receive() const;

    int descriptor() const noexcept { return my_descriptor.get(); }

    /// Tells the other end that nothing more comes.
    void close() noexcept { my_descriptor = Descriptor(); }

private:
    Descriptor my_descriptor;
};

/// A frame, for a worker to make.
struct FrameRequest {
    int number = 0;          ///< counted from 1
    std::string file;        ///< to write
    std::string stamp;       ///< tells the frame from all others (see frame_stamp.hpp)
    std::string description; ///< for the readers of the file: which values the frame has; may be empty
    struct Value {
        std::string object, parameter, text;
    };
    std::vector<Value> values;

    Message message() const;
    /// Throws Error for a message that is not a request.
    static FrameRequest from(const Message& message);
};

/// What all frames of a worker have in common.
struct WorkerJob {
    std::string scene_file;
    RenderSettings picture;
    std::string view; ///< may be empty
    int verbosity = 0;
    std::vector<std::string> plugins; ///< files of modules, in the order of their loading

    Message message() const;
    /// Throws Error for a message that is not a job.
    static WorkerJob from(const Message& message);
};

/// The first words of what a worker sends.
inline constexpr const char* ready_word = "ready";   ///< it has the scene and can draw
inline constexpr const char* done_word = "done";     ///< the frame that it was given is there
inline constexpr const char* failed_word = "failed"; ///< it is not, and a text says why
inline constexpr const char* report_word = "report"; ///< a text for the user; the frame goes on

} // namespace korl
