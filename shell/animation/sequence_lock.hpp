#pragma once

#include "shell/base/descriptor.hpp"

#include <filesystem>

namespace korl {

/// Keeps other processes from making the same sequence: a locked file beside its output, ".NAME.lock", that
/// tells who makes it. It goes with this object. What a killed process leaves of it is not locked, and keeps
/// nobody.
class SequenceLock {
public:
    /// @param output the pattern of the pictures' names, or the film. Throws Error where another process
    /// makes them, and says which one.
    explicit SequenceLock(const std::filesystem::path& output);
    ~SequenceLock();
    SequenceLock(const SequenceLock&) = delete;
    SequenceLock& operator=(const SequenceLock&) = delete;

    /// False where the file system has no locks: nothing keeps others from the sequence then.
    bool isHeld() const noexcept { return my_is_held; }

private:
    std::filesystem::path my_path;
    Descriptor my_file;
    bool my_is_held = false;
};

} // namespace korl
