#include "shell/scene_file/scene_script.hpp"

#include "shell/base/json_text.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/mesh/model_import.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene/vectors.hpp"
#include "shell/scene_file/saved_value.hpp"

#include <palune/geometry_traits.hpp>
#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/core.h>
#include <map>
#include <set>
#include <span>
#include <sstream>

namespace korl {

using Qelt::VObject;
using Qelt::VParameter;

namespace {

/// Words that cannot be the names of variables or arguments: Python's own, and what the script itself uses.
const std::set<std::string> reserved{"False",  "None",   "True",    "and",      "as",       "assert", "async",
                                     "await",  "break",  "class",   "continue", "def",      "del",    "elif",
                                     "else",   "except", "finally", "for",      "from",     "global", "if",
                                     "import", "in",     "is",      "lambda",   "nonlocal", "not",    "or",
                                     "pass",   "raise",  "return",  "try",      "while",    "with",   "yield",
                                     "korl",   "numpy",  "shell",   "image",    "self",     "type",   "name"};

bool isIdentifier(const std::string& name) {
    const auto isLetter = [](char letter) {
        return letter == '_' || std::isalnum(static_cast<unsigned char>(letter));
    };
    return !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
           std::all_of(name.begin(), name.end(), isLetter) && !reserved.contains(name);
}

/// A Python string: one of JSON that escapes nothing beyond ASCII is one too.
std::string quoted(const std::string& text) {
    return jsonQuoted(text);
}

/// A value's text form as Python: a number, a tuple of numbers, or else a string.
std::string python(const std::string& text) {
    std::istringstream words(text);
    std::string list;
    int count = 0;
    for (std::string word; words >> word; ++count) {
        double number = 0;
        if (!Qelt::componentsFromText(std::span(&number, 1), word))
            return quoted(text);
        list += (count == 0 ? "" : ", ") + (word == "-0" ? "-0.0" : word);
    }
    return count == 0 ? quoted(text) : count == 1 ? list : fmt::format("({})", list);
}

std::string python(const glm::dvec3& value) {
    return python(componentsText(value));
}

/// A list of tuples of three.
template <class Triples>
std::string rows(const Triples& triples, std::size_t count) {
    if (count == 0)
        return "numpy.empty((0, 3), int)";
    std::string list = "[";
    std::string line;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string row = python(triples(i)) + ",";
        if (line.size() + row.size() > 95) {
            list += "\n            " + line;
            line.clear();
        }
        line += (line.empty() ? "" : " ") + row;
    }
    return fmt::format("{}\n            {}\n        ]", list, line);
}

std::string rows(const std::vector<glm::vec3>& triples) {
    return rows([&](std::size_t i) { return componentsText(triples[i]); }, triples.size());
}

/// Writes the script of one scene.
class Script {
public:
    Script(const Scene& scene, std::span<const std::filesystem::path> plugins)
        : my_scene(scene), my_plugins(plugins) {}

    std::string text() {
        for (const auto& [name, ignored] : my_scene.views())
            line(fmt::format("{} = shell.add_view({})", variable("view " + name, name), quoted(name)));
        for (const auto& object : my_scene.objects())
            create(*object);
        for (const auto& object : my_scene.objects())
            follow(*object);
        for (const UnresolvedObjects::Object& kept : my_scene.unresolved().objects())
            line(fmt::format("# {} is left out: no loaded module has the type {}", quoted(kept.name),
                             quoted(kept.type)));
        if (const VObject* const alone = my_scene.soloLight())
            line(fmt::format("shell.solo({})", nameOf(*alone)));
        addMeshes();
        addSurroundings();
        line("image = shell.render(640, 480)");
        const std::string numpy = my_lines.find("numpy.") == std::string::npos ? "" : "import numpy\n";
        return fmt::format("import korl\n{}\n"
                           "with korl.Shell({}) as shell:\n"
                           "{}image.save(\"scene.png\")\n",
                           numpy, plugins(), my_lines);
    }

private:
    std::string plugins() const {
        std::string list;
        for (const std::filesystem::path& file : my_plugins)
            list += (list.empty() ? "plugins=[" : ", ") + quoted(std::filesystem::absolute(file).string());
        return list.empty() ? "" : list + "]";
    }

    void line(const std::string& statement) { my_lines += fmt::format("    {}\n", statement); }

    /// A variable for what has a name: like it, but allowed, and nobody else's.
    std::string variable(const std::string& key, const std::string& name) {
        std::string like;
        for (const char letter : name)
            like += std::isalnum(static_cast<unsigned char>(letter)) ? letter : '_';
        if (!isIdentifier(like))
            like = "object_" + like;
        std::string own = like;
        for (int number = 2; !my_taken.insert(own).second; ++number)
            own = fmt::format("{}_{}", like, number);
        return my_variables[key] = own;
    }

