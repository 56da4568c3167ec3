#pragma once

#include "shell/base/error.hpp"
#include "shell/base/json_text.hpp"
#include "shell/mesh/model_import.hpp"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korl {

/// Where a piece of a scene file stands, for messages: the file and a JSON pointer. Checks what is there.
class ScenePlace {
public:
    explicit ScenePlace(const std::filesystem::path& file) : my_file(&file) {}

    ScenePlace inside(std::string_view key) const { return {my_file, pointerInto(my_pointer, key)}; }
    ScenePlace inside(std::size_t index) const { return inside(std::to_string(index)); }

    /// Throws Error: the place, then what is wrong there.
    [[noreturn]] void fail(const std::string& what) const;

    /// Runs `step`; an error in it gets the place put before it.
    template <class Step>
    decltype(auto) during(Step step) const {
        try {
            return step();
        } catch (const Error& error) {
            fail(error.what());
        }
    }

    /// The same one step further inside; where that is, is put together only for an error.
    template <class Step>
    void duringInside(std::string_view key, Step step) const {
        try {
            step();
        } catch (const Error& error) {
            inside(key).fail(error.what());
        }
    }

    /// Each throws Error where the value is of another kind, with what was expected and what was found.
    void requireObject(const JsonValue& value) const;
    void requireObject(const JsonValue& value, const std::vector<std::string>& keys) const;
    std::string text(const JsonValue& value) const;
    bool boolean(const JsonValue& value) const;
    std::vector<JsonValue> list(const JsonValue& value) const;

    /// The value of a key that an object must have, and its text.
    JsonValue require(const JsonValue& object, std::string_view key) const;
    std::string textOf(const JsonValue& object, std::string_view key) const;

    /// The text form of a parameter's value, a colour, a point: a text as it is, a number or a list of
    /// numbers as they stand in the file.
    std::string valueText(const JsonValue& value) const;

    /// Does something with the value of a key, where the object has it.
    template <class Step>
    void ifPresent(const JsonValue& object, std::string_view key, Step step) const {
        if (const auto value = object.find(key))
            step(*value, inside(key));
    }

private:
    ScenePlace(const std::filesystem::path* file, std::string pointer)
        : my_file(file), my_pointer(std::move(pointer)) {}

    const std::filesystem::path* my_file;
    std::string my_pointer;
};

/// Reads the entries of a scene's "meshes". Throws Error with the place.
/// @param folder the scene file's, to which the paths of models are relative.
std::vector<Mesh> readSceneMeshes(const std::vector<JsonValue>& entries, const ScenePlace& place,
                                  const std::filesystem::path& folder, const ModelImport& import_model);

/// The keys that each object of a scene file may have, in the order in which they are written.
namespace scene_keys {
extern const std::vector<std::string> scene, object, source, model_mesh, array_mesh, builtin_mesh, camera;
}

} // namespace korl
