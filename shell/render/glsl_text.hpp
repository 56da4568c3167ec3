#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The little that the shell has to understand of GLSL, and of what drivers say of it, as text.
namespace korl {

/// Letters, digits and underscores.
bool isNameCharacter(char c);

/// An empty text has no lines; a line break at the end begins none.
int lineCount(std::string_view text);

/// A line, counted from 1, without its line break.
std::string_view lineOf(std::string_view text, int line);

/// Without the blanks at both ends.
std::string_view trimmed(std::string_view text);

/// Takes a word off the front of the text, and the blanks before it; false where another word stands there.
bool takeWord(std::string_view& text, std::string_view word);

/// Takes a number off the front of the text; none where there is none, or it is too large for an int.
std::optional<int> takeNumber(std::string_view& text);

struct UncommentedText {
    std::string text; ///< As long as the original, comments blanked, line breaks kept.
    bool is_comment_open = false;
};

UncommentedText withoutComments(std::string_view source);

/// A uniform of floats that a snippet declares.
struct UniformDeclaration {
    std::string name;   ///< as it is written, with its "$$"
    int size = 1;       ///< how many floats: 1 for float, 2 to 4 for vec2 to vec4
    std::size_t at = 0; ///< where in the text the word `uniform` stands
};

/// Whether a line of a text without comments is for the preprocessor and more than a pragma.
bool hasMacros(std::string_view uncommented);

/// The names of all uniforms that a snippet declares, of whatever type, as they are written, with their "$$".
/// Members of uniform blocks, which OpenGL sets by buffers, are not among them.
std::vector<std::string> uniformNames(std::string_view snippet);

/// The uniforms that a snippet declares; none where one of them is more than a plain float or vector, one
/// name to a declaration, where it has other variables outside functions, whose values may come from the
/// uniforms, or macros, which may hide any of that.
std::optional<std::vector<UniformDeclaration>> floatUniforms(std::string_view snippet);

} // namespace korl
