#include "shell/scene_file/scene_writer.hpp"

#include "shell/base/printable.hpp"
#include "shell/catalogue/module_of.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/mesh/model_import.hpp"
#include "shell/scene/light.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene/vectors.hpp"
#include "shell/scene_file/json_layout.hpp"
#include "shell/scene_file/saved_value.hpp"

#include <palune/geometry_traits.hpp>
#include <sorvik/creator.hpp>

#include <fmt/core.h>
#include <set>

namespace korl {

using Qelt::VObject;
using Qelt::VParameter;

namespace {

constexpr int object_indent = 4;

/// Numbers that are separated by blanks, as a list.
std::string listOf(const std::string& numbers) {
    std::string list = "[";
    for (const char letter : numbers)
        list += letter == ' ' ? ", " : std::string(1, letter);
    return list + "]";
}

/// A value of a parameter.
std::string valueJson(const VParameter& parameter, const std::string& text) {
    const std::size_t count = numberCount(parameter.type());
    return count == 0 ? jsonQuoted(text) : count == 1 ? text : listOf(text);
}

std::string colorJson(const Orvid::rgba_float_t& color) {
    return listOf(Qelt::VValueTrait<Orvid::rgba_float_t>::Text(color));
}

std::string tripleJson(const glm::dvec3& value) {
    return listOf(componentsText(value));
}

std::string cameraJson(const Camera& camera) {
    return jsonObject({{"position", tripleJson(camera.position)},
                       {"target", tripleJson(camera.target)},
                       {"up", tripleJson(camera.up)},
                       {"fov", Qelt::VValueTrait<double>::Text(camera.fov_degrees)}},
                      2);
}

std::vector<std::string> inQuotes(const std::vector<std::string>& texts) {
    std::vector<std::string> all;
    for (const std::string& text : texts)
        all.push_back(jsonQuoted(text));
    return all;
}

std::span<const float> numbersOf(const std::vector<glm::vec3>& triples) {
    static_assert(sizeof(glm::vec3) == 3 * sizeof(float));
    return {triples.empty() ? nullptr : &triples.front().x, 3 * triples.size()};
}

/// A model's path as seen from a folder. Links in both folders are followed first: ".." behind one of them
/// leads elsewhere. A link that is the model itself stays.
std::filesystem::path pathFrom(const std::filesystem::path& folder, const std::filesystem::path& model) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    const fs::path from = fs::weakly_canonical(fs::absolute(folder.empty() ? "." : folder), ignored);
    const fs::path to = fs::weakly_canonical(model.parent_path(), ignored) / model.filename();
    const fs::path relative = to.lexically_relative(from);
    return relative.empty() ? model : relative;
}

} // namespace

SceneWriter::SceneWriter(const Scene& scene, std::filesystem::path folder, const SceneNotes& warn, Part part)
    : my_scene(scene), my_folder(std::move(folder)), my_warn(warn), my_part(part) {}

bool SceneWriter::takes(const VObject& object) const {
    return my_part == Part::everything || isLight(object);
}

bool SceneWriter::hasLightValues(const Qelt::ValuePool& view) const {
    for (const auto& object : my_scene.objects())
        if (isLight(*object))
            for (const auto& [parameter, ignored] : object->parameters())
                if (view.ownsVariable(*parameter))
                    return true;
    return false;
}

std::string SceneWriter::text() const {
    Members members{{"korl", "1"}};
    const auto addList = [&](const char* key, const std::vector<std::string>& list) {
        if (!list.empty())
            members.emplace_back(key, jsonList(list, 2));
    };
    const bool whole = my_part == Part::everything;
    addList("plugins", plugins());
    if (whole && !(my_scene.background == Scene().background))
        members.emplace_back("background", colorJson(my_scene.background));
    if (whole && my_scene.camera)
        members.emplace_back("camera", cameraJson(*my_scene.camera));
    std::vector<std::string> views;
    for (const Scene::NamedView& view : my_scene.views())
        if (whole || hasLightValues(*view.second))
            views.push_back(jsonQuoted(view.first));
    addList("views", views);
    const VObject* const alone = my_scene.soloLight();
    const std::string solo = alone ? alone->Name() : my_scene.unresolved().solo;
    if (whole && !solo.empty())
        members.emplace_back("solo", jsonQuoted(solo));
    if (const auto list = objects(); !list.empty())
        members.emplace_back("objects", jsonLines(list, 2));
    if (const auto list = whole ? meshes() : std::vector<std::string>(); !list.empty())
        members.emplace_back("meshes", jsonLines(list, 2));
    return jsonObject(members, 0, true) + "\n";
}

