#include "shell/render/shader_assembly.hpp"

#include "shell/error.hpp"
#include "shell/render/shader_text.hpp"

#include <algorithm>
#include <charconv>
#include <set>

namespace korl {

using namespace shader_text;

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

int lineCount(std::string_view text) {
    const auto breaks = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    return text.empty() || text.back() == '\n' ? breaks : breaks + 1;
}

std::string_view lineOf(std::string_view text, int line) {
    for (int skipped = 1; skipped < line; ++skipped) {
        text.remove_prefix(std::min(text.size(), text.find('\n') + 1));
    }
    return text.substr(0, text.find('\n'));
}

struct UncommentedText {
    std::string text; ///< As long as the original, comments blanked, line breaks kept.
    bool is_comment_open = false;
};

UncommentedText withoutComments(std::string_view source) {
    UncommentedText result{std::string(source), false};
    std::string& text = result.text;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const bool is_line = text[i] == '/' && text[i + 1] == '/';
        const bool is_block = text[i] == '/' && text[i + 1] == '*';
        if (!is_line && !is_block) {
            continue;
        }
        std::size_t end = is_line ? text.find('\n', i) : text.find("*/", i + 2);
        result.is_comment_open = is_block && end == std::string::npos;
        end = end == std::string::npos ? text.size() : is_line ? end : end + 2;
        std::replace_if(
            text.begin() + static_cast<std::ptrdiff_t>(i), text.begin() + static_cast<std::ptrdiff_t>(end),
            [](char c) { return c != '\n'; }, ' ');
        i = end - 1;
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Takes a word off the front of the text, and the blanks before it; false where another word stands there.
bool takeWord(std::string_view& text, std::string_view word) {
    const std::string_view rest = trimmed(text);
    if (!rest.starts_with(word) || (rest.size() > word.size() && isNameCharacter(rest[word.size()]))) {
        return false;
    }
    text = rest.substr(word.size());
    return true;
}

/// The name that a line imports, none where the line is no import; throws where it can't be read.
std::optional<std::string> importedName(std::string_view line, const std::string& light_name) {
    std::string_view rest = trimmed(line);
    if (!rest.starts_with('#')) {
        return {};
    }
    rest.remove_prefix(1);
    if (!takeWord(rest, "pragma") || !takeWord(rest, "import")) {
        return {};
    }
    rest = trimmed(rest);
    const bool is_quoted = rest.size() > 2 && rest.front() == '"' && rest.find('"', 1) == rest.size() - 1;
    if (!is_quoted) {
        throw Error("The light \"" + light_name + "\" has an import that can't be read: " +
                    std::string(trimmed(line)) + "\nWrite it as: #pragma import \"NAME\"");
    }
    return std::string(rest.substr(1, rest.size() - 2));
}

std::string knownImports() {
    std::string names;
    for (const ImportableFunction& function : importable_functions) {
        names += (names.empty() ? "" : ", ") + std::string(function.name);
    }
    return names;
}

void collectImports(const LightSnippet& snippet, std::string_view uncommented,
                    std::set<std::string>& imports) {
    for (int line = 1; line <= lineCount(uncommented); ++line) {
        const std::optional<std::string> name = importedName(lineOf(uncommented, line), snippet.light_name);
        if (!name) {
            continue;
        }
        const bool is_known =
            std::any_of(importable_functions.begin(), importable_functions.end(),
                        [&](const ImportableFunction& known) { return known.name == *name; });
        if (!is_known) {
            throw Error("The light \"" + snippet.light_name + "\" imports \"" + *name +
                        "\", which the shell does not have.\nWhat it can import: " + knownImports());
        }
        imports.insert(*name);
    }
}

/// Whether the text has the name, a parameter list and an opening brace after each other.
bool definesFunction(std::string_view uncommented, std::string_view name) {
    const auto skipBlanks = [&](std::size_t i) { return uncommented.find_first_not_of(" \t\r\n\v\f", i); };
    for (std::size_t at = uncommented.find(name); at != std::string_view::npos;
         at = uncommented.find(name, at + 1)) {
        if (at > 0 && isNameCharacter(uncommented[at - 1])) {
            continue;
        }
        const std::size_t open = skipBlanks(at + name.size());
        if (open == std::string_view::npos || uncommented[open] != '(') {
            continue;
        }
        const std::size_t close = uncommented.find(')', open);
        const std::size_t body = close == std::string_view::npos ? close : skipBlanks(close + 1);
        if (body != std::string_view::npos && uncommented[body] == '{') {
            return true;
        }
    }
    return false;
}

/// What a snippet leaves open, in words; empty where every bracket and comment is closed.
std::string leftOpen(std::string_view snippet_text) {
    const UncommentedText uncommented = withoutComments(snippet_text);
    if (uncommented.is_comment_open) {
        return "a comment that is never closed";
    }
    for (const std::string_view pair : {"{}", "()", "[]"}) {
        const auto opened = std::count(uncommented.text.begin(), uncommented.text.end(), pair[0]);
        const auto closed = std::count(uncommented.text.begin(), uncommented.text.end(), pair[1]);
        if (opened != closed) {
            return std::to_string(opened) + " \"" + pair[0] + "\" but " + std::to_string(closed) + " \"" +
                   pair[1] + "\"";
        }
    }
    return {};
}

struct DriverError {
    std::string text;
    int line = 0; ///< Of the source, 0 where the driver gives none.
};

/// Takes a number off the front of the text; none where there is none, or it is too large for an int.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (problem != std::errc()) {
        return {};
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// The source line that an error of a driver's log names; none for warnings and for lines of another form: a
/// word of severity and a colon may come first, then the number of the source, ":" or "(", and the line.
std::optional<int> errorLine(std::string_view message) {
    std::string_view rest = message;
    const bool is_warning_ahead = takeWord(rest, "WARNING");
    const bool has_severity_ahead = is_warning_ahead || takeWord(rest, "ERROR");
    if (has_severity_ahead) {
        rest = trimmed(rest.substr(std::min<std::size_t>(rest.size(), 1)));
    }
    if (!takeNumber(rest) || rest.empty() || (rest.front() != ':' && rest.front() != '(')) {
        return {};
    }
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
        if (const std::optional<int> line = errorLine(message)) {
            errors.push_back({std::string(message), *line});
        }
    }
    if (errors.empty()) {
        const std::string_view whole = log.substr(0, log.find_last_not_of(" \r\n\t") + 1);
        errors.push_back({whole.empty() ? "nothing" : std::string(whole), 0});
    }
    return errors;
}

} // namespace

