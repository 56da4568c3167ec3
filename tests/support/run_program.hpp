#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace korl::test {

/// What a program left when it ended.
struct ProgramResult {
    int exit_code; ///< 128 + number where a signal ended it
    std::string output;
    std::string errors;
};

/// Runs a program to its end. The environment is this process's, with `environment` set in addition.
ProgramResult runProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment = {});

/// An empty folder of its own below the system's folder for temporary files; it goes with this object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return my_path; }
    std::filesystem::path operator/(const std::string& name) const { return my_path / name; }

    /// Writes a file into the folder. @returns its path.
    std::filesystem::path write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path my_path;
};

} // namespace korl::test
