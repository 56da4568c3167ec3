#include "shell/render/shader_errors.hpp"

#include "shell/base/printable.hpp"
#include "shell/render/glsl_text.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

namespace {

/// What a snippet leaves open, in words; empty where every bracket and comment is closed.
std::string leftOpen(std::string_view snippet_text) {
    const UncommentedText uncommented = withoutComments(snippet_text);
    if (uncommented.is_comment_open)
        return "a comment that is never closed";
    for (const std::string_view pair : {"{}", "()", "[]"}) {
        const auto opened = std::count(uncommented.text.begin(), uncommented.text.end(), pair[0]);
        const auto closed = std::count(uncommented.text.begin(), uncommented.text.end(), pair[1]);
        if (opened != closed)
            return fmt::format("{} \"{}\" but {} \"{}\"", opened, pair[0], closed, pair[1]);
    }
    return {};
}

struct DriverError {
    std::string text;
    int line = 0; ///< Of the source, 0 where the driver gives none.
};

/// The source line that an error of a driver's log names; none for warnings and for lines of another form: a
/// word of severity and a colon may come first, then the number of the source, ":" or "(", and the line.
std::optional<int> errorLine(std::string_view message) {
    std::string_view rest = message;
    const bool is_warning_ahead = takeWord(rest, "WARNING");
    const bool has_severity_ahead = is_warning_ahead || takeWord(rest, "ERROR");
    if (has_severity_ahead)
        rest = trimmed(rest.substr(std::min<std::size_t>(rest.size(), 1)));
    if (!takeNumber(rest) || rest.empty() || (rest.front() != ':' && rest.front() != '('))
        return {};
    rest.remove_prefix(1);
    const std::optional<int> line = takeNumber(rest);
    // What follows the place is the severity: "(3): error:", ") : error C1503:" or, where that came ahead,
    // the message.
    rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of("0123456789(): ")));
    const bool is_warning = is_warning_ahead || (!has_severity_ahead && takeWord(rest, "warning"));
    return is_warning ? std::nullopt : line;
}

/// The errors of a driver's log, a line each; warnings and remarks are left out.
std::vector<DriverError> driverErrors(std::string_view log) {
    std::vector<DriverError> errors;
    for (int number = 1; number <= lineCount(log); ++number) {
        const std::string_view message = trimmed(lineOf(log, number));
        if (const std::optional<int> line = errorLine(message))
            errors.push_back({std::string(message), *line});
    }
    if (errors.empty()) {
        const std::string_view whole = log.substr(0, log.find_last_not_of(" \r\n\t") + 1);
        errors.push_back({whole.empty() ? "nothing" : std::string(whole), 0});
    }
    return errors;
}

} // namespace

std::optional<SourceLocation> locate(const AssembledShader& shader, int fragment_line) {
    for (const SnippetSection& section : shader.sections) {
        const int line = fragment_line - section.first_line + 1;
        if (line >= 1 && line <= section.line_count)
            return SourceLocation{section.light_name, line};
    }
    return {};
}

std::string compileErrorText(const AssembledShader& shader, std::string_view driver_log) {
    const std::vector<DriverError> errors = driverErrors(driver_log);
    for (const SnippetSection& section : shader.sections) {
        std::string text;
        for (int line = 0; line < section.line_count; ++line)
            text.append(lineOf(shader.fragment, section.first_line + line)) += '\n';
        if (const std::string open = leftOpen(text); !open.empty()) {
            return fmt::format(
                "the GLSL snippet of the light {} does not compile: it has {}.\nThe driver says: {}",
                inQuotes(section.light_name), open, errors.front().text);
        }
    }
    for (const DriverError& error : errors) {
        if (const std::optional<SourceLocation> location = locate(shader, error.line)) {
            return fmt::format("the GLSL snippet of the light {} does not compile, line {}: {}\n"
                               "The driver says: {}",
                               inQuotes(location->light_name), location->line,
                               trimmed(lineOf(shader.fragment, error.line)), error.text);
        }
    }
    return "the lighting shader does not compile, and the driver names no line of a light's snippet."
           "\nThe driver says: " +
           errors.front().text;
}

} // namespace korl
