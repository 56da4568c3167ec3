#include "shell/base/file_output.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_lock.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <fmt/core.h>
#include <mutex>
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
        throw Error(fmt::format("cannot write {}: {}", printable(my_target.string()), reason));
    }

    /// With the system's reason for the call that just failed.
    [[noreturn]] void systemCall() const { (*this)(std::generic_category().message(errno)); }

private:
    fs::path my_target;
};

/// The names of temporary files; they are short, so that they are allowed where the target's own name is.
constexpr const char* temporary_start = ".korl-unfinished-";

/// Removes what killed processes left in a folder. Once for each folder is enough, until another one's turn.
void sweep(const fs::path& folder) {
    static std::mutex lock;
    static fs::path swept;
    const std::lock_guard guard(lock);
    if (swept == folder)
        return;
    swept = folder;
    std::error_code problem; // what cannot be swept stays
    for (fs::directory_iterator entry(folder, problem), end; !problem && entry != end;
         entry.increment(problem))
        if (entry->path().filename().string().starts_with(temporary_start) &&
            lockLeftover(entry->path()).isOpen())
            ::unlink(entry->path().c_str());
}

/// A file beside the target that is removed unless it was renamed. It is locked as long as this object lives,
/// by which others know that it is in use.
class Temporary {
public:
    Temporary(const fs::path& target, const Failure& fail) {
        constexpr int max_attempts = 100;
        constexpr mode_t new_file_mode = 0666;
        for (int attempt = 0; attempt < max_attempts; ++attempt) {
            my_path = target.parent_path() / fmt::format("{}{}-{}", temporary_start, ::getpid(), attempt);
            my_file =
                Descriptor(::open(my_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode));
            if (!my_file.isOpen() && errno != EEXIST)
                fail.systemCall();
            // Between the two, another process may have taken it for a leftover.
            if (my_file.isOpen() && tryLock(my_file.get()) != LockState::busy && isAt(my_file.get(), my_path))
                return;
        }
        fail("there are too many temporary files beside it");
    }
    ~Temporary() {
        if (!my_path.empty())
            ::unlink(my_path.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    const Descriptor& file() const { return my_file; }

    bool renameTo(const fs::path& target) {
        if (::rename(my_path.c_str(), target.c_str()) != 0)
            return false;
        my_path.clear();
        return true;
    }

private:
    fs::path my_path;
    Descriptor my_file;
};

void writeWhole(const Descriptor& file, std::span<const std::uint8_t> bytes, const Failure& fail) {
    if (!writeAll(file.get(), bytes))
        fail.systemCall();
}

fs::path folderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// Brings the new name of a file to the disk. A file system that cannot sync folders does it in its own time.
void syncFolder(const fs::path& folder, const Failure& fail) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen() && errno == EACCES)
        return; // a folder may be written to without being readable
    if (!opened.isOpen() || (::fsync(opened.get()) != 0 && errno != EINVAL && errno != ENOTSUP))
        fail.systemCall();
}

void replaceFile(const fs::path& target, std::span<const std::uint8_t> bytes, const struct stat* replaced,
                 const Failure& fail) {
    sweep(folderOf(target));
    Temporary temporary(target, fail);
    writeWhole(temporary.file(), bytes, fail);
    if (replaced && ::fchmod(temporary.file().get(), replaced->st_mode & 07777) != 0)
        fail.systemCall();
    // Before the rename: a name must not come to lead to content that is not on the disk yet. What closing
    // the file could report, this reports.
    if (::fsync(temporary.file().get()) != 0)
        fail.systemCall();
    if (!temporary.renameTo(target))
        fail.systemCall();
    syncFolder(folderOf(target), fail);
}

void writeDirectly(const fs::path& target, std::span<const std::uint8_t> bytes, const Failure& fail) {
    Descriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.isOpen())
        fail.systemCall();
    writeWhole(file, bytes, fail);
    if (!file.close())
        fail.systemCall();
}

/// Where a file of some name is to be written.
struct Place {
    fs::path file; ///< the name itself or, where that is a symbolic link, the file that it leads to
    bool exists;
    struct stat found; ///< where it exists
};

Place placeOf(const fs::path& target, const Failure& fail) {
    if (target.empty())
        fail("the file has no name; give one");
    Place place{target, false, {}};
    place.exists = ::stat(target.c_str(), &place.found) == 0;
    if (place.exists && S_ISDIR(place.found.st_mode))
        fail("it is a directory; give the name of a file");
    std::error_code problem;
    const bool is_link = fs::is_symlink(target, problem);
    if (!place.exists && is_link)
        fail(fmt::format(
            "it is a symbolic link to {}, which is not there; make that file first, or remove the link",
            printable(fs::read_symlink(target, problem).string())));
    if (!place.exists && !fs::is_directory(folderOf(target), problem))
        fail(
            fmt::format("the folder {} does not exist; make it first", printable(folderOf(target).string())));
    if (is_link && S_ISREG(place.found.st_mode))
        place.file = fs::canonical(target, problem);
    if (is_link && problem)
        fail(problem.message());
    return place;
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
    const Place place = placeOf(target, fail);
    if (place.exists && !S_ISREG(place.found.st_mode))
        return writeDirectly(target, bytes, fail);
    // Not even the owner of the folder means to replace a file that is marked as not to be written.
    if (place.exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        fail.systemCall();
    replaceFile(place.file, bytes, place.exists ? &place.found : nullptr, fail);
}

fs::path regularTarget(const fs::path& target) {
    const Failure fail(target);
    const Place place = placeOf(target, fail);
    if (place.exists && !S_ISREG(place.found.st_mode))
        fail("it is a device or a pipe, which cannot be replaced; give the name of a file");
    return place.file;
}

void moveIntoPlace(const fs::path& written, const fs::path& target) {
    const Failure fail(target);
    const Descriptor file(::open(written.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen() || ::fsync(file.get()) != 0 || ::rename(written.c_str(), target.c_str()) != 0)
        fail.systemCall();
    syncFolder(folderOf(target), fail);
}

} // namespace korl
