#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Qelt {
class VCreatorBase;
}

namespace korl {

/// The creator that a type's name stands for, or null. "TYPE" is the first of this name in the catalogue,
/// "MODULE/TYPE" the first of this name that the module brings.
Qelt::VCreatorBase* findType(std::string_view name);

/// The name that leads to the type of a creator: the creator's own, or "MODULE/TYPE" for a type that is
/// shadowed, since another module's type of the same name stands before it in the catalogue.
std::string typeName(const Qelt::VCreatorBase& creator);

/// The names of all types, each once, in the order of the catalogue.
std::vector<std::string> typeNames();

/// A sentence for each type that is shadowed: which module's type has the name, and how this one is reached.
std::vector<std::string> shadowedTypes();

} // namespace korl
