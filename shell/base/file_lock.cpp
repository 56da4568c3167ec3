#include "shell/base/file_lock.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace korl {

LockState tryLock(int descriptor) noexcept {
    int result = -1;
    do
        result = ::flock(descriptor, LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0 ? LockState::taken : errno == EWOULDBLOCK ? LockState::busy : LockState::impossible;
}

bool isAt(int descriptor, const std::filesystem::path& path) noexcept {
    struct stat opened {};
    struct stat found {};
    return ::fstat(descriptor, &opened) == 0 && ::lstat(path.c_str(), &found) == 0 &&
           opened.st_dev == found.st_dev && opened.st_ino == found.st_ino;
}

Descriptor lockLeftover(const std::filesystem::path& path) noexcept {
    // Without O_NONBLOCK, opening a pipe of that name would wait for its writer.
    Descriptor opened(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat found {};
    if (opened.isOpen() && ::fstat(opened.get(), &found) == 0 && found.st_uid == ::geteuid() &&
        (S_ISREG(found.st_mode) || S_ISDIR(found.st_mode)) && tryLock(opened.get()) == LockState::taken &&
        isAt(opened.get(), path))
        return opened;
    return Descriptor();
}

} // namespace korl
