#pragma once

#include <shell/error.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>
#include <system_error>

/// Files for the plug-in tests.
namespace korl::plugin_files {

inline const std::filesystem::path good = KORL_GOOD_PLUGINS;
inline const std::filesystem::path broken = KORL_BROKEN_PLUGINS;

/// A directory that goes with its owner.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        auto name = (std::filesystem::temp_directory_path() / "korl-plugins-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make the directory " + name);
        my_path = std::filesystem::canonical(name);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(my_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return my_path; }

    /// Writes a file of the given bytes into the directory, in place of one of that name.
    std::filesystem::path write(const std::string& name, const std::string& bytes) const {
        auto file = my_path / name;
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

private:
    std::filesystem::path my_path;
};

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// @returns the text of the Error that a call throws, or a text that says that none came.
template <class Call>
std::string errorOf(Call call) {
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

/// The message of a refusal, after the words that all of them begin with.
inline std::string refusal(const std::filesystem::path& file, const std::string& rest) {
    return "cannot load the plug-in \"" + file.string() + "\": expected " + rest;
}

} // namespace korl::plugin_files
