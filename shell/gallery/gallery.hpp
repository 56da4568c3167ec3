#pragma once

#include <filesystem>

namespace korl {

class Shell;

/// Writes the page `index.html` into a folder, which is made where it is missing: every type of the catalogue
/// with its parameters and, for a light, its picture on both paths, its GLSL and its uniforms, all with their
/// defaults. The page is whole in itself: it takes nothing from other files or the network. The shell's scene
/// is left alone.
/// @returns the file. Throws Error where the catalogue is empty, and where the file can't be written.
std::filesystem::path writeGallery(Shell& shell, const std::filesystem::path& folder);

} // namespace korl
