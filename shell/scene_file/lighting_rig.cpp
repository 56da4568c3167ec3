#include "shell/scene_file/lighting_rig.hpp"

#include "shell/base/file_output.hpp"
#include "shell/scene/light.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene_file/scene_reader.hpp"
#include "shell/scene_file/scene_writer.hpp"

namespace korl {

namespace {

void removeLights(Scene& scene) {
    std::vector<std::string> lights;
    for (const auto& object : scene.objects())
        if (isLight(*object))
            lights.push_back(object->Name());
    for (const std::string& light : lights)
        scene.remove(light);
}

} // namespace

void saveRig(const std::filesystem::path& file, const Scene& scene, const SceneNotes& warn) {
    writeFileAtomically(file, rigText(scene, warn));
}

std::string rigText(const Scene& scene, const SceneNotes& warn) {
    return SceneWriter(scene, {}, warn, Part::lights).text();
}

void loadRig(const std::filesystem::path& file, Scene& scene, bool replace, const SceneNotes& warn) {
    const JsonText parsed = parseScene(sceneFileText(file), file);
    if (replace) {
        // What cannot be read shows before anything is deleted.
        Scene trial;
        const SceneReading silent;
        SceneReader(file, trial, silent, Part::lights).read(parsed.root());
        removeLights(scene);
    }
    const SceneReading reading{warn};
    SceneReader(file, scene, reading, Part::lights).read(parsed.root());
}

} // namespace korl
