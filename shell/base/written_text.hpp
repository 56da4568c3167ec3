#pragma once

#include "shell/base/descriptor.hpp"

#include <string>

namespace korl {

/// What a program writes into a descriptor, kept in memory: the program never waits for a reader, and a full
/// disk loses nothing of it.
class WrittenText {
public:
    /// An empty one. Throws Error where the system has no more memory files.
    WrittenText();

    /// Where the program writes.
    int descriptor() const noexcept { return my_file.get(); }

    /// The first 64 KiB, byte for byte.
    std::string beginning() const;

    /// The last lines that are not empty, at most `count` and at most 2,000 bytes of them, fit for a message
    /// (see `printableLines`); empty where nothing was written.
    std::string lastLines(int count) const;

private:
    std::string bytes(off_t from, std::size_t max_size) const;

    Descriptor my_file;
};

} // namespace korl
