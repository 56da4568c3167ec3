#pragma once

#include "shell/catalogue/type_info.hpp"
#include "shell/image/image.hpp"
#include "shell/render/gl_context.hpp"
#include "shell/scene/scene.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korl {

/// What a page shows of one parameter.
struct ParameterRow {
    ParameterInfo parameter;
    std::string more; ///< the other properties that its type gives it; often empty
};

/// The picture of a light on one path, and what the renderer had to say of it.
struct PathPicture {
    std::string path; ///< in words
    Image image;
    std::vector<std::string> reports;
};

/// What a page shows of one type of objects.
struct TypeSheet {
    std::string name, category, description;
    std::optional<Image> icon;
    std::vector<ParameterRow> parameters;
    std::vector<PathPicture> pictures; ///< of a light: on the shader path, then on the fixed-function path
    std::vector<std::pair<std::string, std::string>> uniforms; ///< of a light: names and values
    std::vector<std::string> snippets;                         ///< of a light: its GLSL
    std::string failure; ///< what went wrong, where a part of the sheet is missing; else empty
};

/// Looks at a type: creates an object of it in the scene, draws the scene with it, and removes it. What
/// fails is told in the sheet.
/// @param scene with meshes and without lights; it is left as it was.
TypeSheet sheetOf(const std::string& type, Scene& scene, GLContext& context, int width, int height);

} // namespace korl
