#include "shell/mesh/model_file.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <system_error>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> extensions{".obj", ".ply", ".stl", ".gltf", ".glb", ".3ds"};

std::string extensionList() {
    return fmt::format("{}", fmt::join(extensions, ", "));
}

/// Why a model can't be read; whoever knows the file completes the message.
[[noreturn]] void refuse(const std::string& reason) {
    throw Error(reason);
}

} // namespace

std::string otherKind(fs::file_type type) {
    switch (type) {
    case fs::file_type::regular:
        return "";
    case fs::file_type::directory:
        return "a directory";
    case fs::file_type::fifo:
        return "a FIFO";
    case fs::file_type::socket:
        return "a socket";
    case fs::file_type::block:
    case fs::file_type::character:
        return "a device";
    default:
        return "not a regular file";
    }
}

std::string_view uriScheme(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isPart = [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    };
    const auto end = std::find_if_not(text.begin(), text.end(), isPart);
    const bool is_scheme = end != text.begin() && end != text.end() && *end == ':' && isLetter(text.front());
    return is_scheme ? text.substr(0, static_cast<std::size_t>(end - text.begin())) : std::string_view();
}

void requireModelFile(const fs::path& file) {
    std::error_code problem;
    const fs::file_status status = fs::status(file, problem);
    if (status.type() == fs::file_type::not_found) {
        const std::string_view scheme = uriScheme(file.native());
        if (!scheme.empty() && file.native().find("://") == scheme.size())
            refuse(fmt::format(
                "it is a URI, of the scheme \"{}\"; only files are read, so fetch it and name the file",
                scheme));
        refuse("there is no such file; check the path");
    }
    if (problem)
        refuse("it may not be opened: " + problem.message());
    if (fs::is_directory(status))
        refuse("it is a directory; give the name of a model file");
    if (!fs::is_regular_file(status))
        refuse(fmt::format("it is {}; give the name of a model file", otherKind(status.type())));
    const std::string extension = suffixOf(file);
    if (extension.empty())
        refuse("its name has no extension to tell the format; those that can be read are " + extensionList());
    if (std::find(extensions.begin(), extensions.end(), extension) == extensions.end())
        refuse(fmt::format("a {} file is not a model that can be read; those that can are {}", extension,
                           extensionList()));
}

} // namespace korl
