#include <sorvik/value_creator.hpp>

#include <algorithm>
#include <vector>

namespace Qelt {

namespace {

struct Registration {
    const VValueCreator* creator;
    std::string type_name;
};

/// Never destroyed: modules destroy their creators as late as after `main`.
std::vector<Registration>& registrations() {
    static auto& registered = *new std::vector<Registration>;
    return registered;
}

} // namespace

VValueCreator::VValueCreator() = default;

VValueCreator::~VValueCreator() {
    std::erase_if(registrations(),
                  [&](const Registration& registered) { return registered.creator == this; });
}

void VValueCreator::registerCreator(const VValueCreator& creator, const std::string& type_name) {
    registrations().push_back({&creator, type_name});
}

const VValueCreator* VValueCreator::find(std::string_view type_name) {
    const auto found =
        std::find_if(registrations().begin(), registrations().end(),
                     [&](const Registration& registered) { return registered.type_name == type_name; });
    return found == registrations().end() ? nullptr : found->creator;
}

std::size_t VValueCreator::count(std::string_view type_name) {
    return static_cast<std::size_t>(
        std::count_if(registrations().begin(), registrations().end(),
                      [&](const Registration& registered) { return registered.type_name == type_name; }));
}

template class VValueCreatorOf<double>;

} // namespace Qelt
