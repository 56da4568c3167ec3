#include "shell/scene_file/scene_reader.hpp"

#include "shell/base/color_text.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/near_names.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/module_of.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/scene/light.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <algorithm>
#include <array>
#include <fmt/core.h>

namespace korl {

using Qelt::VCreatorBase;
using Qelt::VObject;

namespace {

constexpr std::uint32_t format_version = 1;
constexpr std::size_t max_views = 256; ///< each view costs something for each parameter that goes

glm::dvec3 triple(const JsonValue& value, const ScenePlace& place) {
    std::array<double, 3> read{};
    const std::string found = place.valueText(value);
    if (!Qelt::componentsFromText(read, found))
        place.fail("expected three numbers [x, y, z], found " + inQuotes(found));
    return {read[0], read[1], read[2]};
}

Camera readCamera(const JsonValue& value, const ScenePlace& place) {
    place.requireObject(value, scene_keys::camera);
    for (const char* const key : {"position", "target"})
        place.require(value, key);
    Camera camera;
    const auto readTriple = [&](const char* key, glm::dvec3& into) {
        place.ifPresent(value, key,
                        [&](const auto& found, const auto& where) { into = triple(found, where); });
    };
    readTriple("position", camera.position);
    readTriple("target", camera.target);
    readTriple("up", camera.up);
    place.ifPresent(value, "fov", [&](const auto& found, const auto& where) {
        const auto degrees = found.template number<double>();
        if (!degrees)
            where.fail("expected degrees, found " + printable(found.source().substr(0, 100)));
        camera.fov_degrees = *degrees;
    });
    place.during([&] { validate(camera); });
    return camera;
}

bool makesLights(VCreatorBase& creator) {
    return isLight(*ModuleCall(creator, "creation").run([&] { return creator.create(""); }).get());
}

std::string listOf(const std::vector<std::string>& names) {
    constexpr std::size_t max_length = 20;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), max_length); ++i)
        list += (i == 0 ? "" : ", ") + inQuotes(names[i]);
    return names.size() > max_length ? fmt::format("{} and {} more", list, names.size() - max_length) : list;
}

} // namespace

/// The scene as it was.
struct SceneReader::Rollback {
    UnresolvedObjects unresolved;
    std::vector<std::string> added_views{};
};

SceneReader::SceneReader(const std::filesystem::path& file, Scene& scene, const SceneReading& reading,
                         Part part)
    : my_file(file), my_scene(scene), my_reading(reading), my_part(part), my_root(file),
      my_rollback(new Rollback{scene.unresolved()}) {
    if (!scene.objects().empty())
        my_latest = scene.objects().back()->number();
}

SceneReader::~SceneReader() {
    if (!my_rollback)
        return;
    for (auto made = my_created.rbegin(); made != my_created.rend(); ++made)
        my_scene.remove(std::string(made->object->Name()));
    for (const std::string& view : my_rollback->added_views)
        my_scene.removeView(view);
    my_scene.unresolved() = std::move(my_rollback->unresolved);
}

void SceneReader::read(const JsonValue& root) {
    my_root.requireObject(root);
    const auto version = root.find("korl");
    if (!version)
        my_root.fail("is not a scene: it lacks \"korl\", the version of the format, which is 1");
    if (version->number<std::uint32_t>() != format_version)
        my_root.inside("korl").fail(fmt::format("is {}, but this program reads version 1 of the format",
                                                printable(version->source().substr(0, 100))));
    my_root.requireObject(root, scene_keys::scene);

    const bool whole = my_part == Part::everything;
    std::optional<Orvid::rgba_float_t> background;
    my_root.ifPresent(root, "background", [&](const auto& value, const auto& place) {
        const std::string color = place.valueText(value);
        background = place.during([&] { return parseColor(color); });
    });
    std::optional<Camera> camera;
    my_root.ifPresent(root, "camera",
                      [&](const auto& value, const auto& place) { camera = readCamera(value, place); });
    readPlugins(root);
    readViews(root);
    readObjects(root);
    std::vector<Mesh> meshes;
    my_root.ifPresent(root, "meshes", [&](const auto& value, const auto& place) {
        if (whole)
            meshes =
                readSceneMeshes(place.list(value), place, my_file.parent_path(), my_reading.import_model);
    });
    my_root.ifPresent(root, "solo", [&](const auto& value, const auto& place) {
        if (whole)
            readSolo(place.text(value), place);
    });

    my_rollback.reset(); // nothing below fails
    for (Mesh& mesh : meshes)
        my_scene.addMesh(std::move(mesh));
    if (whole && camera)
        my_scene.camera = camera;
    if (whole && background)
        my_scene.background = *background;
    warnOfUnresolved();
}

