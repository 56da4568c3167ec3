#include "shell/gallery/gallery.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/gallery/gallery_page.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/session/shell.hpp"

#include <fmt/core.h>
#include <string>
#include <vector>

namespace korl {

namespace {

constexpr int picture_width = 480, picture_height = 360;

} // namespace

std::filesystem::path writeGallery(Shell& shell, const std::filesystem::path& folder) {
    Scene scene;
    for (Mesh& mesh : builtinScene())
        scene.addMesh(std::move(mesh));
    std::vector<TypeSheet> sheets;
    for (const std::string& type : typeNames())
        sheets.push_back(sheetOf(type, scene, shell.context(), picture_width, picture_height));
    if (sheets.empty())
        throw Error("there are no types to show: no module is loaded; name one with --plugin or set "
                    "KORL_PLUGIN_PATH");
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    if (problem)
        throw Error(fmt::format("cannot make the folder {}: {}", folder.string(), problem.message()));
    const std::string page = galleryPage(sheets);
    std::filesystem::path file = folder / "index.html";
    writeFileAtomically(file, page);
    return file;
}

} // namespace korl
