#pragma once

#include <string>
#include <string_view>
#include <utility>
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

/// The types in the order of the catalogue under their names (see `typeName`); where several have the same
/// name, the first.
std::vector<std::pair<std::string, Qelt::VCreatorBase*>> namedTypes();

/// The names of `namedTypes`.
std::vector<std::string> typeNames();

/// A sentence for each type that is shadowed: which module's type has the name, and how this one is reached.
std::vector<std::string> shadowedTypes();

} // namespace korl
