#include "shell/animation/output_files.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

SequenceKind sequenceKind(const std::filesystem::path& output) {
    const std::string ending = suffixOf(output);
    if (ending == ".png")
        return SequenceKind::pictures;
    if (ending == ".mp4")
        return SequenceKind::mp4;
    if (ending == ".gif")
        return SequenceKind::gif;
    throw Error("a sequence is written to pictures such as \"day_####.png\" or to a film such as \"day.mp4\" "
                "or \"day.gif\", found " +
                inQuotes(output.string()));
}

FrameNames::FrameNames(const std::filesystem::path& pattern) : my_folder(pattern.parent_path()) {
    const std::string name = pattern.filename().string();
    const std::size_t first = name.find('#');
    const std::size_t end = name.find_first_not_of('#', first);
    if (first == std::string::npos || name.find('#', end) != std::string::npos)
        throw Error("the names of a sequence's pictures have one place for the number, written as # "
                    "characters, such as \"day_####.png\"; found " +
                    inQuotes(name));
    my_before = name.substr(0, first);
    my_after = name.substr(std::min(end, name.size()));
    my_digits = static_cast<int>(std::min(end, name.size()) - first);
}

std::filesystem::path FrameNames::file(int number) const {
    return my_folder / fmt::format("{}{:0{}}{}", my_before, number, my_digits, my_after);
}

} // namespace korl
