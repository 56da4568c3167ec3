#include <sorvik/slot_creator.hpp>

#include <algorithm>
#include <typeindex>
#include <vector>

namespace Qelt {

namespace {

struct Registration {
    std::type_index type;
    const TypedSlotCreator* creator;
    std::string name;

    friend bool operator==(const Registration&, const Registration&) = default;
};

/// Never destroyed: modules withdraw their creators as late as after `main`.
std::vector<Registration>& registrations() {
    static auto& registered = *new std::vector<Registration>;
    return registered;
}

template <class Predicate>
const TypedSlotCreator* firstCreator(Predicate matches) {
    const auto found = std::find_if(registrations().begin(), registrations().end(), matches);
    return found == registrations().end() ? nullptr : found->creator;
}

} // namespace

std::atomic<std::size_t> TypedSlotCreator::InternalTypeCreatorAccessory{0};
const std::atomic<bool> TypedSlotCreator::creator_exists{true};

TypedSlotCreator::~TypedSlotCreator() = default;

void TypedSlotCreator::registerTypedSlotCreator(const std::type_info& type, const TypedSlotCreator& creator,
                                                const std::string& name) {
    registrations().push_back({type, &creator, name});
}

bool TypedSlotCreator::unregisterTypedSlotCreator(const std::type_info& type, const TypedSlotCreator& creator,
                                                  const std::string& name) {
    const auto found =
        std::find(registrations().begin(), registrations().end(), Registration{type, &creator, name});
    if (found == registrations().end())
        return false;
    registrations().erase(found);
    return true;
}

const TypedSlotCreator* TypedSlotCreator::find(std::string_view name) {
    return firstCreator([&](const Registration& registered) { return registered.name == name; });
}

const TypedSlotCreator* TypedSlotCreator::find(const std::type_info& type) {
    return firstCreator([&](const Registration& registered) { return registered.type == type; });
}

std::size_t TypedSlotCreator::count(const std::type_info& type) {
    return static_cast<std::size_t>(
        std::count_if(registrations().begin(), registrations().end(),
                      [&](const Registration& registered) { return registered.type == type; }));
}

} // namespace Qelt
