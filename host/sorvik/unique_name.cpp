#include <sorvik/unique_name.hpp>

namespace Qelt {

std::string uniqueName(const std::string& base, const std::function<bool(const std::string&)>& taken) {
    std::string name = base;
    for (unsigned long number = 2; taken(name); ++number)
        name = base + std::to_string(number);
    return name;
}

} // namespace Qelt
