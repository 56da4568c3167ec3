#pragma once

#include "shell/image/image.hpp"

#include <string>

namespace korl::cli {

/// Where a picture goes: a file or, for "-", standard output.
class PictureOutput {
public:
    /// Throws Error for a file whose name has the suffix of another format.
    explicit PictureOutput(std::string target);

    bool isStandardOutput() const noexcept { return my_target == "-"; }

    /// Writes the picture as PNG. Throws Error where it cannot be written.
    void write(const Image& image) const;

private:
    std::string my_target;
};

} // namespace korl::cli