std::string applySuffix(std::string_view name, std::string_view suffix) {
    constexpr std::string_view placeholder = "$$";
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = name.find(placeholder); at != std::string_view::npos;
         at = name.find(placeholder, done)) {
        result.append(name.substr(done, at - done)).append(suffix);
        done = at + placeholder.size();
    }
    return result.append(name.substr(done));
}

AssembledShader assembleShader(std::span<const LightSnippet> snippets, int glsl_version) {
    if (std::find(glsl_versions.begin(), glsl_versions.end(), glsl_version) == glsl_versions.end()) {
        std::string known;
        for (const int version : glsl_versions) {
            known += (known.empty() ? "" : ", ") + std::to_string(version);
        }
        throw Error("A shader of GLSL version " + std::to_string(glsl_version) +
                    " was asked for, which the shell can't assemble.\nTake one of: " + known);
    }

    std::set<std::string> imports;
    for (const LightSnippet& snippet : snippets) {
        const std::string uncommented = withoutComments(snippet.text).text;
        collectImports(snippet, uncommented, imports);
        if (!definesFunction(uncommented, "getLight_$$")) {
            throw Error("The GLSL snippet of the light \"" + snippet.light_name +
                        "\" does not define the function getLight_$$.\nIt must define: void getLight_$$(in "
                        "vec3 vertex, "
                        "out vec3 light_incidence, out vec3 intensity, out vec3 specular_intensity)");
        }
    }

    const bool has_varyings = glsl_version < 130;
    const std::string version_line = "#version " + std::to_string(glsl_version) + "\n";
    AssembledShader shader;
    shader.vertex = version_line;
    shader.vertex += has_varyings ? "#define korl_in attribute\n#define korl_out varying\n"
                                  : "#define korl_in in\n#define korl_out out\n";
    shader.vertex += vertex_body;

    std::string& fragment = shader.fragment;
    fragment = version_line;
    fragment += has_varyings ? "#define korl_in varying\n#define korl_fragment_color gl_FragColor\n"
                             : "#define korl_in in\nout vec4 korl_fragment_color;\n";
    fragment += fragment_inputs;
    for (const ImportableFunction& function : importable_functions) {
        if (imports.contains(std::string(function.name))) {
            fragment += function.definition;
        }
    }

    std::string calls;
    for (const LightSnippet& snippet : snippets) {
        std::string suffix = "L";
        suffix += std::to_string(shader.sections.size() + 1);
        const std::string text = applySuffix(snippet.text, suffix);
        shader.sections.push_back({snippet.light_name, suffix, lineCount(fragment) + 1, lineCount(text)});
        fragment += text;
        if (!text.ends_with('\n')) {
            fragment += '\n';
        }
        calls +=
            "\n    getLight_" + suffix +
            "(korl_scene_position, korl_incidence, korl_intensity, korl_specular_intensity);\n"
            "    korl_sum += korl_contribution(korl_incidence, korl_intensity, korl_specular_intensity);\n";
    }
    fragment.append(fragment_shading).append(calls).append(fragment_end);
    return shader;
}

std::optional<SourceLocation> locate(const AssembledShader& shader, int fragment_line) {
    for (const SnippetSection& section : shader.sections) {
        const int line = fragment_line - section.first_line + 1;
        if (line >= 1 && line <= section.line_count) {
            return SourceLocation{section.light_name, line};
        }
    }
    return {};
}

std::string compileErrorText(const AssembledShader& shader, std::string_view driver_log) {
    const std::vector<DriverError> errors = driverErrors(driver_log);
    for (const SnippetSection& section : shader.sections) {
        std::string text;
        for (int line = 0; line < section.line_count; ++line) {
            text.append(lineOf(shader.fragment, section.first_line + line)) += '\n';
        }
        if (const std::string open = leftOpen(text); !open.empty()) {
            return "The GLSL snippet of the light \"" + section.light_name + "\" does not compile: it has " +
                   open + ".\nThe driver says: " + errors.front().text;
        }
    }
    for (const DriverError& error : errors) {
        if (const std::optional<SourceLocation> location = locate(shader, error.line)) {
            return "The GLSL snippet of the light \"" + location->light_name + "\" does not compile, line " +
                   std::to_string(location->line) + ": " +
                   std::string(trimmed(lineOf(shader.fragment, error.line))) +
                   "\nThe driver says: " + error.text;
        }
    }
    return "The lighting shader does not compile, and the driver names no line of a light's snippet."
           "\nThe driver says: " +
           errors.front().text;
}

} // namespace korl
