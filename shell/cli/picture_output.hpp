#pragma once

#include "shell/render/image.hpp"

#include <string>

namespace korl::cli {

/// Where a picture goes: a file or, for "-", standard output.
///
/// For standard output the descriptor is set aside at construction and descriptor 1 is pointed at standard
/// error, so that nothing but the picture goes there; make it before any module is loaded.
class PictureOutput {
public:
    /// Throws Error for a file whose name has the suffix of another format.
    explicit PictureOutput(std::string target);
    ~PictureOutput();
    PictureOutput(const PictureOutput&) = delete;
    PictureOutput& operator=(const PictureOutput&) = delete;

    bool isStandardOutput() const noexcept { return my_target == "-"; }

    /// Writes the picture as PNG. Throws Error where it cannot be written.
    void write(const Image& image) const;

private:
    std::string my_target;
    int my_descriptor = -1;
};

} // namespace korl::cli
