#include "shell/animation/sequence_lock.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_lock.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/core.h>
#include <span>
#include <string>
#include <system_error>
#include <unistd.h>

namespace korl {

namespace {

namespace fs = std::filesystem;

/// "process 4711 on larch since 2026-04-12 08:30:00 UTC"
std::string thisProcess() {
    std::array<char, 256> host{};
    ::gethostname(host.data(), host.size() - 1);
    std::array<char, 32> time{};
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    std::strftime(time.data(), time.size(), "%Y-%m-%d %H:%M:%S UTC", ::gmtime_r(&now, &parts));
    return fmt::format("process {} on {} since {}", ::getpid(), host.data(), time.data());
}

std::string ownerIn(int file) {
    std::array<char, 512> text{};
    const ssize_t size = ::pread(file, text.data(), text.size(), 0);
    return size > 0 ? printable({text.data(), static_cast<std::size_t>(size)}) : "another process";
}

/// Another user's file may not be writable, but can be locked all the same.
Descriptor openLock(const fs::path& path) {
    constexpr mode_t new_file_mode = 0666;
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, new_file_mode));
    if (file.isOpen() || errno != EACCES)
        return file;
    Descriptor readable(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!readable.isOpen())
        errno = EACCES; // the reason that it cannot be written
    return readable;
}

[[noreturn]] void throwNotOpened(const fs::path& output, const fs::path& path, int problem) {
    std::error_code ignored;
    const bool is_there = fs::exists(fs::symlink_status(path, ignored));
    throw Error(fmt::format("cannot lock {}: cannot write {}: {}{}", printable(output.string()),
                            printable(path.string()), std::strerror(problem),
                            is_there ? "; remove that file if nobody is making the sequence" : ""));
}

bool isReadOnly(int file) {
    return (::fcntl(file, F_GETFL) & O_ACCMODE) == O_RDONLY;
}

} // namespace

SequenceLock::SequenceLock(const fs::path& output)
    : my_path(output.parent_path() / fmt::format(".{}.lock", output.filename().string())) {
    do {
        my_file = openLock(my_path);
        if (!my_file.isOpen())
            throwNotOpened(output, my_path, errno);
        const LockState state = tryLock(my_file.get());
        if (state == LockState::busy)
            throw Error(fmt::format("cannot make {}: it is being made by {}; "
                                    "wait for its end, or write to files of another name",
                                    printable(output.string()), ownerIn(my_file.get())));
        my_is_held = state == LockState::taken;
        // It would go on naming the killed process that left it, so it makes way for a new file.
        if (my_is_held && isReadOnly(my_file.get()) && isAt(my_file.get(), my_path))
            ::unlink(my_path.c_str());
    } while (!isAt(my_file.get(), my_path)); // it has just been removed, here or by the one who had it
    const std::string owner = thisProcess();
    if (::ftruncate(my_file.get(), 0) == 0) // what it says is a courtesy
        writeAll(my_file.get(), std::span(reinterpret_cast<const std::uint8_t*>(owner.data()), owner.size()));
}

SequenceLock::~SequenceLock() {
    ::unlink(my_path.c_str());
}

} // namespace korl
