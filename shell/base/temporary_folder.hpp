#pragma once

#include "shell/base/descriptor.hpp"

#include <filesystem>

namespace korl {

/// A folder of this process's own below the system's folder for temporary files; it goes with this object.
/// It is locked meanwhile: those that are not are what killed processes left, and the next one of the same
/// user removes them.
class TemporaryFolder {
public:
    /// Throws Error where no folder can be made.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const noexcept { return my_path; }

private:
    std::filesystem::path my_path;
    Descriptor my_lock;
};

} // namespace korl