void SceneReader::readPlugins(const JsonValue& root) {
    my_root.ifPresent(root, "plugins", [&](const auto& value, const auto& place) {
        std::size_t index = 0;
        for (const JsonValue& entry : place.list(value)) {
            const std::string name = place.inside(index++).text(entry);
            auto& missing = my_scene.unresolved().plugins;
            if (isModuleLoaded(name) || std::find(missing.begin(), missing.end(), name) != missing.end())
                continue;
            if (my_part == Part::everything)
                missing.push_back(name);
            if (my_reading.warn)
                my_reading.warn(fmt::format(
                    "{}: the module {}, which it needs, is not loaded; name its file with --plugin",
                    printable(my_file.string()), inQuotes(name)));
        }
    });
}

void SceneReader::readViews(const JsonValue& root) {
    my_root.ifPresent(root, "views", [&](const auto& value, const auto& place) {
        const std::vector<JsonValue> entries = place.list(value);
        if (entries.size() > max_views)
            place.fail(fmt::format("expected at most {} views, found {}", max_views, entries.size()));
        std::unordered_set<std::string> names;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const ScenePlace where = place.inside(i);
            const std::string name = where.text(entries[i]);
            if (!names.insert(name).second)
                where.fail(fmt::format("the view {} stands twice in the list", inQuotes(name)));
            const auto& had = my_scene.views();
            if (std::any_of(had.begin(), had.end(), [&](const auto& view) { return view.first == name; }))
                continue;
            where.during([&] { my_scene.addView(name); });
            my_rollback->added_views.push_back(name);
        }
    });
}

void SceneReader::readObjects(const JsonValue& root) {
    my_root.ifPresent(root, "objects", [&](const auto& value, const auto& place) {
        const std::vector<JsonValue> objects = place.list(value);
        my_created.reserve(objects.size());
        my_names.reserve(objects.size());
        for (std::size_t i = 0; i < objects.size(); ++i) {
            requireShape(objects[i], place.inside(i));
            if (const auto name = objects[i].find("name"))
                my_file_names.insert(name->text());
        }
        for (std::size_t i = 0; i < objects.size(); ++i)
            readObject(objects[i], place.inside(i));
    });
    // Only now are all objects there.
    for (std::size_t i = 0; i < my_created.size(); ++i)
        if (const auto connections = my_created[i].value.find("connections"))
            readConnections(*connections, i);
    connectLinks();
}

void SceneReader::requireShape(const JsonValue& object, const ScenePlace& place) const {
    place.requireObject(object, scene_keys::object);
    place.textOf(object, "type");
    place.ifPresent(object, "name", [&](const auto& name, const auto& where) {
        if (where.text(name).empty())
            where.fail("expected a name, found an empty text; leave it out for a name of the type");
    });
    place.ifPresent(object, "muted", [](const auto& muted, const auto& where) { where.boolean(muted); });
    const auto requireValues = [](const JsonValue& values, const ScenePlace& where) {
        where.requireObject(values);
        values.forEachMember([&](const std::string& key, const JsonValue& value) {
            if (!value.is(JsonValue::Kind::text) && !value.is(JsonValue::Kind::number))
                where.inside(key).valueText(value);
        });
    };
    place.ifPresent(object, "parameters", requireValues);
    place.ifPresent(object, "connections", [](const auto& connections, const auto& where) {
        where.requireObject(connections);
        connections.forEachMember([&](const std::string& key, const JsonValue& source) {
            const ScenePlace there = where.inside(key);
            there.requireObject(source, scene_keys::source);
            for (const std::string& part : scene_keys::source)
                there.textOf(source, part);
        });
    });
    place.ifPresent(object, "views", [&](const auto& views, const auto& where) {
        where.requireObject(views);
        views.forEachMember([&](const std::string& view, const JsonValue& values) {
            where.duringInside(view, [&] { my_scene.view(view); });
            requireValues(values, where.inside(view));
        });
    });
}

void SceneReader::readObject(const JsonValue& value, const ScenePlace& place) {
    const std::string type = place.textOf(value, "type");
    const auto named = value.find("name");
    const std::string name = named ? named->text() : std::string();
    VCreatorBase* const creator = findType(type);
    if (!creator)
        return keep(value, type, name, place);
    if (my_part == Part::lights) {
        if (!my_makes_lights.contains(type))
            my_makes_lights[type] = makesLights(*creator);
        if (!my_makes_lights[type]) {
            my_left_out.insert(name);
            return;
        }
    }
    create(value, type, name, place);
}

void SceneReader::create(const JsonValue& value, const std::string& type, const std::string& name,
                         const ScenePlace& place) {
    if (!name.empty() && my_names.contains(name))
        place.inside("name").fail(
            fmt::format("the name {} is taken by another object of the file", inQuotes(name)));
    std::string own = name.empty() ? freeName(findType(type)->Name()) : name;
    if (my_part == Part::lights && my_scene.isTaken(name))
        for (int number = 2; my_scene.isTaken(own) || my_file_names.contains(own); ++number)
            own = name + std::to_string(number);
    VObject& object = place.during([&]() -> VObject& { return my_scene.create(type, own); });
    my_created.push_back({value, place, &object});
    my_names.emplace(name.empty() ? object.Name() : name, &object);
    my_latest = object.number();
    place.ifPresent(value, "muted", [&](const auto& muted, const auto& where) {
        if (where.boolean(muted))
            my_scene.setMuted(object.Name(), true);
    });
    place.ifPresent(value, "parameters", [&](const auto& values, const auto& where) {
        readValues(values, where, object.Name(), {});
    });
    place.ifPresent(value, "views", [&](const auto& views, const auto& where) {
        views.forEachMember([&](const std::string& view, const JsonValue& values) {
            readValues(values, where.inside(view), object.Name(), view);
        });
    });
}

