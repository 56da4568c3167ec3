#pragma once

#include "tests/support/loaded_module.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace korl::test {

/// How many creators the module has; one type may have several.
inline std::size_t creatorCount() {
    const LoadedModule module;
    return Qelt::VCreatorBase::catalogue().size();
}

/// The names of the module's types, each once, in the order of the catalogue.
inline std::vector<std::string> moduleTypes() {
    const LoadedModule module;
    std::vector<std::string> types;
    for (const Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue())
        if (std::find(types.begin(), types.end(), creator->Name()) == types.end())
            types.push_back(creator->Name());
    return types;
}

/// The same as messages list them: "Headlight, Torch".
inline std::string listOfModuleTypes() {
    std::string list;
    for (const std::string& type : moduleTypes())
        list += (list.empty() ? "" : ", ") + type;
    return list;
}

} // namespace korl::test
