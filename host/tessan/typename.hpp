#pragma once

#include <tessan/export.hpp>

#include <string>
#include <typeinfo>

namespace Tessan {

/// The readable name of a type, such as "double" or "Orvid::rgba_float_t".
/// A name that cannot be made readable is returned as the compiler spells it.
TESSAN_EXPORT std::string Typename(const std::type_info& type);

} // namespace Tessan
