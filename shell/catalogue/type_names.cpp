#include "shell/catalogue/type_names.hpp"

#include "shell/base/printable.hpp"
#include "shell/catalogue/module_of.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>

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
    return module.empty() || module == moduleOf(*first) ? creator.Name() : module + "/" + creator.Name();
}

std::vector<std::string> typeNames() {
    std::vector<std::string> names;
    for (const VCreatorBase* const creator : VCreatorBase::catalogue())
        if (std::string name = typeName(*creator); std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    return names;
}

std::vector<std::string> shadowedTypes() {
    std::vector<std::string> sentences;
    for (const VCreatorBase* const creator : VCreatorBase::catalogue()) {
        const std::string name = typeName(*creator);
        if (name == creator->Name())
            continue;
        const std::string sentence = "two modules have the type \"" + printable(creator->Name()) +
                                     "\": the name stands for that of \"" +
                                     printable(moduleOf(*findType(creator->Name()))) + "\", \"" +
                                     printable(name) + "\" for the other";
        if (std::find(sentences.begin(), sentences.end(), sentence) == sentences.end())
            sentences.push_back(sentence);
    }
    return sentences;
}

} // namespace korl
