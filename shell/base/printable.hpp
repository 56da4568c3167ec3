#pragma once

#include <string>
#include <string_view>

namespace korl {

/// A name, or another text of one line, that comes from a file or a module, fit to be shown on a terminal:
/// control characters (C0 but the tab, DEL, C1) and bytes that are not UTF-8 become escapes such as `\n`,
/// `\x1b` and `\u009b`. Everything else stays as it is.
std::string printable(std::string_view text);

/// The same in quotes, as names stand in messages.
std::string inQuotes(std::string_view text);

/// `printable` for a text of several lines, whose line ends stay.
std::string printableLines(std::string_view text);

} // namespace korl
