#include "shell/scene/scene_reader.hpp"

#include "shell/scene/color_text.hpp"
#include "shell/scene/module_of.hpp"
#include "shell/scene/near_names.hpp"
#include "shell/scene/scene.hpp"

#include <doltra/vlight_source.hpp>
#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace korl {

using Qelt::VCreatorBase;
using Qelt::VObject;

namespace {

constexpr std::uint32_t format_version = 1;
constexpr std::size_t most_views = 256; ///< each view costs something for each parameter that goes

glm::dvec3 triple(const JsonValue& value, const ScenePlace& place) {
    std::array<double, 3> read{};
    const std::string found = place.text(value);
    if (!Qelt::componentsFromText(read, found))
        place.fail("expected three numbers \"x y z\", found \"" + found + "\"");
    return {read[0], read[1], read[2]};
}

Camera readCamera(const JsonValue& value, const ScenePlace& place) {
    place.requireObject(value, scene_keys::camera);
    for (const char* const key : {"position", "target"})
        place.textOf(value, key);
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
            where.fail("expected degrees, found " + std::string(found.source().substr(0, 100)));
        camera.fov_degrees = *degrees;
    });
    place.during([&] { validate(camera); });
    return camera;
}

bool makesLights(VCreatorBase& creator) {
    return dynamic_cast<const Qelt::VLightSource*>(creator.create("").get()) != nullptr;
}

std::string listOf(const std::vector<std::string>& names) {
    constexpr std::size_t longest = 20;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), longest); ++i)
        list += (i == 0 ? "\"" : ", \"") + names[i] + "\"";
    return list + (names.size() > longest ? " and " + std::to_string(names.size() - longest) + " more" : "");
}

} // namespace

/// The scene as it was.
struct SceneReader::Before {
    ForeignParts foreign;
    std::vector<std::string> added_views{};
};

SceneReader::SceneReader(const std::filesystem::path& file, Scene& scene, const SceneReading& reading,
                         Part part)
    : my_file(file), my_scene(scene), my_reading(reading), my_part(part), my_root(file),
      my_before(new Before{scene.foreign()}) {
    if (!scene.objects().empty())
        my_latest = scene.objects().back()->number();
}

SceneReader::~SceneReader() {
    if (!my_before)
        return;
    for (auto made = my_created.rbegin(); made != my_created.rend(); ++made)
        my_scene.remove(std::string(made->object->Name()));
    for (const std::string& view : my_before->added_views)
        my_scene.removeView(view);
    my_scene.foreign() = std::move(my_before->foreign);
}

