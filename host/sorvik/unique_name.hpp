#pragma once

#include <sorvik/export.hpp>

#include <functional>
#include <string>

namespace Qelt {

/// `base` itself if it is free, else the first of base2, base3, … that is.
SORVIK_EXPORT std::string uniqueName(const std::string& base,
                                     const std::function<bool(const std::string&)>& taken);

/// The same, counting on from `number`, which then holds the number used: many names one after the other cost
/// no more than one look each.
SORVIK_EXPORT std::string uniqueName(const std::string& base,
                                     const std::function<bool(const std::string&)>& taken,
                                     unsigned long& number);

} // namespace Qelt