std::string SceneReader::freeName(const std::string& type) {
    for (int& number = my_numbers[type];;) {
        const std::string name = ++number == 1 ? type : type + std::to_string(number);
        if (!my_scene.isTaken(name) && !my_file_names.contains(name))
            return name;
    }
}

void SceneReader::keep(const JsonValue& value, const std::string& type, const std::string& name,
                       const ScenePlace& place) {
    if (my_part == Part::lights)
        place.inside("type").fail(fmt::format(
            "no loaded module has the type {}; name the file of its module with --plugin", inQuotes(type)));
    if (!name.empty() && my_scene.isTaken(name))
        place.inside("name").fail("the scene already has an object of the name " + inQuotes(name));
    my_unresolved_names[type].push_back(name);
    my_scene.unresolved().add({type, name, std::string(value.source()), my_latest});
}

void SceneReader::readValues(const JsonValue& values, const ScenePlace& place, const std::string& object,
                             const std::string& view) {
    values.forEachMember([&](const std::string& parameter, const JsonValue& value) {
        place.duringInside(
            parameter, [&] { my_scene.setParameterText(object, parameter, place.valueText(value), view); });
    });
}

ScenePlace SceneReader::placeOf(std::size_t made, const std::string& connection) const {
    return my_created[made].place.inside("connections").inside(connection);
}

void SceneReader::readConnections(const JsonValue& connections, std::size_t made) {
    VObject& follower = *my_created[made].object;
    connections.forEachMember([&](const std::string& name, const JsonValue& source) {
        const std::string object = source.find("object")->text();
        const std::string followed = source.find("parameter")->text();
        const auto parameterOf = [&](const VObject& owner, const std::string& parameter) {
            if (auto* const found = owner.findParameter(parameter))
                return found;
            return placeOf(made, name).during([&] { return &my_scene.parameter(owner.Name(), parameter); });
        };
        auto* const parameter = parameterOf(follower, name);
        const auto own = my_names.find(object);
        if (own != my_names.end()) {
            auto* const followed_parameter = parameterOf(*own->second, followed);
            my_followed[parameter] = followed_parameter;
            my_links.push_back({made, parameter, followed_parameter, own->second});
        } else if (my_scene.unresolved().contains(object)) {
            my_scene.unresolved().connect(follower.number(), name, {object, followed});
        } else if (my_left_out.contains(object)) {
            if (my_reading.warn)
                my_reading.warn(fmt::format(
                    "{} followed {}, which does not belong to a light; it keeps a value of its own",
                    inQuotes(follower.Name() + "." + name), inQuotes(object + "." + followed)));
        } else {
            std::vector<std::string> names;
            for (const Created& other : my_created)
                names.push_back(other.object->Name());
            placeOf(made, name)
                .inside("object")
                .fail(fmt::format("unknown object {}: {}", inQuotes(object),
                                  nearNames(object, names, "the file has no objects")));
        }
    });
}

void SceneReader::connectLinks() {
    for (const Link& link : my_links) {
        const std::string& name = link.follower->Name();
        int length = 0;
        for (auto next = my_followed.find(link.follower);
             next != my_followed.end() && next->second != link.follower;
             next = my_followed.find(next->second))
            if (++length > max_chain_length)
                placeOf(link.made, name).fail("it " + tooLongChainText());
        VObject& object = *my_created[link.made].object;
        if (!object.connectInput(name, *link.source)) // why not, the scene says
            placeOf(link.made, name).during([&] {
                my_scene.connect(object.Name(), name, link.source_object->Name(), link.source->Name());
            });
    }
}

void SceneReader::readSolo(const std::string& name, const ScenePlace& place) {
    const auto own = my_names.find(name);
    if (own != my_names.end())
        return place.during([&] { my_scene.solo(own->second->Name()); });
    if (!my_scene.unresolved().contains(name))
        place.fail(fmt::format("the file has no object {}, so it cannot shine alone", inQuotes(name)));
    my_scene.unresolved().solo = name;
}

void SceneReader::warnOfUnresolved() const {
    if (!my_reading.warn)
        return;
    const std::vector<std::string> known = typeNames();
    for (const auto& [type, names] : my_unresolved_names)
        my_reading.warn(
            fmt::format("{}: no loaded module has the type {} of {}, kept for later but not shown: {}",
                        printable(my_file.string()), inQuotes(type), listOf(names),
                        nearNames(type, known, "no module is loaded that has any; name one with --plugin")));
}

} // namespace korl
