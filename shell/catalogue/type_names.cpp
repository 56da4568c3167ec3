#include "shell/catalogue/type_names.hpp"

#include "shell/base/printable.hpp"
#include "shell/catalogue/module_of.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <fmt/core.h>

namespace korl {

using Qelt::VCreatorBase;

VCreatorBase* findType(std::string_view name) {
    const std::size_t slash = name.find('/');
    if (slash != std::string_view::npos)
        for (VCreatorBase* const creator : VCreatorBase::catalogue())
            if (creator->Name() == name.substr(slash + 1) && moduleOf(*creator) == name.substr(0, slash))
                return creator;
    return VCreatorBase::find(name);
}

std::string typeName(const VCreatorBase& creator) {
    const VCreatorBase* const first = findType(creator.Name());
    if (!first || first == &creator)
        return creator.Name();
    const std::string module = moduleOf(creator);
    return module.empty() || module == moduleOf(*first) ? creator.Name()
                                                        : fmt::format("{}/{}", module, creator.Name());
}

std::vector<std::pair<std::string, VCreatorBase*>> namedTypes() {
    std::vector<std::pair<std::string, VCreatorBase*>> types;
    for (VCreatorBase* const creator : VCreatorBase::catalogue())
        if (std::string name = typeName(*creator);
            std::none_of(types.begin(), types.end(), [&](const auto& type) { return type.first == name; }))
            types.emplace_back(std::move(name), creator);
    return types;
}

std::vector<std::string> typeNames() {
    std::vector<std::string> names;
    for (auto& [name, creator] : namedTypes())
        names.push_back(std::move(name));
    return names;
}

std::vector<std::string> shadowedTypes() {
    std::vector<std::string> sentences;
    for (const auto& [name, creator] : namedTypes())
        if (name != creator->Name())
            sentences.push_back(fmt::format(
                "two modules have the type {}: the name stands for that of {}, {} for the other",
                inQuotes(creator->Name()), inQuotes(moduleOf(*findType(creator->Name()))), inQuotes(name)));
    return sentences;
}

} // namespace korl
