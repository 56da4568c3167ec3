#pragma once

#include "shell/render/shader_assembly.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace korl {

/// A line of a light's snippet, counted from 1.
struct SourceLocation {
    std::string light_name;
    int line = 0;

    bool operator==(const SourceLocation&) const = default;
};

/// Which light's snippet a line of the fragment source (counted from 1) belongs to; none for the shell's own
/// lines.
std::optional<SourceLocation> locate(const AssembledShader& shader, int fragment_line);

/// What to tell the user when the driver refuses the fragment shader: the light, the line of its snippet with
/// its text, and the driver's own words. Understands the line numbers of the forms "0:12(3): error: ...",
/// "0(12) : error C1503: ..." and "ERROR: 0:12: ...". A snippet with brackets or a comment left open is named
/// first: a driver only notices it in a later snippet.
std::string compileErrorText(const AssembledShader& shader, std::string_view driver_log);

} // namespace korl
