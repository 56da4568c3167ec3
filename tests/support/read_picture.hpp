#pragma once

#include "tests/support/temporary_folder.hpp"

#include "shell/image/png.hpp"

namespace korl::test {

/// The picture in the bytes of a PNG file.
inline Image pictureIn(const std::string& png) {
    return decodePng(std::span(reinterpret_cast<const std::uint8_t*>(png.data()), png.size()));
}

inline Image readPicture(const std::filesystem::path& file) {
    return pictureIn(bytesOf(file));
}

} // namespace korl::test
