#include "shell/explain/explanation_text.hpp"

#include "shell/base/printable.hpp"
#include "shell/explain/number_text.hpp"

#include <fmt/core.h>
#include <nlohmann/json.hpp>

namespace korl {

namespace {

using Json = nlohmann::ordered_json;

/// A text of several lines, each after the first indented.
std::string indented(const std::string& text, const std::string& indent) {
    std::string result;
    for (const char c : text) {
        result += c;
        if (c == '\n')
            result += indent;
    }
    return result;
}

std::string pathName(RenderPath path) {
    return path == RenderPath::fixed ? "fixed" : "shader";
}

std::string pixelText(const PixelExplanation& pixel) {
    const std::string text = fmt::format("\nPixel {},{}: colour {} {} {} of 255\n", pixel.x, pixel.y,
                                         pixel.color[0], pixel.color[1], pixel.color[2]);
    if (!pixel.surface)
        return text + "  shows the background\n";
    return text + fmt::format("  shows the mesh {} at {}, normal {}, own colour {}\n"
                              "  all lights together give it {}\n",
                              inQuotes(pixel.mesh), numberText(pixel.surface->position),
                              numberText(pixel.surface->normal), numberText(pixel.surface->color),
                              numberText(pixel.sum));
}

std::string lightText(const LightExplanation& light) {
    std::string text = fmt::format("  {}\n", printable(fmt::format("{} ({})", light.name, light.type)));
    for (const Finding& finding : light.findings)
        text += fmt::format("    {}{}\n", finding.is_cause ? "" : "note: ", indented(finding.text, "      "));
    if (light.intensity)
        text += fmt::format("    gives an intensity of at most {}{}; faces {} % of what was looked at\n",
                            numberText(*light.intensity),
                            light.attenuation
                                ? fmt::format(", {} of its strength, at a distance of {}",
                                              numberText(*light.attenuation), numberText(*light.distance))
                                : "",
                            numberText(100 * *light.lit_share));
    if (const auto& added = light.contribution)
        text += fmt::format("    adds to the pixel: diffuse {}, specular {}\n", numberText(added->diffuse),
                            numberText(added->specular));
    return text + fmt::format("    {}\n", light.opengl_light);
}

Json vector(const glm::vec3& value) {
    return Json::array({value.x, value.y, value.z});
}

Json findings(const std::vector<Finding>& list) {
    Json json = Json::array();
    for (const Finding& finding : list)
        json.push_back({{"kind", nameOf(finding.kind)}, {"cause", finding.is_cause}, {"text", finding.text}});
    return json;
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json lightJson(const LightExplanation& light) {
    Json json{{"name", light.name},
              {"type", light.type},
              {"findings", findings(light.findings)},
              {"opengl_light", light.opengl_number > 0 ? Json(light.opengl_number) : Json()},
              {"opengl_text", light.opengl_light},
              {"intensity", orNull(light.intensity)},
              {"attenuation", orNull(light.attenuation)},
              {"distance", orNull(light.distance)},
              {"lit_share", orNull(light.lit_share)}};
    if (light.contribution)
        json["contribution"] = {{"diffuse", vector(light.contribution->diffuse)},
                                {"specular", vector(light.contribution->specular)}};
    return json;
}

Json pixelJson(const PixelExplanation& pixel) {
    Json json{{"x", pixel.x}, {"y", pixel.y}, {"color", pixel.color}};
    if (const auto& surface = pixel.surface) {
        json["mesh"] = pixel.mesh;
        json["position"] = vector(surface->position);
        json["normal"] = vector(surface->normal);
        json["surface_color"] = vector(surface->color);
        json["sum"] = vector(pixel.sum);
    }
    return json;
}

} // namespace

std::string toText(const Explanation& explanation) {
    std::string text = explanation.summary + "\n";
    if (!explanation.failure.empty())
        text += fmt::format("\n{}\n", explanation.failure);
    if (explanation.pixel)
        text += pixelText(*explanation.pixel);
    text += explanation.lights.empty() ? "\nLights: none\n" : "\nLights\n";
    for (const LightExplanation& light : explanation.lights)
        text += lightText(light);
    text += fmt::format("\nScene, {}x{} pixels on the {} path{}\n  {} % of the picture shows a mesh\n",
                        explanation.width, explanation.height,
                        explanation.path == RenderPath::fixed ? "fixed-function" : "shader",
                        explanation.view.empty() ? "" : ", in the view " + inQuotes(explanation.view),
                        numberText(100 * explanation.coverage));
    for (const Finding& finding : explanation.scene)
        text += fmt::format("  {}{}\n", finding.is_cause ? "" : "note: ", finding.text);
    return printableLines(text);
}

std::string toJson(const Explanation& explanation) {
    Json causes = Json::array(), lights = Json::array();
    for (const FindingKind cause : explanation.causes)
        causes.push_back(nameOf(cause));
    for (const LightExplanation& light : explanation.lights)
        lights.push_back(lightJson(light));
    Json json{{"summary", explanation.summary},
              {"dark", explanation.is_dark},
              {"causes", causes},
              {"path", pathName(explanation.path)},
              {"width", explanation.width},
              {"height", explanation.height},
              {"view", explanation.view},
              {"brightness", explanation.brightness},
              {"coverage", explanation.coverage},
              {"lights", lights},
              {"scene", findings(explanation.scene)}};
    if (explanation.pixel)
        json["pixel"] = pixelJson(*explanation.pixel);
    if (!explanation.failure.empty())
        json["failure"] = explanation.failure;
    // Texts of a driver need not be UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace korl
