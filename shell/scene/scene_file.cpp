#include "shell/scene/scene_file.hpp"

#include "shell/error.hpp"
#include "shell/scene/color_text.hpp"
#include "shell/scene/model_import.hpp"
#include "shell/scene/near_names.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace korl {

namespace {

using nlohmann::json;

constexpr int format_version = 1;

/// Walks through a scene file's JSON and knows, at each step, where it is.
class Reader {
public:
    Reader(std::filesystem::path file, Scene& scene) : my_file(std::move(file)), my_scene(scene) {}

    void read(const json& root) const {
        requireObject(root, "", {"korl", "objects", "meshes", "camera", "background"});
        const json::const_iterator version = root.find("korl");
        if (version == root.end())
            fail("", "is no scene: it lacks \"korl\", the version of the format, which is 1");
        if (*version != format_version)
            fail("/korl", "is " + version->dump() + ", but this program reads version 1 of the format");
        if (root.contains("background")) {
            const std::string color = text(root, "", "background");
            at("/background", [&] { my_scene.background = parseColor(color); });
        }
        if (root.contains("camera"))
            readCamera(root["camera"], "/camera");
        forEach(root, "meshes", [&](const json& mesh, const std::string& where) { readMesh(mesh, where); });
        forEach(root, "objects",
                [&](const json& object, const std::string& where) { readObject(object, where); });
    }

private:
    [[noreturn]] void fail(const std::string& where, const std::string& what) const {
        throw Error(my_file.string() + (where.empty() ? "" : ": " + where) + ": " + what);
    }

    /// Runs `step`; an error in it gets the place put before it.
    template <class Step>
    void at(const std::string& where, Step step) const {
        try {
            step();
        } catch (const Error& error) {
            fail(where, error.what());
        }
    }

    void requireObject(const json& value, const std::string& where,
                       const std::vector<std::string>& keys) const {
        if (!value.is_object())
            fail(where, "expected an object in braces, found " + std::string(value.type_name()));
        for (const auto& [key, ignored] : value.items())
            if (std::find(keys.begin(), keys.end(), key) == keys.end())
                fail(where + "/" + key, "unknown key; " + nearNames(key, keys, ""));
    }

    std::string text(const json& value, const std::string& where, const std::string& key) const {
        const auto found = value.find(key);
        if (found == value.end())
            fail(where, "lacks \"" + key + "\"");
        if (!found->is_string())
            fail(where + "/" + key, "expected a text in quotes, found " + std::string(found->type_name()));
        return found->get<std::string>();
    }

    template <class Step>
    void forEach(const json& root, const std::string& key, Step step) const {
        const auto list = root.find(key);
        if (list == root.end())
            return;
        if (!list->is_array())
            fail("/" + key, "expected a list in brackets, found " + std::string(list->type_name()));
        for (std::size_t i = 0; i < list->size(); ++i)
            step((*list)[i], "/" + key + "/" + std::to_string(i));
    }

    glm::dvec3 triple(const json& value, const std::string& where, const std::string& key) const {
        std::array<double, 3> read{};
        const std::string found = text(value, where, key);
        if (!Qelt::componentsFromText(read, found))
            fail(where + "/" + key, "expected three numbers \"x y z\", found \"" + found + "\"");
        return {read[0], read[1], read[2]};
    }

    void readCamera(const json& value, const std::string& where) const {
        requireObject(value, where, {"position", "target", "up", "fov"});
        Camera camera;
        camera.position = triple(value, where, "position");
        camera.target = triple(value, where, "target");
        if (value.contains("up"))
            camera.up = triple(value, where, "up");
        if (value.contains("fov")) {
            if (!value["fov"].is_number())
                fail(where + "/fov", "expected degrees, found " + value["fov"].dump());
            camera.fov_degrees = value["fov"].get<double>();
        }
        at(where, [&] { validate(camera); });
        my_scene.camera = camera;
    }

    void readMesh(const json& value, const std::string& where) const {
        requireObject(value, where, {"file", "up"});
        const std::filesystem::path model = my_file.parent_path() / text(value, where, "file");
        UpAxis up = UpAxis::y;
        if (value.contains("up")) {
            const std::string axis = text(value, where, "up");
            at(where + "/up", [&] { up = parseUpAxis(axis); });
        }
        at(where + "/file", [&] { my_scene.addMesh(importModel(model, up)); });
    }

    void readObject(const json& value, const std::string& where) const {
        requireObject(value, where, {"type", "name", "parameters"});
        const std::string type = text(value, where, "type");
        const std::string name = value.contains("name") ? text(value, where, "name") : std::string();
        std::string created;
        at(where, [&] { created = my_scene.create(type, name).Name(); });
        const auto parameters = value.find("parameters");
        if (parameters == value.end())
            return;
        const std::string inside = where + "/parameters";
        if (!parameters->is_object())
            fail(inside, "expected an object in braces, found " + std::string(parameters->type_name()));
        for (const auto& [key, ignored] : parameters->items()) {
            const std::string& parameter = key;
            const std::string value_text = text(*parameters, inside, parameter);
            at(inside + "/" + parameter, [&] { my_scene.setParameter(created, parameter, value_text); });
        }
    }

    std::filesystem::path my_file;
    Scene& my_scene;
};

} // namespace

void readSceneFile(const std::filesystem::path& file, Scene& scene) {
    std::error_code problem;
    const auto type = std::filesystem::status(file, problem).type();
    if (type == std::filesystem::file_type::not_found)
        throw Error("cannot read the scene " + file.string() + ": there is no such file; check the path");
    if (problem)
        throw Error("cannot read the scene " + file.string() + ": " + problem.message());
    if (type != std::filesystem::file_type::regular)
        throw Error("cannot read the scene " + file.string() + ": it is no regular file");
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw Error("cannot read the scene " + file.string() +
                    ": it may not be opened; check its permissions");
    json root;
    try {
        root = json::parse(stream);
    } catch (const json::exception& error) {
        throw Error(file.string() + ": this is no JSON: " + error.what() +
                    (file.extension() == ".json" ? "" : "; if it is a model, give it with --model"));
    }
    Reader(file, scene).read(root);
}

} // namespace korl
