#include <tessan/typename.hpp>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace Tessan {

std::string Typename(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return readable ? readable.get() : type.name();
}

} // namespace Tessan
