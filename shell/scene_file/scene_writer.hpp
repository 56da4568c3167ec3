#pragma once

#include "shell/scene_file/scene_reader.hpp"

#include <string>
#include <utility>
#include <vector>

namespace Qelt {
class VObject;
class ValuePool;
} // namespace Qelt

namespace korl {

/// Writes what a scene is as the text of a scene file.
class SceneWriter {
public:
    SceneWriter(const Scene& scene, std::filesystem::path folder, const SceneNotes& warn, Part part);

    std::string text() const;

private:
    using Members = std::vector<std::pair<std::string, std::string>>; ///< keys, and values as JSON

    bool takes(const Qelt::VObject& object) const;
    bool hasLightValues(const Qelt::ValuePool& view) const;
    std::vector<std::string> plugins() const;
    std::vector<std::string> objects() const;
    std::string object(const Qelt::VObject& object) const;
    Members connections(const Qelt::VObject& object) const;
    std::vector<std::string> meshes() const;
    std::string mesh(const Mesh& mesh) const;

    const Scene& my_scene;
    std::filesystem::path my_folder;
    const SceneNotes& my_warn;
    Part my_part;
};

} // namespace korl
