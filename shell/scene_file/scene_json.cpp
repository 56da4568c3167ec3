#include "shell/scene_file/scene_json.hpp"

#include "shell/base/near_names.hpp"
#include "shell/base/printable.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/mesh/mesh.hpp"
#include "shell/mesh/model_import.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <glm/vec3.hpp>

namespace korl {

namespace scene_keys {

const std::vector<std::string> scene{"korl",  "plugins", "background", "camera",
                                     "views", "solo",    "objects",    "meshes"};
const std::vector<std::string> object{"type", "name", "muted", "parameters", "connections", "views"};
const std::vector<std::string> source{"object", "parameter"};
const std::vector<std::string> model_mesh{"file", "up"};
const std::vector<std::string> array_mesh{"name", "positions", "normals", "colors", "triangles"};
const std::vector<std::string> builtin_mesh{"builtin"};
const std::vector<std::string> camera{"position", "target", "up", "fov"};

} // namespace scene_keys

void ScenePlace::fail(const std::string& what) const {
    throw Error(fmt::format("{}{}{}: {}", printable(my_file->string()), my_pointer.empty() ? "" : ": ",
                            printable(my_pointer), what));
}

void ScenePlace::requireObject(const JsonValue& value) const {
    if (!value.is(JsonValue::Kind::object))
        fail(fmt::format("expected an object in braces, found {}", value.kindName()));
}

void ScenePlace::requireObject(const JsonValue& value, const std::vector<std::string>& keys) const {
    requireObject(value);
    value.forEachMember([&](const std::string& key, const JsonValue&) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            inside(key).fail("unknown key; " + nearNames(key, keys, ""));
    });
}

std::string ScenePlace::text(const JsonValue& value) const {
    if (!value.is(JsonValue::Kind::text))
        fail(fmt::format("expected a text in quotes, found {}", value.kindName()));
    return value.text();
}

bool ScenePlace::boolean(const JsonValue& value) const {
    if (!value.is(JsonValue::Kind::boolean))
        fail(fmt::format("expected true or false, found {}", value.kindName()));
    return value.source() == "true";
}

std::vector<JsonValue> ScenePlace::list(const JsonValue& value) const {
    if (!value.is(JsonValue::Kind::list))
        fail(fmt::format("expected a list in brackets, found {}", value.kindName()));
    return value.items();
}

JsonValue ScenePlace::require(const JsonValue& object, std::string_view key) const {
    const auto value = object.find(key);
    if (!value)
        fail("lacks " + inQuotes(key));
    return *value;
}

std::string ScenePlace::textOf(const JsonValue& object, std::string_view key) const {
    const JsonValue value = require(object, key);
    return value.is(JsonValue::Kind::text) ? value.text() : inside(key).text(value);
}

std::string ScenePlace::valueText(const JsonValue& value) const {
    if (value.is(JsonValue::Kind::text))
        return value.text();
    if (value.is(JsonValue::Kind::number))
        return std::string(value.source());
    if (!value.is(JsonValue::Kind::list))
        fail(fmt::format("expected a number, a list of numbers or a text, found {}", value.kindName()));
    std::string text;
    std::size_t index = 0;
    for (const JsonValue& item : value.items()) {
        if (!item.is(JsonValue::Kind::number))
            inside(index).fail(fmt::format("expected a number, found {}", item.kindName()));
        text.append(index++ == 0 ? "" : " ").append(item.source());
    }
    return text;
}

