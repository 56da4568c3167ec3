#include "tests/fuzz/scene_file_fuzzer.hpp"

#include "tests/support/flat_scene.hpp"

#include "shell/base/error.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

using korl::Scene;

struct PlainType : korl::test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

/// The types that a scene file can name.
struct Types {
    korl::test::TestLightCreators lights;
    Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
};

void require(bool condition, const char* what, const std::string& text) {
    if (condition)
        return;
    std::fprintf(stderr, "%s:\n%s\n", what, text.c_str());
    std::abort();
}

/// A triangle in the place of every model.
korl::Mesh triangle(const std::filesystem::path& file, korl::UpAxis up) {
    korl::Mesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh.normals.assign(3, {0, 0, 1});
    mesh.triangles = {0, 1, 2};
    mesh.source = korl::ModelSource{file, up};
    return mesh;
}

bool read(const std::string& text, Scene& scene) {
    try {
        korl::readSceneText(text, "/scenes/scene.json", scene, {{}, triangle});
        return true;
    } catch (const korl::Error&) {
        return false;
    }
}

/// What a scene is written as; nothing where it holds what cannot be written, such as text that is not UTF-8.
std::optional<std::string> written(const Scene& scene) {
    try {
        return korl::sceneText(scene, "/scenes");
    } catch (const korl::Error&) {
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Types types;
    const std::string text(reinterpret_cast<const char*>(data), size);
    Scene scene;
    if (!read(text, scene)) {
        require(scene.objects().empty() && scene.unresolved().objects().empty() && scene.views().empty() &&
                    scene.meshes().empty() && !scene.camera,
                "something is left of a scene that was refused", text);
        return 0;
    }
    const auto first = written(scene);
    require(first.has_value(), "what was read cannot be written", text);
    Scene again;
    require(read(*first, again), "what was written cannot be read", *first);
    require(written(again) == first, "what was written changes when it is read and written", *first);
    return 0;
}
