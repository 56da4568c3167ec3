#include "shell/base/temporary_folder.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_lock.hpp"
#include "shell/base/printable.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/core.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr const char* name_start = "korl-sequence-";

[[noreturn]] void fail(const std::string& folder, const std::string& reason) {
    throw Error(fmt::format("no temporary folder can be made in {}: {}\n"
                            "Let the variable TMPDIR name a folder that can be written to.",
                            printable(folder), reason));
}

fs::path folderForTemporaryFiles() {
    std::error_code problem;
    fs::path folder = fs::temp_directory_path(problem);
    if (!problem)
        return folder;
    const char* const named = std::getenv("TMPDIR");
    fail(named ? named : "/tmp", problem.message());
}

void sweep(const fs::path& parent) {
    std::error_code problem; // what cannot be swept stays
    for (fs::directory_iterator entry(parent, problem), end; !problem && entry != end;
         entry.increment(problem)) {
        if (!entry->path().filename().string().starts_with(name_start))
            continue;
        const Descriptor leftover = lockLeftover(entry->path());
        std::error_code ignored;
        if (leftover.isOpen())
            fs::remove_all(entry->path(), ignored);
    }
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    const fs::path parent = folderForTemporaryFiles();
    sweep(parent);
    do {
        std::string name = (parent / fmt::format("{}XXXXXX", name_start)).string();
        if (!::mkdtemp(name.data()))
            fail(parent.string(), std::strerror(errno));
        my_path = name;
        my_lock = Descriptor(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (const int problem = errno; !my_lock.isOpen() && problem != ENOENT) {
            ::rmdir(name.c_str());
            fail(parent.string(), std::strerror(problem));
        }
        // Before it is locked, another process may take it for a leftover.
    } while (!my_lock.isOpen() || tryLock(my_lock.get()) == LockState::busy || !isAt(my_lock.get(), my_path));
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(my_path, ignored);
}

} // namespace korl
