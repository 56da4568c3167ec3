#include "shell/scene/unresolved_objects.hpp"

namespace korl {

void UnresolvedObjects::add(Object object) {
    if (!object.name.empty())
        my_names.insert(object.name);
    my_objects.push_back(std::move(object));
}

bool UnresolvedObjects::remove(const std::string& name) {
    if (my_names.erase(name) == 0)
        return false;
    std::erase_if(my_objects, [&](const Object& object) { return object.name == name; });
    std::erase_if(my_connections, [&](const auto& entry) { return entry.second.object == name; });
    if (solo == name)
        solo.clear();
    return true;
}

void UnresolvedObjects::connect(std::uint64_t follower, const std::string& parameter, Source source) {
    my_connections.insert_or_assign({follower, parameter}, std::move(source));
}

void UnresolvedObjects::disconnect(std::uint64_t follower, const std::string& parameter) {
    my_connections.erase({follower, parameter});
}

const UnresolvedObjects::Source* UnresolvedObjects::sourceOf(std::uint64_t follower,
                                                             const std::string& parameter) const {
    const auto found = my_connections.find({follower, parameter});
    return found == my_connections.end() ? nullptr : &found->second;
}

} // namespace korl