namespace {

template <class Number>
std::vector<Number> numbers(const JsonValue& value, const ScenePlace& place, const std::string& expected) {
    const std::vector<JsonValue> items = place.list(value);
    std::vector<Number> read;
    read.reserve(items.size());
    for (const JsonValue& item : items) {
        const auto number = item.number<Number>();
        if (!number)
            place.inside(read.size())
                .fail(
                    fmt::format("expected {}, found {}", expected, printable(item.source().substr(0, 100))));
        read.push_back(*number);
    }
    if (read.size() % 3 != 0)
        place.fail(fmt::format("expected three numbers for each entry, found {} in all", read.size()));
    return read;
}

std::vector<glm::vec3> triples(const JsonValue& value, const ScenePlace& place) {
    const auto read = numbers<float>(value, place, "a number");
    std::vector<glm::vec3> triples;
    triples.reserve(read.size() / 3);
    for (std::size_t i = 0; i < read.size(); i += 3)
        triples.emplace_back(read[i], read[i + 1], read[i + 2]);
    return triples;
}

Mesh readArrays(const JsonValue& value, const ScenePlace& place) {
    place.requireObject(value, scene_keys::array_mesh);
    Mesh mesh;
    mesh.name = "mesh";
    place.ifPresent(value, "name",
                    [&](const auto& name, const auto& where) { mesh.name = where.text(name); });
    for (const char* const key : {"positions", "triangles"})
        place.require(value, key);
    place.ifPresent(value, "positions",
                    [&](const auto& list, const auto& where) { mesh.positions = triples(list, where); });
    place.ifPresent(value, "colors",
                    [&](const auto& list, const auto& where) { mesh.colors = triples(list, where); });
    place.ifPresent(value, "triangles", [&](const auto& list, const auto& where) {
        mesh.triangles = numbers<std::uint32_t>(list, where, "the number of a position");
    });
    const auto normals = value.find("normals");
    if (normals)
        mesh.normals = triples(*normals, place.inside("normals"));
    else
        mesh.normals.assign(mesh.positions.size(), {0, 0, 1}); // until it is known that they can be made
    place.during([&] { validate(mesh); });
    if (!normals) {
        mesh.normals.clear();
        addMissingNormals(mesh);
    }
    return mesh;
}

Mesh readBuiltin(const JsonValue& value, const ScenePlace& place) {
    place.requireObject(value, scene_keys::builtin_mesh);
    const std::string asked = place.textOf(value, "builtin");
    std::vector<std::string> names;
    for (Mesh& mesh : builtinScene()) {
        if (mesh.name == asked)
            return mesh;
        names.push_back(mesh.name);
    }
    place.inside("builtin").fail(
        fmt::format("unknown mesh {}: {}", inQuotes(asked), nearNames(asked, names, "")));
}

Mesh readModel(const JsonValue& value, const ScenePlace& place, const std::filesystem::path& folder,
               const ModelImport& import_model) {
    place.requireObject(value, scene_keys::model_mesh);
    const std::filesystem::path model = folder / place.textOf(value, "file");
    UpAxis up = UpAxis::y;
    place.ifPresent(value, "up", [&](const auto& axis, const auto& where) {
        const std::string name = where.text(axis);
        up = where.during([&] { return parseUpAxis(name); });
    });
    return place.inside("file").during(
        [&] { return import_model ? import_model(model, up) : importModel(model, up); });
}

} // namespace

std::vector<Mesh> readSceneMeshes(const std::vector<JsonValue>& entries, const ScenePlace& place,
                                  const std::filesystem::path& folder, const ModelImport& import_model) {
    std::vector<Mesh> meshes;
    for (const JsonValue& entry : entries) {
        const ScenePlace where = place.inside(meshes.size());
        where.requireObject(entry);
        if (entry.find("builtin")) {
            // Few bytes of a file must not become many meshes.
            Mesh mesh = readBuiltin(entry, where);
            if (std::any_of(meshes.begin(), meshes.end(),
                            [&](const Mesh& other) { return other.is_builtin && other.name == mesh.name; }))
                where.inside("builtin").fail(
                    fmt::format("the mesh {} stands twice in the list", inQuotes(mesh.name)));
            meshes.push_back(std::move(mesh));
        } else if (entry.find("file") || entry.find("up")) {
            meshes.push_back(readModel(entry, where, folder, import_model));
        } else {
            meshes.push_back(readArrays(entry, where));
        }
    }
    return meshes;
}

} // namespace korl
