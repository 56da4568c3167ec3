#include "shell/render/glsl_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace korl {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

/// Takes a name off the front of the text, with the blanks and line breaks before it and "$" counted as a
/// part of names; empty where there is none.
std::string_view takeName(std::string_view& text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(" \t\r\n\v\f")));
    std::size_t size = 0;
    while (size < text.size() && (isNameCharacter(text[size]) || text[size] == '$'))
        ++size;
    const std::string_view name = text.substr(0, size);
    text.remove_prefix(size);
    return name;
}

/// How many floats a value of the type has; 0 for types that are neither a float nor a vector of floats.
int floatsOf(std::string_view type) {
    constexpr std::array<std::string_view, 4> vectors = {"float", "vec2", "vec3", "vec4"};
    const auto found = std::find(vectors.begin(), vectors.end(), type);
    return found == vectors.end() ? 0 : static_cast<int>(found - vectors.begin()) + 1;
}

/// Without the lines of the preprocessor, line breaks as blanks.
std::string codeOf(std::string_view uncommented) {
    std::string text;
    for (int line = 1; line <= lineCount(uncommented); ++line)
        if (const std::string_view code = lineOf(uncommented, line); !trimmed(code).starts_with('#'))
            text.append(code) += ' ';
    return text;
}

/// Whether a declaration outside brackets is of a variable: neither a uniform, nor a constant, nor a
/// function.
bool hasGlobalVariables(std::string_view uncommented) {
    int depth = 0;
    std::string statement; // what of it stands outside brackets
    for (const char c : codeOf(uncommented)) {
        depth -= c == ')' || c == '}' || c == ']' ? 1 : 0;
        if (depth == 0 && c == ';') {
            std::string_view rest = trimmed(statement);
            const bool is_function = rest.ends_with(')') && rest.find('=') == std::string_view::npos;
            if (!rest.empty() && !is_function && !takeWord(rest, "uniform") && !takeWord(rest, "const"))
                return true;
        }
        if (depth == 0 && (c == ';' || c == '}'))
            statement.clear();
        else if (depth == 0)
            statement += c;
        depth += c == '(' || c == '{' || c == '[' ? 1 : 0;
    }
    return false;
}

constexpr std::string_view keyword = "uniform";

/// What follows each word `uniform` of a text.
std::vector<std::string_view> uniformDeclarations(std::string_view text) {
    std::vector<std::string_view> declarations;
    for (std::size_t at = text.find(keyword); at != std::string_view::npos; at = text.find(keyword, at + 1)) {
        const std::string_view rest = text.substr(at + keyword.size());
        if ((at == 0 || !isNameCharacter(text[at - 1])) && (rest.empty() || !isNameCharacter(rest.front())))
            declarations.push_back(rest);
    }
    return declarations;
}

/// The parts of a declaration up to its semicolon, as commas outside brackets separate them.
std::vector<std::string_view> declarators(std::string_view declaration) {
    std::vector<std::string_view> parts;
    int depth = 0;
    std::size_t first = 0;
    for (std::size_t i = 0; i < declaration.size(); ++i) {
        const char c = declaration[i];
        depth += c == '(' || c == '{' || c == '[' ? 1 : c == ')' || c == '}' || c == ']' ? -1 : 0;
        if (depth != 0 || (c != ',' && c != ';'))
            continue;
        parts.push_back(declaration.substr(first, i - first));
        first = i + 1;
        if (c == ';')
            break;
    }
    return parts;
}

} // namespace

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

int lineCount(std::string_view text) {
    const auto breaks = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    return text.empty() || text.back() == '\n' ? breaks : breaks + 1;
}

std::string_view lineOf(std::string_view text, int line) {
    for (int skipped = 1; skipped < line; ++skipped)
        text.remove_prefix(std::min(text.size(), text.find('\n') + 1));
    return text.substr(0, text.find('\n'));
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool takeWord(std::string_view& text, std::string_view word) {
    const std::string_view rest = trimmed(text);
    if (!rest.starts_with(word) || (rest.size() > word.size() && isNameCharacter(rest[word.size()])))
        return false;
    text = rest.substr(word.size());
    return true;
}

std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (problem != std::errc())
        return {};
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

UncommentedText withoutComments(std::string_view source) {
    UncommentedText result{std::string(source), false};
    std::string& text = result.text;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const bool is_line = text[i] == '/' && text[i + 1] == '/';
        const bool is_block = text[i] == '/' && text[i + 1] == '*';
        if (!is_line && !is_block)
            continue;
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

bool hasMacros(std::string_view uncommented) {
    for (int line = 1; line <= lineCount(uncommented); ++line) {
        std::string_view rest = trimmed(lineOf(uncommented, line));
        if (!rest.starts_with('#'))
            continue;
        rest.remove_prefix(1);
        if (!takeWord(rest, "pragma"))
            return true;
    }
    return false;
}

std::vector<std::string> uniformNames(std::string_view snippet) {
    const std::string text = codeOf(withoutComments(snippet).text);
    std::vector<std::string> names;
    for (const std::string_view declaration : uniformDeclarations(text)) {
        for (const std::string_view part : declarators(declaration)) {
            std::string_view rest = part;
            // A brace behind "=" begins a value.
            if (const std::size_t at = part.find_first_of("{="); at < part.size() && part[at] == '{') {
                if (takeName(rest) != "struct")
                    continue; // a block
                rest = part.substr(part.find('}') + 1);
            }
            rest = rest.substr(0, rest.find_first_of("[="));
            std::string_view name; // the last word, behind the type
            for (std::string_view word = takeName(rest); !word.empty(); word = takeName(rest))
                name = word;
            if (!name.empty())
                names.emplace_back(name);
        }
    }
    return names;
}

std::optional<std::vector<UniformDeclaration>> floatUniforms(std::string_view snippet) {
    const std::string text = withoutComments(snippet).text;
    if (hasMacros(text) || hasGlobalVariables(text))
        return {};
    std::vector<UniformDeclaration> declarations;
    for (std::string_view rest : uniformDeclarations(text)) {
        const std::size_t at = static_cast<std::size_t>(rest.data() - text.data()) - keyword.size();
        const int size = floatsOf(takeName(rest));
        const std::string_view name = takeName(rest);
        const std::string_view declared = rest.substr(0, rest.find(';'));
        const std::size_t after_name = declared.find_first_not_of(" \t\r\n\v\f");
        const bool is_plain = after_name == std::string_view::npos || declared[after_name] == '=';
        // A comma outside brackets begins a second name.
        int depth = 0;
        const bool has_more_names = std::any_of(declared.begin(), declared.end(), [&depth](char c) {
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
            return c == ',' && depth == 0;
        });
        if (size == 0 || name.empty() || !is_plain || has_more_names)
            return {};
        declarations.push_back({std::string(name), size, at});
    }
    return declarations;
}

} // namespace korl