std::vector<std::string> SceneWriter::plugins() const {
    std::map<const Qelt::VCreatorBase*, std::string> modules;
    for (const auto& object : my_scene.objects())
        if (const Qelt::VCreatorBase* const creator = object->creator().get(); creator && takes(*object))
            if (const auto [entry, is_new] = modules.try_emplace(creator); is_new)
                entry->second = moduleOf(*creator);
    std::set<std::string> names;
    for (const auto& [ignored, name] : modules)
        if (!name.empty())
            names.insert(name);
    if (my_part == Part::everything)
        names.insert(my_scene.unresolved().plugins.begin(), my_scene.unresolved().plugins.end());
    return inQuotes({names.begin(), names.end()});
}

std::vector<std::string> SceneWriter::objects() const {
    std::vector<std::string> list;
    const auto& kept = my_scene.unresolved().objects();
    auto next = kept.begin();
    const auto addKeptBefore = [&](std::uint64_t number) {
        for (; next != kept.end() && next->after < number; ++next)
            if (my_part == Part::everything)
                list.push_back(next->json);
            else if (my_warn)
                my_warn(fmt::format("{} of the type {} is left out: no loaded module has the type, "
                                    "so it is not known to be a light",
                                    inQuotes(next->name), inQuotes(next->type)));
    };
    for (const auto& held : my_scene.objects()) {
        addKeptBefore(held->number());
        if (takes(*held))
            list.push_back(object(*held));
    }
    addKeptBefore(UINT64_MAX);
    return list;
}

std::string SceneWriter::object(const VObject& object) const {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    Members members{{"type", jsonQuoted(creator ? typeName(*creator) : "")},
                    {"name", jsonQuoted(object.Name())}};
    if (my_scene.isMuted(object))
        members.emplace_back("muted", "true");
    Members parameters;
    for (const auto& [parameter, ignored] : object.parameters())
        if (const auto text = savedValue(object, *parameter))
            parameters.emplace_back(parameter->Name(), valueJson(*parameter, *text));
    if (!parameters.empty())
        members.emplace_back("parameters", jsonObject(parameters, object_indent + 2));
    if (const Members list = connections(object); !list.empty())
        members.emplace_back("connections", jsonObject(list, object_indent + 2));
    Members views;
    for (const auto& [name, pool] : my_scene.views()) {
        Members values;
        for (const auto& [parameter, ignored] : object.parameters())
            if (const auto text = savedValue(object, *parameter, *pool))
                values.emplace_back(parameter->Name(), valueJson(*parameter, *text));
        if (!values.empty())
            views.emplace_back(name, jsonObject(values, object_indent + 4));
    }
    if (!views.empty())
        members.emplace_back("views", jsonObject(views, object_indent + 2));
    return jsonObject(members, object_indent);
}

SceneWriter::Members SceneWriter::connections(const VObject& object) const {
    Members list;
    const auto add = [&](const VParameter& parameter, const std::string& owner, const std::string& source) {
        list.emplace_back(parameter.Name(),
                          jsonObject({{"object", jsonQuoted(owner)}, {"parameter", jsonQuoted(source)}},
                                     object_indent + 4));
    };
    for (const auto& [parameter, ignored] : object.parameters()) {
        const VParameter* const source = parameter->source();
        const VObject* const owner = source ? source->creator() : nullptr;
        if (owner && my_scene.find(owner->Name()) == owner && takes(*owner))
            add(*parameter, owner->Name(), source->Name());
        else if (const auto* const kept = my_scene.unresolved().sourceOf(object.number(), parameter->Name());
                 kept && my_part == Part::everything)
            add(*parameter, kept->object, kept->parameter);
        else if ((parameter->hasSource() || kept) && my_warn)
            my_warn(fmt::format("{} follows something that is left out; it is written with its own value",
                                inQuotes(object.Name() + "." + parameter->Name())));
    }
    return list;
}

std::vector<std::string> SceneWriter::meshes() const {
    std::vector<std::string> list;
    std::set<std::string> builtin;
    for (const auto& held :
         my_scene.meshes()) // a file may name a built-in mesh once; another copy has arrays
        list.push_back(held->is_builtin && builtin.insert(held->name).second
                           ? jsonObject({{"builtin", jsonQuoted(held->name)}}, object_indent)
                           : mesh(*held));
    return list;
}

std::string SceneWriter::mesh(const Mesh& mesh) const {
    if (mesh.source)
        return jsonObject({{"file", jsonQuoted(pathFrom(my_folder, mesh.source->file).string())},
                           {"up", jsonQuoted(nameOf(mesh.source->up))}},
                          object_indent);
    Members members{{"name", jsonQuoted(mesh.name)},
                    {"positions", jsonTriples(numbersOf(mesh.positions), object_indent + 2)},
                    {"normals", jsonTriples(numbersOf(mesh.normals), object_indent + 2)}};
    if (!mesh.colors.empty())
        members.emplace_back("colors", jsonTriples(numbersOf(mesh.colors), object_indent + 2));
    members.emplace_back("triangles",
                         jsonTriples(std::span<const std::uint32_t>(mesh.triangles), object_indent + 2));
    return jsonObject(members, object_indent);
}

} // namespace korl
