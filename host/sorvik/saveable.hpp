#pragma once

#include <sorvik/export.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Qelt {

/// What can be written as text and read back.
class SORVIK_EXPORT VSaveable {
public:
    VSaveable();
    VSaveable(const VSaveable&) = delete;
    VSaveable& operator=(const VSaveable&) = delete;
    virtual ~VSaveable();

    /// The whole state as text.
    virtual std::string saveText() const = 0;

    /// Takes over a state that was written by `saveText`: all of it or, if something is wrong with it, none.
    /// @returns nothing if it was taken over, else what is wrong: the line, what was found, what was
    /// expected.
    virtual std::optional<std::string> loadText(std::string_view text) = 0;
};

} // namespace Qelt
