#pragma once

#include "shell/base/descriptor.hpp"

#include <filesystem>

namespace korl {

/// What came of the wish to lock a file.
enum class LockState {
    taken,     ///< this process has the lock
    busy,      ///< another one has it
    impossible ///< the file system has no locks
};

/// Locks an open file or folder without waiting. The lock goes when the descriptor is closed, at the latest
/// when the process ends, however it does. Only programs that ask for locks heed them.
LockState tryLock(int descriptor) noexcept;

/// Whether a path still leads to an open file or folder itself, which may have been removed or replaced
/// between opening and locking it.
bool isAt(int descriptor, const std::filesystem::path& path) noexcept;

/// Opens a file or folder that a process of this user kept locked while it lived, and locks it.
/// @returns a closed descriptor where that process is still alive, or where that cannot be told.
Descriptor lockLeftover(const std::filesystem::path& path) noexcept;

} // namespace korl
