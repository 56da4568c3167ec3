#include "shell/importer/companion_files.hpp"

#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"
#include "shell/mesh/model_file.hpp"

#include <algorithm>
#include <charconv>
#include <fmt/core.h>
#include <system_error>

namespace korl {

namespace fs = std::filesystem;

namespace {

/// A path as a URI writes it, with each %XX as the character that it stands for.
std::string percentDecoded(std::string_view uri) {
    std::string decoded;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        unsigned code = 0;
        const bool is_escape =
            uri[i] == '%' && i + 2 < uri.size() &&
            std::from_chars(uri.data() + i + 1, uri.data() + i + 3, code, 16).ptr == uri.data() + i + 3;
        decoded += is_escape ? static_cast<char>(code) : uri[i];
        i += is_escape ? 2 : 0;
    }
    return decoded;
}

/// One text for all the ways to write a path: some write backslashes, and the importer doubles slashes.
std::string normalized(std::string name) {
    std::replace(name.begin(), name.end(), '\\', '/');
    return fs::path(name).relative_path().lexically_normal().string();
}

} // namespace

fs::path ModelPlace::fileOf(const std::string& name) const {
    std::error_code problem;
    const fs::path folder = file.parent_path();
    const bool is_uri = suffixOf(file) == ".gltf" || suffixOf(file) == ".glb";
    return folder / (is_uri && !fs::exists(folder / name, problem) ? percentDecoded(name) : name);
}

bool ModelPlace::allows(const fs::path& named) const {
    std::error_code problem;
    if (anywhere || !fs::exists(named, problem))
        return true;
    const fs::path real = fs::canonical(named, problem);
    const fs::path folder = fs::canonical(file.parent_path(), problem);
    return !problem &&
           std::mismatch(folder.begin(), folder.end(), real.begin(), real.end()).first == folder.end();
}

bool CompanionFiles::Exists(const char* file) const {
    std::error_code problem;
    return fs::exists(file, problem);
}

Assimp::IOStream* CompanionFiles::Open(const char* file, const char* mode) {
    if (file == my_place.file)
        return DefaultIOSystem::Open(file, mode);
    const auto opened = companion(file);
    return opened ? DefaultIOSystem::Open(opened->c_str(), mode) : nullptr;
}

std::optional<fs::path> CompanionFiles::companion(const fs::path& asked) {
    // The importer puts the model's folder before every name, even before one that begins at the root.
    const std::string folder = my_place.file.parent_path().string() + "/";
    std::string name = asked.string();
    if (name.starts_with(folder))
        name.erase(0, folder.size());
    const std::string shown = fmt::format("\"{}\"", printable(name));
    if (const auto scheme = uriScheme(name); !scheme.empty()) {
        refuse(fmt::format("it names {}, a URI of the scheme \"{}\"; only files are read", shown, scheme));
        return std::nullopt;
    }
    std::error_code problem;
    const fs::path file = my_place.fileOf(name);
    const std::string path = normalized(name);
    const fs::file_type type = fs::status(file, problem).type();
    if (type == fs::file_type::not_found) {
        // Where a material library is missing, the importer tries the one of the model's own name.
        if (my_left_out.empty() || file.stem() != my_place.file.stem())
            my_left_out.try_emplace(
                path, fmt::format("the file {} that it names is not there and was left out", shown), true);
        return std::nullopt;
    }
    if (const std::string kind = otherKind(type); !kind.empty()) {
        refuse(fmt::format("it names {}, which is {}", shown, kind));
        return std::nullopt;
    }
    if (!my_place.allows(file)) {
        my_left_out.try_emplace(path,
                                fmt::format("the file {} that it names lies outside its folder and was left "
                                            "out; allow it with --model-anywhere (model_anywhere in Python)",
                                            shown),
                                false);
        return std::nullopt;
    }
    my_opened.insert(path);
    return file;
}

void CompanionFiles::refuse(const std::string& reason) {
    if (my_refusal.empty())
        my_refusal = reason;
}

bool CompanionFiles::isOpened(std::string_view path) const {
    while (!my_opened.contains(path)) {
        const std::size_t slash = path.find('/');
        if (slash == std::string_view::npos)
            return false;
        path.remove_prefix(slash + 1);
    }
    return true;
}

std::vector<std::string> CompanionFiles::notes() const {
    constexpr std::size_t max_notes = 10;
    std::vector<std::string> notes;
    std::size_t more = 0;
    for (const auto& [path, left_out] : my_left_out)
        if (!(left_out.is_missing && isOpened(path)) && ++more <= max_notes)
            notes.push_back(left_out.note);
    if (more > max_notes)
        notes.push_back(fmt::format("of the files that it names, {} more were left out", more - max_notes));
    return notes;
}

} // namespace korl
