#include "shell/gallery/type_sheet.hpp"

#include "shell/catalogue/type_info.hpp"
#include "shell/image/xpm.hpp"
#include "shell/render/renderer.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/scene/light.hpp"

#include <sorvik/creator.hpp>

#include <exception>

namespace korl {

namespace {

using Kind = Qelt::VCreatorPropertyBase::Kind;

std::string morePropertiesOf(const Qelt::VParameter& parameter) {
    std::string text;
    for (const auto& [name, value] : parameter.properties())
        if (name != "min" && name != "max" && name != "unit" && name != "description")
            text += (text.empty() ? "" : ", ") + name + " " + value->Text();
    return text;
}

void describe(const Qelt::VObject& object, TypeSheet& sheet) {
    sheet.description = object.help();
    if (const Qelt::VCreatorBase* const creator = object.creator().get())
        sheet.category = creator->properties().text(Kind::category);
    if (const char* const* const xpm = object.xpm_icon())
        sheet.icon = decodeXpm(xpm);
    for (const ParameterInfo& parameter : parametersOf(object))
        sheet.parameters.push_back({parameter, morePropertiesOf(*object.findParameter(parameter.name))});
}

void draw(Scene& scene, GLContext& context, int width, int height, TypeSheet& sheet) {
    View view;
    {
        const Frame frame(view, scene, 0);
        for (std::size_t i = 0; i < view.sources().size(); ++i)
            sheet.snippets.push_back(snippetOf(*view.sources()[i].get(), view.ownerOf(i).Name()));
    }
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
        PathPicture picture;
        picture.path = path == RenderPath::shader ? "shader path" : "fixed-function path";
        Renderer renderer(context, [&](const std::string& report) { picture.reports.push_back(report); });
        picture.image = renderer.render(scene, view, {width, height, path});
        if (path == RenderPath::shader)
            for (const std::string& line : renderer.listUniforms(scene, view)) {
                const std::size_t equals = line.find(" = ");
                sheet.uniforms.emplace_back(line.substr(0, equals), line.substr(equals + 3));
            }
        sheet.pictures.push_back(std::move(picture));
    }
}

} // namespace

TypeSheet sheetOf(const std::string& type, Scene& scene, GLContext& context, int width, int height) {
    TypeSheet sheet;
    sheet.name = type;
    std::string object_name;
    // Whatever a module throws, the other types have their pages.
    try {
        const Qelt::VObject& object = scene.create(type);
        object_name = object.Name();
        describe(object, sheet);
        if (isLight(object))
            draw(scene, context, width, height, sheet);
    } catch (const std::exception& error) {
        sheet.failure = error.what();
    } catch (...) {
        sheet.failure = "its module threw something that is not an exception";
    }
    if (!object_name.empty() && scene.find(object_name))
        scene.remove(object_name);
    return sheet;
}

} // namespace korl
