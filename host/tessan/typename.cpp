#include <tessan/typename.hpp>

#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <string_view>

namespace Tessan {

std::string Typename(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    std::string name = readable ? readable.get() : type.name();
    // Compilers know the physical space by what it is defined as.
    constexpr std::string_view defined_as = "Orvid::Coordinates<Orvid::Cartesian3D, double>";
    for (std::size_t at = 0; (at = name.find(defined_as, at)) != std::string::npos;)
        name.replace(at, defined_as.size(), "Orvid::PhysicalSpace");
    return name;
}

Library libraryOf(const std::type_info& type) {
    Dl_info found{};
    dladdr(&type, &found);
    return {found.dli_fbase, found.dli_fname ? found.dli_fname : ""};
}

} // namespace Tessan
