#include "shell/explain/explain.hpp"

#include "shell/base/error.hpp"
#include "shell/explain/light_explanations.hpp"
#include "shell/explain/number_text.hpp"
#include "shell/explain/summary.hpp"
#include "shell/explain/surface_findings.hpp"
#include "shell/render/renderer.hpp"
#include "shell/session/shell.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

namespace {

/// So many places on the meshes are enough to judge a light by.
constexpr std::size_t max_sample_points = 4096;
/// A tenth of white, which a picture rounds to 26 of 255, is dark still.
constexpr float dark_brightness = 26.5f / 255;

/// The brightness of a pixel, 0 to 1: the weighted sum of its components as they are stored, by the weights
/// of ITU-R BT.709.
float brightnessOf(const Image& image, int x, int y) {
    const std::size_t at = 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                static_cast<std::size_t>(x));
    const auto component = [&](std::size_t i) { return static_cast<float>(image.pixels[at + i]) / 255; };
    return 0.2126f * component(0) + 0.7152f * component(1) + 0.0722f * component(2);
}

void measurePicture(const Image& image, const GBuffer& surface, Explanation& explanation) {
    double sum = 0;
    std::size_t white = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            if (surface.at(x, y)) {
                const float brightness = brightnessOf(image, x, y);
                sum += static_cast<double>(brightness);
                white += brightness > 0.999f ? 1 : 0;
            }
    const auto covered = static_cast<double>(std::max<std::size_t>(1, surface.covered()));
    explanation.brightness = static_cast<float>(sum / covered);
    if (const double share = static_cast<double>(white) / covered; share > 0.25)
        explanation.scene.push_back({FindingKind::overexposed,
                                     numberText(static_cast<float>(100 * share)) +
                                         " % of what is seen is clipped to white; weaken the lights",
                                     false});
    if (auto& pixel = explanation.pixel) {
        const std::size_t at =
            4 * (static_cast<std::size_t>(pixel->y) * static_cast<std::size_t>(image.width) +
                 static_cast<std::size_t>(pixel->x));
        std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(at), 4, pixel->color.begin());
        explanation.brightness = brightnessOf(image, pixel->x, pixel->y);
    }
}

/// The corners of all meshes, thinned out, for a picture that shows none of them.
std::vector<SurfacePoint> corners(GBuffer::Meshes meshes) {
    std::vector<SurfacePoint> points;
    for (std::size_t k = 0; k < meshes.size(); ++k) {
        const Mesh& mesh = *meshes[k];
        const std::size_t step = 1 + mesh.positions.size() * meshes.size() / max_sample_points;
        for (std::size_t i = 0; i < mesh.positions.size(); i += step)
            points.push_back(
                {mesh.positions[i], mesh.normals[i], mesh.colors.empty() ? glm::vec3(1) : mesh.colors[i], k});
    }
    return points;
}

void requireSensible(const ExplainSettings& settings) {
    if (settings.path == RenderPath::both)
        throw Error("one path's picture is explained at a time, but both were asked for; take the shader or "
                    "the fixed one");
    if (const auto& pixel = settings.pixel;
        pixel && (pixel->first < 0 || pixel->second < 0 || pixel->first >= settings.width ||
                  pixel->second >= settings.height))
        throw Error(fmt::format("the pixel {},{} was asked for, but the picture is {}x{} pixels, "
                                "counted from 0 at the upper left",
                                pixel->first, pixel->second, settings.width, settings.height));
}

} // namespace

Explanation explain(Shell& shell, const ExplainSettings& settings) {
    requireSensible(settings);
    shell.context().makeCurrent();
    const Scene& scene = shell.scene();
    View& view = shell.view(settings.view);
    const Viewpoint viewpoint = viewpointOf(scene, static_cast<double>(settings.width) / settings.height);
    const GBuffer surface(scene.meshes(), viewpoint, settings.width, settings.height);

    Explanation explanation{};
    explanation.path = settings.path;
    explanation.width = settings.width;
    explanation.height = settings.height;
    explanation.view = settings.view;
    explanation.coverage = static_cast<float>(surface.covered()) /
                           (static_cast<float>(settings.width) * static_cast<float>(settings.height));
    LitScene at{
        scene, view, viewpoint, settings.path, {surface.spread(max_sample_points), false, 1, viewpoint.eye}};
    explanation.scene =
        findOnSurfaces(scene.meshes(), explanation.coverage, at.samples.points, viewpoint.eye);
    if (at.samples.points.empty())
        at.samples.points = corners(scene.meshes());
    if (const auto ball = scene.boundingBall(); ball && ball->radius > 0)
        at.samples.size = static_cast<float>(ball->radius);
    if (settings.pixel) {
        const auto [x, y] = *settings.pixel;
        explanation.pixel = PixelExplanation{x, y, {}, surface.at(x, y), {}, glm::vec3(0)};
        if (const auto& point = explanation.pixel->surface) {
            explanation.pixel->mesh = scene.meshes()[point->mesh]->name;
            at.samples.points = {*point};
            at.samples.is_pixel = true;
        }
    }
    {
        const Frame frame(view, scene, 0);
        explainLights(at, explanation);
    }
    try {
        Renderer silent(shell.context());
        const Image image = silent.render(scene, view, {settings.width, settings.height, settings.path});
        measurePicture(image, surface, explanation);
    } catch (const Error& error) {
        explanation.failure = error.what();
    }
    explanation.is_dark = !explanation.failure.empty() || explanation.brightness < dark_brightness;
    summarize(explanation);
    return explanation;
}

} // namespace korl