    std::string nameOf(const VObject& object) const { return my_variables.at("object " + object.Name()); }

    void create(const VObject& object) {
        const std::string own = variable("object " + object.Name(), object.Name());
        const Qelt::VCreatorBase* const creator = object.creator().get();
        std::string arguments =
            fmt::format("{}, {}", quoted(creator ? typeName(*creator) : ""), quoted(object.Name()));
        std::vector<std::string> settings;
        for (const auto& [parameter, ignored] : object.parameters()) {
            const auto saved = savedValue(object, *parameter);
            if (saved && isIdentifier(parameter->Name()))
                arguments += fmt::format(", {}={}", parameter->Name(), python(*saved));
            else if (saved)
                settings.push_back(
                    fmt::format("{}[{}] = {}", own, quoted(parameter->Name()), python(*saved)));
        }
        line(fmt::format("{} = shell.create({})", own, arguments));
        for (const std::string& setting : settings)
            line(setting);
        if (my_scene.isMuted(object))
            line(own + ".enabled = False");
        for (const auto& [view, pool] : my_scene.views())
            for (const auto& [parameter, ignored] : object.parameters())
                if (const auto value = savedValue(object, *parameter, *pool))
                    line(fmt::format("{}.set({}, {}, view={})", own, quoted(parameter->Name()),
                                     python(*value), my_variables.at("view " + view)));
    }

    void follow(const VObject& object) {
        for (const auto& [parameter, ignored] : object.parameters()) {
            const VParameter* const source = parameter->source();
            const VObject* const owner = source ? source->creator() : nullptr;
            if (owner && my_scene.find(owner->Name()) == owner)
                line(fmt::format("{}[{}].follow({}[{}])", nameOf(object), quoted(parameter->Name()),
                                 nameOf(*owner), quoted(source->Name())));
        }
    }

    void addMeshes() {
        const auto& meshes = my_scene.meshes();
        const auto isLandscape = [&](std::size_t first) {
            static constexpr std::array names{"landscape", "column", "sphere"};
            for (std::size_t i = 0; i < names.size(); ++i)
                if (first + i >= meshes.size() || !meshes[first + i]->is_builtin ||
                    meshes[first + i]->name != names[i])
                    return false;
            return true;
        };
        for (std::size_t i = 0; i < meshes.size(); ++i) {
            if (isLandscape(i)) {
                line("shell.add_landscape()");
                i += 2;
            } else {
                addMesh(*meshes[i]);
            }
        }
    }

    void addMesh(const Mesh& mesh) {
        if (mesh.source)
            return line(fmt::format("shell.add_mesh({}, up=\"{}\")", quoted(mesh.source->file.string()),
                                    korl::nameOf(mesh.source->up)));
        const auto triangle = [&](std::size_t i) {
            const std::uint32_t* const corner = &mesh.triangles[3 * i];
            return fmt::format("{} {} {}", corner[0], corner[1], corner[2]);
        };
        line("shell.add_mesh(");
        line(fmt::format("    {},", rows(mesh.positions)));
        line(fmt::format("    {},", rows(triangle, mesh.triangles.size() / 3)));
        line(fmt::format("    normals={},", rows(mesh.normals)));
        if (!mesh.colors.empty())
            line(fmt::format("    colors={},", rows(mesh.colors)));
        line(fmt::format("    name={},", quoted(mesh.name)));
        line(")");
    }

    void addSurroundings() {
        const Orvid::rgba_float_t& color = my_scene.background;
        const std::string text = Qelt::VValueTrait<Orvid::rgba_float_t>::Text(color);
        if (!(color == Scene().background))
            line("shell.background = " + python(text));
        if (const auto& camera = my_scene.camera)
            line(fmt::format("shell.camera.set(position={}, target={}, up={}, fov={})",
                             python(camera->position), python(camera->target), python(camera->up),
                             Qelt::VValueTrait<double>::Text(camera->fov_degrees)));
    }

    const Scene& my_scene;
    std::span<const std::filesystem::path> my_plugins;
    std::string my_lines;
    std::map<std::string, std::string> my_variables; ///< by "object NAME" or "view NAME"
    std::set<std::string> my_taken;
};

} // namespace

std::string sceneScript(const Scene& scene, std::span<const std::filesystem::path> plugins) {
    return Script(scene, plugins).text();
}

} // namespace korl
