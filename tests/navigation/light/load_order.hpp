#pragma once

// The order in which the module registers its units, read from its list of them.

#include "tests/support/loaded_module.hpp"

#include <sorvik/creator.hpp>

#include <fstream>
#include <string>
#include <vector>

namespace korl::test {

inline std::vector<std::string> unitsInLoadOrder() {
    const std::string folder = otherModuleFolder();
    std::ifstream list(folder.empty() ? LOAD_ORDER : folder + "/load_order.inc");
    std::vector<std::string> units;
    for (std::string line; std::getline(list, line);)
        if (line.starts_with("UNIT("))
            units.push_back(line.substr(5, line.find(')') - 5));
    return units;
}

/// The creators of the loaded module in the order in which they are registered. Those of a unit have its
/// name; where it has two, they are registered in the order of the catalogue.
inline std::vector<Qelt::VCreatorBase*> creatorsInLoadOrder() {
    std::vector<Qelt::VCreatorBase*> creators;
    for (const std::string& unit : unitsInLoadOrder())
        for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue())
            if (creator->Name() == unit)
                creators.push_back(creator);
    EXPECT_EQ(creators.size(), Qelt::VCreatorBase::catalogue().size()) << "a creator has the name of no unit";
    return creators;
}

/// What is printed at verbosity 100 when a creator is made.
inline std::string traceOfMaking(const Qelt::VCreatorBase& creator) {
    return "VCreator::VCreator(" + creator.keyname("/") + "," + std::to_string(creator.creatorNumber()) +
           ")\n";
}

} // namespace korl::test