void SceneReader::read(const JsonValue& root) {
    my_root.requireObject(root);
    const auto version = root.find("korl");
    if (!version)
        my_root.fail("is no scene: it lacks \"korl\", the version of the format, which is 1");
    if (version->number<std::uint32_t>() != format_version)
        my_root.inside("korl").fail("is " + std::string(version->source().substr(0, 100)) +
                                    ", but this program reads version 1 of the format");
    my_root.requireObject(root, scene_keys::scene);

    const bool whole = my_part == Part::everything;
    std::optional<Orvid::rgba_float_t> background;
    my_root.ifPresent(root, "background", [&](const auto& value, const auto& place) {
        const std::string color = place.text(value);
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

    my_before.reset(); // nothing below fails
    for (Mesh& mesh : meshes)
        my_scene.addMesh(std::move(mesh));
    if (whole && camera)
        my_scene.camera = camera;
    if (whole && background)
        my_scene.background = *background;
    tellOfForeign();
}

void SceneReader::readPlugins(const JsonValue& root) {
    my_root.ifPresent(root, "plugins", [&](const auto& value, const auto& place) {
        std::size_t index = 0;
        for (const JsonValue& entry : place.list(value)) {
            const std::string name = place.inside(index++).text(entry);
            auto& missing = my_scene.foreign().plugins;
            if (isModuleLoaded(name) || std::find(missing.begin(), missing.end(), name) != missing.end())
                continue;
            if (my_part == Part::everything)
                missing.push_back(name);
            if (my_reading.tell)
                my_reading.tell(my_file.string() + ": the module \"" + name +
                                "\", which it needs, is not loaded; name its file with --plugin");
        }
    });
}

void SceneReader::readViews(const JsonValue& root) {
    my_root.ifPresent(root, "views", [&](const auto& value, const auto& place) {
        const std::vector<JsonValue> entries = place.list(value);
        if (entries.size() > most_views)
            place.fail("expected at most " + std::to_string(most_views) + " views, found " +
                       std::to_string(entries.size()));
        std::unordered_set<std::string> names;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const ScenePlace where = place.inside(i);
            const std::string name = where.text(entries[i]);
            if (!names.insert(name).second)
                where.fail("the view \"" + name + "\" stands twice in the list");
            const auto& had = my_scene.views();
            if (std::any_of(had.begin(), had.end(), [&](const auto& view) { return view.first == name; }))
                continue;
            where.during([&] { my_scene.addView(name); });
            my_before->added_views.push_back(name);
        }
    });
}

void SceneReader::readObjects(const JsonValue& root) {
    my_root.ifPresent(root, "objects", [&](const auto& value, const auto& place) {
        const std::vector<JsonValue> objects = place.list(value);
        for (std::size_t i = 0; i < objects.size(); ++i) {
            requireShape(objects[i], place.inside(i));
            if (const auto name = objects[i].find("name"))
                my_file_names.insert(name->text());
        }
        for (std::size_t i = 0; i < objects.size(); ++i)
            readObject(objects[i], place.inside(i));
    });
    for (const Created& made : my_created)
        made.place.ifPresent(made.value, "connections", [&](const auto& value, const auto& place) {
            readConnections(value, place, *made.object);
        });
    connectLinks();
    for (const Created& made : my_created)
        made.place.ifPresent(made.value, "views", [&](const auto& value, const auto& place) {
            value.forEachMember([&](const std::string& view, const JsonValue& values) {
                readValues(values, place.inside(view), made.object->Name(), view);
            });
        });
}

void SceneReader::requireShape(const JsonValue& object, const ScenePlace& place) const {
    place.requireObject(object, scene_keys::object);
    place.textOf(object, "type");
    place.ifPresent(object, "name", [&](const auto& name, const auto& where) {
        if (where.text(name).empty())
            where.fail("expected a name, found an empty text; leave it out for a name of the type");
    });
    place.ifPresent(object, "muted", [](const auto& muted, const auto& where) { where.boolean(muted); });
    const auto requireTexts = [](const JsonValue& values, const ScenePlace& where) {
        where.requireObject(values);
        values.forEachMember(
            [&](const std::string& key, const JsonValue& text) { where.inside(key).text(text); });
    };
    place.ifPresent(object, "parameters", requireTexts);
    place.ifPresent(object, "connections", [](const auto& connections, const auto& where) {
        where.requireObject(connections);
        connections.forEachMember([&](const std::string& key, const JsonValue& source) {
            where.inside(key).requireObject(source, scene_keys::source);
            for (const std::string& part : scene_keys::source)
                where.inside(key).textOf(source, part);
        });
    });
    place.ifPresent(object, "views", [&](const auto& views, const auto& where) {
        where.requireObject(views);
        views.forEachMember([&](const std::string& view, const JsonValue& values) {
            where.inside(view).during([&] { my_scene.view(view); });
            requireTexts(values, where.inside(view));
        });
    });
}

void SceneReader::readObject(const JsonValue& value, const ScenePlace& place) {
    const std::string type = place.textOf(value, "type");
    const auto named = value.find("name");
    const std::string name = named ? named->text() : std::string();
    VCreatorBase* const creator = VCreatorBase::find(type);
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
        place.inside("name").fail("the name \"" + name + "\" is taken by another object of the file");
    std::string own = name;
    if (my_part == Part::lights && my_scene.isTaken(name))
        for (int number = 2; my_scene.isTaken(own) || my_file_names.contains(own); ++number)
            own = name + std::to_string(number);
    VObject& object = place.during([&]() -> VObject& { return my_scene.create(type, own); });
    my_created.push_back({value, place, &object});
    my_names.emplace(name.empty() ? object.Name() : name, object.Name());
    my_latest = object.number();
    place.ifPresent(value, "muted", [&](const auto& muted, const auto& where) {
        if (where.boolean(muted))
            my_scene.setMuted(object.Name(), true);
    });
    place.ifPresent(value, "parameters", [&](const auto& values, const auto& where) {
        readValues(values, where, object.Name(), {});
    });
}

void SceneReader::keep(const JsonValue& value, const std::string& type, const std::string& name,
                       const ScenePlace& place) {
    if (my_part == Part::lights)
        place.inside("type").fail("no loaded module has the type \"" + type +
                                  "\"; name the file of its module with --plugin");
    if (!name.empty() && my_scene.isTaken(name))
        place.inside("name").fail("the scene already has an object of the name \"" + name + "\"");
    my_foreign_names[type].push_back(name);
    my_scene.foreign().add({type, name, std::string(value.source()), my_latest});
}

void SceneReader::readValues(const JsonValue& values, const ScenePlace& place, const std::string& object,
                             const std::string& view) {
    values.forEachMember([&](const std::string& parameter, const JsonValue& value) {
        place.inside(parameter).during([&] { my_scene.setParameter(object, parameter, value.text(), view); });
    });
}

void SceneReader::readConnections(const JsonValue& connections, const ScenePlace& place,
                                  const VObject& follower) {
    connections.forEachMember([&](const std::string& parameter, const JsonValue& source) {
        const ScenePlace where = place.inside(parameter);
        const std::string object = where.textOf(source, "object");
        const std::string followed = where.textOf(source, "parameter");
        const auto own = my_names.find(object);
        if (own != my_names.end()) {
            where.during([&] {
                const auto* const follows = &my_scene.parameter(follower.Name(), parameter);
                my_followed[follows] = &my_scene.parameter(own->second, followed);
                my_links.push_back({where, follows, {follower.Name(), parameter}, {own->second, followed}});
            });
        } else if (my_scene.foreign().contains(object)) {
            where.during([&] { my_scene.parameter(follower.Name(), parameter); });
            my_scene.foreign().connect(follower.number(), parameter, {object, followed});
        } else if (my_left_out.contains(object)) {
            if (my_reading.tell)
                my_reading.tell("\"" + follower.Name() + "." + parameter + "\" followed \"" + object + "." +
                                followed + "\", which is no light's; it keeps a value of its own");
        } else {
            std::vector<std::string> names;
            for (const Created& made : my_created)
                names.push_back(made.object->Name());
            where.inside("object").fail("unknown object \"" + object +
                                        "\": " + nearNames(object, names, "the file has no objects"));
        }
    });
}

void SceneReader::connectLinks() {
    // Reading a value goes up the chain, step by step, and so does each connection.
    constexpr int longest_chain = 100;
    for (const Link& link : my_links) {
        int length = 0;
        for (auto next = my_followed.find(link.follows);
             next != my_followed.end() && next->second != link.follows; next = my_followed.find(next->second))
            if (++length > longest_chain)
                link.place.fail("it would follow another parameter through more than " +
                                std::to_string(longest_chain) + " others");
        link.place.during([&] {
            my_scene.connect(link.follower.object, link.follower.parameter, link.source.object,
                             link.source.parameter);
        });
    }
}

void SceneReader::readSolo(const std::string& name, const ScenePlace& place) {
    const auto own = my_names.find(name);
    if (own != my_names.end())
        return place.during([&] { my_scene.solo(own->second); });
    if (!my_scene.foreign().contains(name))
        place.fail("the file has no object \"" + name + "\", so it cannot shine alone");
    my_scene.foreign().solo = name;
}

void SceneReader::tellOfForeign() const {
    if (!my_reading.tell)
        return;
    std::vector<std::string> known;
    for (const VCreatorBase* const creator : VCreatorBase::catalogue())
        known.push_back(creator->Name());
    for (const auto& [type, names] : my_foreign_names)
        my_reading.tell(my_file.string() + ": no loaded module has the type \"" + type + "\" of " +
                        listOf(names) + ", kept for later but not shown: " +
                        nearNames(type, known, "no module is loaded that has any; name one with --plugin"));
}

} // namespace korl
