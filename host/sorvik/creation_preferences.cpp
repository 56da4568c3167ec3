#include <sorvik/creation_preferences.hpp>

namespace Qelt {

VCreationPreferences::VCreationPreferences(const VCreationPreferences& first,
                                           const VCreationPreferences& second)
    : my_texts(second.my_texts) {
    my_texts.insert(first.my_texts.begin(), first.my_texts.end());
}

void VCreationPreferences::prefer(const std::string& name, const std::string& text) {
    my_texts.insert_or_assign(name, text);
}

const std::string* VCreationPreferences::find(std::string_view name) const {
    const auto found = my_texts.find(name);
    return found == my_texts.end() ? nullptr : &found->second;
}

} // namespace Qelt
