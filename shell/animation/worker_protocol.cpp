#include "shell/animation/worker_protocol.hpp"

#include "shell/base/error.hpp"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fmt/core.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korl {

namespace {

Error malformed() {
    return Error("a worker was sent something that it does not understand; workers are started by the "
                 "program itself, and by the program of the same version");
}

int numberIn(const std::string& text) {
    int number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (problem != std::errc() || end != text.data() + text.size())
        throw malformed();
    return number;
}

} // namespace

std::pair<MessageSocket, MessageSocket> MessageSocket::makePair() {
    int ends[2];
    // Packets, so that each message comes whole.
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        throw Error(fmt::format("cannot make a connection to a worker: {}", std::strerror(errno)));
    return {MessageSocket(ends[0]), MessageSocket(ends[1])};
}

bool MessageSocket::send(const Message& message) const {
    std::string packet;
    for (const std::string& text : message) {
        if (text.find('\0') != std::string::npos)
            throw Error("a text with a zero byte in it cannot be handed to a worker");
        packet.append(text).push_back('\0');
    }
    for (;;) {
        if (::send(my_descriptor.get(), packet.data(), packet.size(), MSG_NOSIGNAL) >= 0)
            return true;
        if (errno == EMSGSIZE)
            throw Error(fmt::format("a frame has more values than can be handed to a worker: {} bytes",
                                    packet.size()));
        if (errno != EINTR)
            return false;
    }
}

std::optional<Message> MessageSocket::receive() const {
    std::string packet;
    ssize_t size = -1;
    do // with MSG_TRUNC the size is that of the whole packet, however little is read of it
        size = ::recv(my_descriptor.get(), nullptr, 0, MSG_PEEK | MSG_TRUNC);
    while (size < 0 && errno == EINTR);
    if (size <= 0)
        return std::nullopt;
    packet.resize(static_cast<std::size_t>(size));
    if (::recv(my_descriptor.get(), packet.data(), packet.size(), 0) != size)
        return std::nullopt;
    Message message;
    for (std::size_t at = 0; at < packet.size(); at += message.back().size() + 1)
        message.emplace_back(packet.c_str() + at);
    return message;
}

Message FrameRequest::message() const {
    Message message{std::to_string(number), file, stamp, description};
    for (const Value& value : values)
        message.insert(message.end(), {value.object, value.parameter, value.text});
    return message;
}

FrameRequest FrameRequest::from(const Message& message) {
    constexpr std::size_t head = 4;
    if (message.size() < head || (message.size() - head) % 3 != 0)
        throw malformed();
    FrameRequest request{numberIn(message[0]), message[1], message[2], message[3], {}};
    for (std::size_t i = head; i < message.size(); i += 3)
        request.values.push_back({message[i], message[i + 1], message[i + 2]});
    return request;
}

Message WorkerJob::message() const {
    Message message{scene_file,
                    std::to_string(picture.width),
                    std::to_string(picture.height),
                    std::to_string(static_cast<int>(picture.path)),
                    view,
                    std::to_string(verbosity)};
    message.insert(message.end(), plugins.begin(), plugins.end());
    return message;
}

WorkerJob WorkerJob::from(const Message& message) {
    constexpr std::size_t head = 6;
    if (message.size() < head)
        throw malformed();
    const RenderSettings picture{numberIn(message[1]), numberIn(message[2]),
                                 static_cast<RenderPath>(numberIn(message[3]))};
    return {message[0], picture, message[4], numberIn(message[5]), {message.begin() + head, message.end()}};
}

} // namespace korl
