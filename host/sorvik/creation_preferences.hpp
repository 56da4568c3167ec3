#pragma once

#include <sorvik/export.hpp>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Qelt {

/// What an object is to start with: for parameters by name, the text of the value that they hold first
/// instead of their default. An empty record asks for nothing.
class SORVIK_EXPORT VCreationPreferences {
public:
    VCreationPreferences() = default;

    /// Both records in one. Where both name a parameter, the second one's text is taken.
    VCreationPreferences(const VCreationPreferences& first, const VCreationPreferences& second);

    /// Asks for `text` as the first value of the parameter `name`.
    void prefer(const std::string& name, const std::string& text);

    /// The text asked for, or null if there is none for this parameter.
    const std::string* find(std::string_view name) const;

    bool empty() const noexcept { return my_texts.empty(); }

private:
    std::map<std::string, std::string, std::less<>> my_texts;
};

} // namespace Qelt
