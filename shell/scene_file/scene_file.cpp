#include "shell/scene_file/scene_file.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene_file/scene_reader.hpp"
#include "shell/scene_file/scene_writer.hpp"

#include <fmt/core.h>
#include <fstream>

namespace korl {

std::string sceneFileText(const std::filesystem::path& file) {
    const auto fail = [&](const std::string& why) {
        throw Error(fmt::format("cannot read the scene {}: {}", printable(file.string()), why));
    };
    std::error_code problem;
    const auto type = std::filesystem::status(file, problem).type();
    if (type == std::filesystem::file_type::not_found)
        fail("there is no such file; check the path");
    if (problem)
        fail(problem.message());
    if (type != std::filesystem::file_type::regular)
        fail("it is not a regular file");
    const auto size = std::filesystem::file_size(file, problem);
    if (size > JsonText::max_bytes)
        fail(fmt::format("it has {} bytes, more than the {} that are read", size, JsonText::max_bytes));
    std::ifstream stream(file, std::ios::binary);
    std::string text(size, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(size));
    if (!stream)
        fail("it may not be opened; check its permissions");
    return text;
}

JsonText parseScene(std::string text, const std::filesystem::path& file) {
    try {
        return JsonText(std::move(text));
    } catch (const Error& error) {
        throw Error(
            fmt::format("{}: {}{}", printable(file.string()), error.what(),
                        file.extension() == ".json" ? "" : "; if it is a model, give it with --model"));
    }
}

void readSceneFile(const std::filesystem::path& file, Scene& scene, const SceneReading& reading) {
    readSceneText(sceneFileText(file), file, scene, reading);
}

void readSceneText(std::string text, const std::filesystem::path& file, Scene& scene,
                   const SceneReading& reading) {
    const JsonText parsed = parseScene(std::move(text), file);
    SceneReader(file, scene, reading, Part::everything).read(parsed.root());
}

void saveScene(const std::filesystem::path& file, const Scene& scene, const SceneNotes& warn) {
    const std::string text = sceneText(scene, file.parent_path(), warn);
    writeFileAtomically(file, text);
}

std::string sceneText(const Scene& scene, const std::filesystem::path& folder, const SceneNotes& warn) {
    return SceneWriter(scene, folder, warn, Part::everything).text();
}

} // namespace korl
