#include "shell/base/written_text.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korl {

WrittenText::WrittenText() : my_file(::memfd_create("korl-output", MFD_CLOEXEC)) {
    if (!my_file.isOpen())
        throw Error(std::string("cannot make a file in memory: ") + std::strerror(errno));
}

std::string WrittenText::bytes(off_t from, std::size_t max_size) const {
    std::string text(max_size, '\0');
    const ssize_t count = ::pread(descriptor(), text.data(), text.size(), from);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return text;
}

std::string WrittenText::beginning() const {
    return bytes(0, std::size_t{64} * 1024);
}

std::string WrittenText::lastLines(int count) const {
    constexpr off_t max_length = 2000;
    // Not lseek, which would move the place where the program writes.
    struct stat status {};
    ::fstat(descriptor(), &status);
    const std::string end = bytes(std::max<off_t>(0, status.st_size - max_length), max_length);

    std::string lines;
    std::string_view rest = end;
    for (int found = 0; found < count && !rest.empty();) {
        const std::size_t begin = rest.find_last_of('\n') + 1; // of the whole where there is none
        std::string_view line = rest.substr(begin);
        rest = rest.substr(0, begin == 0 ? 0 : begin - 1);
        line = line.substr(0, line.find_last_not_of("\r ") + 1);
        if (line.empty())
            continue;
        lines.insert(0, std::string(line) + (found == 0 ? "" : "\n"));
        ++found;
    }
    return printableLines(lines);
}

} // namespace korl
