#pragma once

#include <sorvik/object.hpp>
#include <sorvik/value_pool.hpp>

#include <optional>
#include <string>

namespace korl {

/// The text of a parameter's global value, if it must be saved: an object that is new would not have it by
/// itself. Nothing where it cannot be read. Throws Error for a value that is not finite, which could not be
/// set again.
std::optional<std::string> savedValue(const Qelt::VObject& object, const Qelt::VParameter& parameter);

/// The text of the value that a view has of its own, if it has one. Throws Error for one that is not finite.
std::optional<std::string> savedValue(const Qelt::VObject& object, const Qelt::VParameter& parameter,
                                      const Qelt::ValuePool& view);

} // namespace korl
