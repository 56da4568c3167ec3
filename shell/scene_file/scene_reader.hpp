#pragma once

#include "shell/scene_file/scene_file.hpp"
#include "shell/scene_file/scene_json.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Qelt {
class VObject;
class VParameter;
} // namespace Qelt

namespace korl {

/// The text of a scene file. Throws Error where it cannot be read.
std::string sceneFileText(const std::filesystem::path& file);

/// Its JSON, taken apart. Throws Error that names the file.
JsonText parseScene(std::string text, const std::filesystem::path& file);

/// What is taken from a scene file.
enum class Part {
    everything,
    lights, ///< the lights alone; those whose names are taken get a number
};

/// Adds what a scene file describes to a scene, or nothing at all.
class SceneReader {
public:
    SceneReader(const std::filesystem::path& file, Scene& scene, const SceneReading& reading, Part part);
    ~SceneReader(); ///< takes away what was added, unless `read` came to its end
    SceneReader(const SceneReader&) = delete;
    SceneReader& operator=(const SceneReader&) = delete;

    void read(const JsonValue& root);

private:
    void readObjects(const JsonValue& root);
    void readObject(const JsonValue& value, const ScenePlace& place);
    void create(const JsonValue& value, const std::string& type, const std::string& name,
                const ScenePlace& place);
    /// A name for an object without one: its type's, numbered where the scene or the file has that.
    std::string freeName(const std::string& type);
    void keep(const JsonValue& value, const std::string& type, const std::string& name,
              const ScenePlace& place);
    void requireShape(const JsonValue& object, const ScenePlace& place) const;
    void readValues(const JsonValue& values, const ScenePlace& place, const std::string& object,
                    const std::string& view);
    void readConnections(const JsonValue& connections, std::size_t made);
    void readViews(const JsonValue& root);
    void readSolo(const std::string& name, const ScenePlace& place);
    void readPlugins(const JsonValue& root);
    void warnOfUnresolved() const;

    /// An object that was created, where the file describes it.
    struct Created {
        JsonValue value;
        ScenePlace place;
        Qelt::VObject* object;
    };

    /// A parameter that is to follow another one.
    struct Link {
        std::size_t made; ///< the number of its object among those created
        Qelt::VParameter *follower, *source;
        Qelt::VObject* source_object;
    };
    ScenePlace placeOf(std::size_t made, const std::string& connection) const;
    void connectLinks();

    const std::filesystem::path& my_file;
    Scene& my_scene;
    const SceneReading& my_reading;
    Part my_part;
    ScenePlace my_root;
    std::vector<Created> my_created;
    std::vector<Link> my_links;
    std::unordered_map<const Qelt::VParameter*, const Qelt::VParameter*> my_followed;
    std::unordered_map<std::string, Qelt::VObject*> my_names; ///< by the names that the file gives
    std::unordered_set<std::string> my_file_names;            ///< all that the file gives
    std::unordered_map<std::string, bool> my_makes_lights;    ///< by type
    std::unordered_set<std::string> my_left_out;     ///< the names in the file of what is not a light
    std::unordered_map<std::string, int> my_numbers; ///< how far unnamed objects were counted, by type
    std::uint64_t my_latest = 0;                     ///< the number of the object created last
    std::map<std::string, std::vector<std::string>> my_unresolved_names; ///< by type
    struct Rollback;
    std::unique_ptr<Rollback> my_rollback; ///< what to restore if reading fails; null once it has succeeded
};

} // namespace korl
