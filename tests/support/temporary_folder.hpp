#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>
#include <string>

namespace korl::test {

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

/// An empty folder of a test's own below the system's folder for temporary files; it goes with this object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "korl-test-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder can be made at " + name);
        my_path = std::filesystem::canonical(name);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(my_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return my_path; }
    std::filesystem::path operator/(const std::string& name) const { return my_path / name; }

    /// Writes a file into the folder, in place of one of that name. @returns its path.
    std::filesystem::path write(const std::string& name, const std::string& bytes) const {
        writeBytes(my_path / name, bytes);
        return my_path / name;
    }

private:
    std::filesystem::path my_path;
};

} // namespace korl::test
