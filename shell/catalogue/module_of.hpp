#pragma once

#include <string>

namespace Qelt {
class VCreatorBase;
}

namespace korl {

/// The name of the loaded module that a creator comes from, such as "tovek_light": the one whose library
/// holds the creator's type. Empty where the program itself brings it.
std::string moduleOf(const Qelt::VCreatorBase& creator);

/// Whether a module of this name is loaded.
bool isModuleLoaded(const std::string& name);

} // namespace korl
