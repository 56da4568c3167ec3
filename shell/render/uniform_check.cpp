#include "shell/render/uniform_check.hpp"

#include "shell/render/glsl_text.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

namespace {

/// The name of the uniform of which a key of the map sets the whole or a part.
std::string_view wholeOf(std::string_view key) {
    return key.substr(0, key.find_first_of("[."));
}

bool mentions(std::string_view uncommented, std::string_view name) {
    for (std::size_t at = uncommented.find(name); at != std::string_view::npos;
         at = uncommented.find(name, at + 1)) {
        const std::string_view behind = uncommented.substr(at + name.size());
        if ((at == 0 || !isNameCharacter(uncommented[at - 1])) &&
            (behind.empty() || !isNameCharacter(behind.front())))
            return true;
    }
    return false;
}

/// The uniform "a", or: the uniforms "a" and "b".
std::string listed(const std::vector<std::string>& names) {
    std::string text = names.size() == 1 ? "the uniform " : "the uniforms ";
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "\"" : i + 1 == names.size() ? "\" and \"" : "\", \"") + names[i];
    return text + "\"";
}

} // namespace

UniformMismatch compareUniforms(std::string_view snippet, const Qelt::RenderNamespace::UniformMap& written) {
    const std::vector<std::string> declared = uniformNames(snippet);
    const std::string uncommented = withoutComments(snippet).text;
    UniformMismatch mismatch;
    for (const auto& [name, value] : written) {
        const std::string_view whole = wholeOf(name);
        if (std::find(declared.begin(), declared.end(), whole) == declared.end() &&
            !(hasMacros(uncommented) && mentions(uncommented, whole)))
            mismatch.undeclared.push_back(name);
    }
    for (const std::string& name : declared)
        if (std::none_of(written.begin(), written.end(),
                         [&](const auto& entry) { return wholeOf(entry.first) == name; }))
            mismatch.unwritten.push_back(name);
    return mismatch;
}

std::string undeclaredText(const UniformMismatch& mismatch) {
    if (mismatch.undeclared.empty())
        return {};
    return fmt::format("writes {}, which its snippet does not declare: the shader gets nothing of it",
                       listed(mismatch.undeclared));
}

std::string unwrittenText(const UniformMismatch& mismatch) {
    if (mismatch.unwritten.empty())
        return {};
    return fmt::format("never writes {}, which its snippet declares: the shader has the declared value",
                       listed(mismatch.unwritten));
}

} // namespace korl
