#include "shell/scene/file_output.hpp"

#include "shell/error.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace korl {

namespace {

namespace fs = std::filesystem;

class Failure {
public:
    explicit Failure(fs::path target) : my_target(std::move(target)) {}

    [[noreturn]] void operator()(const std::string& reason) const {
        throw Error("cannot write " + my_target.string() + ": " + reason);
    }

    /// With the system's reason for the call that just failed.
    [[noreturn]] void systemCall() const { (*this)(std::generic_category().message(errno)); }

private:
    fs::path my_target;
};

/// An open file. Closing can fail, as it may be then that the disk turns out to be full.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : my_descriptor(descriptor) {}
    ~Descriptor() {
        if (my_descriptor >= 0)
            ::close(my_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return my_descriptor; }
    bool close() { return ::close(std::exchange(my_descriptor, -1)) == 0; }

private:
    int my_descriptor;
};

/// A file that is removed unless it was renamed.
class Temporary {
public:
    explicit Temporary(fs::path path) : my_path(std::move(path)) {}
    ~Temporary() {
        if (!my_path.empty())
            ::unlink(my_path.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    bool renameTo(const fs::path& target) {
        if (::rename(my_path.c_str(), target.c_str()) != 0)
            return false;
        my_path.clear();
        return true;
    }

private:
    fs::path my_path;
};

void writeWhole(const Descriptor& file, std::span<const std::uint8_t> bytes, const Failure& fail) {
    if (!writeAll(file.get(), bytes))
        fail.systemCall();
}

void closeWritten(Descriptor& file, const Failure& fail) {
    if (!file.close())
        fail.systemCall();
}

/// A name beside the target that nobody has; short, so that it is allowed where the target's own name is.
fs::path temporaryBeside(const fs::path& target, int attempt) {
    return target.parent_path() / (".korl-" + std::to_string(::getpid()) + "-" + std::to_string(attempt));
}

/// Brings the new name of a file to the disk. A file system that cannot sync folders does it in its own time.
void syncFolder(const fs::path& folder, const Failure& fail) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.get() < 0 && errno == EACCES)
        return; // a folder may be written to without being readable
    if (opened.get() < 0 || (::fsync(opened.get()) != 0 && errno != EINVAL && errno != ENOTSUP))
        fail.systemCall();
}

void replaceFile(const fs::path& target, std::span<const std::uint8_t> bytes, const struct stat* replaced,
                 const Failure& fail) {
    constexpr int most_attempts = 100;
    constexpr mode_t new_file_mode = 0666;
    int opened = -1;
    fs::path path;
    for (int attempt = 0; attempt < most_attempts && opened < 0; ++attempt) {
        path = temporaryBeside(target, attempt);
        opened = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode);
        if (opened < 0 && errno != EEXIST)
            break;
    }
    if (opened < 0)
        fail.systemCall();
    Descriptor file(opened);
    Temporary temporary(path);
    writeWhole(file, bytes, fail);
    if (replaced && ::fchmod(file.get(), replaced->st_mode & 07777) != 0)
        fail.systemCall();
    // Before the rename: a name must not come to lead to content that is not on the disk yet.
    if (::fsync(file.get()) != 0)
        fail.systemCall();
    closeWritten(file, fail);
    if (!temporary.renameTo(target))
        fail.systemCall();
    syncFolder(target.has_parent_path() ? target.parent_path() : fs::path("."), fail);
}

void writeDirectly(const fs::path& target, std::span<const std::uint8_t> bytes, const Failure& fail) {
    Descriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.get() < 0)
        fail.systemCall();
    writeWhole(file, bytes, fail);
    closeWritten(file, fail);
}

} // namespace

std::string suffixOf(const fs::path& file) {
    std::string suffix = file.extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

bool writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

void writeFileAtomically(const fs::path& target, std::string_view text) {
    writeFileAtomically(target, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void writeFileAtomically(const fs::path& target, std::span<const std::uint8_t> bytes) {
    const Failure fail(target);
    if (target.empty())
        fail("the file has no name; give one");
    struct stat found {};
    const bool exists = ::stat(target.c_str(), &found) == 0;
    if (exists && S_ISDIR(found.st_mode))
        fail("it is a directory; give the name of a file");
    if (exists && !S_ISREG(found.st_mode))
        return writeDirectly(target, bytes, fail);
    std::error_code problem;
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!exists && !fs::is_directory(folder, problem))
        fail("the folder " + folder.string() + " does not exist; make it first");
    // Not even the owner of the folder means to replace a file that is marked as not to be written.
    if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        fail.systemCall();
    const fs::path replaced = exists ? fs::canonical(target, problem) : target;
    if (exists && problem)
        fail(problem.message());
    replaceFile(replaced, bytes, exists ? &found : nullptr, fail);
}

} // namespace korl
