#include "shell/cli/picture_output.hpp"

#include "shell/base/file_output.hpp"
#include "shell/cli/program.hpp"
#include "shell/image/png.hpp"

#include <utility>

namespace korl::cli {

PictureOutput::PictureOutput(std::string target) : my_target(std::move(target)) {
    if (!isStandardOutput())
        requirePngName(my_target);
}

void PictureOutput::write(const Image& image) const {
    const auto bytes = encodePng(image);
    if (!isStandardOutput())
        writeFileAtomically(my_target, bytes);
    else
        print({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace korl::cli
