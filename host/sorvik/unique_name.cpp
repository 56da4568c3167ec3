#include <sorvik/unique_name.hpp>

#include <algorithm>

namespace Qelt {

std::string uniqueName(const std::string& base, const std::function<bool(const std::string&)>& taken) {
    unsigned long number = 0;
    return uniqueName(base, taken, number);
}

std::string uniqueName(const std::string& base, const std::function<bool(const std::string&)>& taken,
                       unsigned long& number) {
    std::string name = base;
    while (taken(name)) {
        number = std::max(number + 1, 2ul);
        name = base + std::to_string(number);
    }
    return name;
}

} // namespace Qelt
