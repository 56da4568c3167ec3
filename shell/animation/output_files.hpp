#pragma once

#include <filesystem>
#include <string>

namespace korl {

/// What a sequence is written to.
enum class SequenceKind { pictures, mp4, gif };

/// By the ending of the file's name: .png, .mp4 or .gif. Throws Error for any other one.
SequenceKind sequenceKind(const std::filesystem::path& output);

/// The names of the pictures of a sequence: one name with places for the frame's number.
class FrameNames {
public:
    /// @param pattern a path whose file name has one run of # characters, as many as the number has digits at
    /// least, such as "day_####.png". Throws Error for none, and for more than one run.
    explicit FrameNames(const std::filesystem::path& pattern);

    /// @param number of the frame, counted from 1.
    std::filesystem::path file(int number) const;

    /// How many digits the pattern has places for.
    int digits() const noexcept { return my_digits; }

private:
    std::filesystem::path my_folder;
    std::string my_before, my_after; ///< of the number in the file's name
    int my_digits = 0;
};

} // namespace korl
