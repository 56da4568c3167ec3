#include "shell/sequence/sequence_lock.hpp"

#include "shell/base/file_lock.hpp"
#include "shell/base/printable.hpp"
#include "shell/error.hpp"
#include "shell/scene/file_output.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <span>
#include <string>
#include <unistd.h>

namespace korl {

namespace {

/// "process 4711 on larch since 2026-04-12 08:30:00 UTC"
std::string thisProcess() {
    std::array<char, 256> host{};
    ::gethostname(host.data(), host.size() - 1);
    std::array<char, 32> time{};
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    std::strftime(time.data(), time.size(), "%Y-%m-%d %H:%M:%S UTC", ::gmtime_r(&now, &parts));
    return "process " + std::to_string(::getpid()) + " on " + host.data() + " since " + time.data();
}

std::string ownerIn(int file) {
    std::array<char, 512> text{};
    const ssize_t size = ::pread(file, text.data(), text.size(), 0);
    return size > 0 ? printable({text.data(), static_cast<std::size_t>(size)}) : "another process";
}

} // namespace

SequenceLock::SequenceLock(const std::filesystem::path& output)
    : my_path(output.parent_path() / ("." + output.filename().string() + ".lock")) {
    do {
        my_file = Descriptor(::open(my_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666));
        if (!my_file.isOpen())
            throw Error("cannot lock " + output.string() + ": cannot write " + my_path.string() + ": " +
                        std::strerror(errno));
        const LockState state = tryLock(my_file.get());
        if (state == LockState::busy)
            throw Error("cannot make " + output.string() + ": it is being made by " + ownerIn(my_file.get()) +
                        "; wait for its end, or write to files of another name");
        my_is_held = state == LockState::taken;
    } while (!isAt(my_file.get(), my_path)); // the one who had it has just removed it
    const std::string owner = thisProcess();
    if (::ftruncate(my_file.get(), 0) == 0) // what it says is a courtesy
        writeAll(my_file.get(), std::span(reinterpret_cast<const std::uint8_t*>(owner.data()), owner.size()));
}

SequenceLock::~SequenceLock() {
    ::unlink(my_path.c_str());
}

} // namespace korl
