#include "shell/cli/picture_output.hpp"

#include "shell/error.hpp"
#include "shell/render/png.hpp"
#include "shell/scene/file_output.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace korl::cli {

PictureOutput::PictureOutput(std::string target) : my_target(std::move(target)) {
    if (!isStandardOutput()) {
        requirePngName(my_target);
        return;
    }
    std::fflush(stdout);
    my_descriptor = ::dup(STDOUT_FILENO);
    if (my_descriptor < 0 || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        const int problem = errno;
        if (my_descriptor >= 0)
            ::close(my_descriptor);
        throw Error(std::string("cannot set standard output aside for the picture: ") +
                    std::strerror(problem));
    }
}

PictureOutput::~PictureOutput() {
    if (my_descriptor >= 0)
        ::close(my_descriptor);
}

void PictureOutput::write(const Image& image) const {
    const auto bytes = encodePng(image);
    if (!isStandardOutput())
        writeFileAtomically(my_target, bytes);
    else if (!writeAll(my_descriptor, bytes))
        throw Error(std::string("cannot write the picture to standard output: ") + std::strerror(errno));
}

} // namespace korl::cli
