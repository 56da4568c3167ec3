#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korl {

/// What a scene file holds for modules that are not loaded. None of it shows in pictures; it is kept as it
/// stands, so that it is there again when the scene is written.
class UnresolvedObjects {
public:
    /// An object of a type that no loaded module has.
    struct Object {
        std::string type;
        std::string name;    ///< empty where the file gives none
        std::string json;    ///< all that the file says of it
        std::uint64_t after; ///< the number of the object that stands before it, 0 for none
    };

    /// A parameter of such an object.
    struct Source {
        std::string object, parameter;
    };

    void add(Object object);
    const std::vector<Object>& objects() const noexcept { return my_objects; }
    bool contains(const std::string& name) const { return my_names.contains(name); }

    /// @returns whether there was an object of this name.
    bool remove(const std::string& name);

    /// Remembers that a parameter of the object with this number follows a foreign one.
    void connect(std::uint64_t follower, const std::string& parameter, Source source);
    void disconnect(std::uint64_t follower, const std::string& parameter);
    /// What the parameter follows, or null.
    const Source* sourceOf(std::uint64_t follower, const std::string& parameter) const;

    std::vector<std::string> plugins; ///< modules that the scene needs and that are not loaded
    std::string solo;                 ///< the foreign light that shines alone, or empty

private:
    std::vector<Object> my_objects;
    std::unordered_set<std::string> my_names;
    std::map<std::pair<std::uint64_t, std::string>, Source> my_connections;
};

} // namespace korl
