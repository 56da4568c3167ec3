#pragma once

#include "shell/mesh/mesh.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace korl {

/// What a model file holds.
struct ModelContent {
    Mesh mesh;
    std::vector<std::string> notes; ///< what of it is not shown, each thing once
};

/// Reads a model file as `importModel` describes it, in this process: a damaged file may crash it.
/// @param file a regular file of a known extension, by its absolute path.
/// @param anywhere the file may name others that lie outside its folder.
/// Throws Error with the reason, which doesn't name the file.
ModelContent readModelFile(const std::filesystem::path& file, UpAxis up, bool anywhere);

} // namespace korl
