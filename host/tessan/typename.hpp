#pragma once

#include <tessan/export.hpp>

#include <string>
#include <typeinfo>

namespace Tessan {

/// The readable name of a type, such as "double" or "Orvid::PhysicalSpace::point".
/// A name that cannot be made readable is returned as the compiler spells it.
TESSAN_EXPORT std::string Typename(const std::type_info& type);

/// A library of this process, or its program.
struct Library {
    const void* base; ///< where it is loaded; null for a program that has no libraries at all
    std::string file;

    friend bool operator==(const Library& a, const Library& b) noexcept { return a.base == b.base; }
};

/// The library that a type is defined in. Two libraries may define types of one name.
TESSAN_EXPORT Library libraryOf(const std::type_info& type);

} // namespace Tessan
