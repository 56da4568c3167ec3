#include "shell/explain/light_explanations.hpp"

#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/explain/opengl_light.hpp"
#include "shell/render/fixed_path.hpp"
#include "shell/render/light_sampler.hpp"
#include "shell/render/shader_path.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/render/uniform_check.hpp"
#include "shell/render/uniform_values.hpp"
#include "shell/scene/light.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <fmt/core.h>
#include <map>

namespace korl {

namespace {

using Outcome = FixedLightPlace::Outcome;

/// What OpenGL holds of each object of the frame.
struct FixedLights {
    std::vector<FixedLightPlace> places;
    std::map<const Qelt::RenderAble*, OpenGLLight> lights;
};

FixedLights setUpFixedLights(const LitScene& at) {
    Reports silent({});
    FixedPath path;
    path.setUpLights(at.view, at.viewpoint, silent);
    FixedLights fixed;
    fixed.places.assign(path.places().begin(), path.places().end());
    for (const FixedLightPlace& place : fixed.places)
        if (place.outcome == Outcome::holds || place.outcome == Outcome::ambient_only)
            fixed.lights.emplace(place.object, OpenGLLight(place.number, at.viewpoint.view));
    return fixed;
}

/// Says which OpenGL light a light holds, and finds what keeps it from having one.
void addOpenGLLight(LightExplanation& light, const FixedLightPlace& place, const FixedLights& fixed,
                    RenderPath path) {
    const std::string holds = fmt::format("holds OpenGL light {}", place.number);
    const bool is_cause = path == RenderPath::fixed;
    light.opengl_number = place.number;
    switch (place.outcome) {
    case Outcome::holds:
        light.opengl_light = holds;
        return;
    case Outcome::ambient_only:
        light.opengl_light = holds + ", of which only the ambient light counts";
        return;
    case Outcome::not_finite:
        light.opengl_light = holds + ", which is off: what it gives OpenGL is not finite";
        if (is_cause)
            light.findings.push_back(
                {FindingKind::not_finite, "gives OpenGL numbers that are not finite, and so is off"});
        return;
    case Outcome::sets_up_none:
        light.opengl_light = "holds no OpenGL light: its type sets up none";
        light.findings.push_back({FindingKind::no_opengl_light,
                                  "adds nothing on the fixed-function path: its type sets up no OpenGL light",
                                  is_cause});
        return;
    case Outcome::left_out: {
        std::string holders;
        for (const FixedLightPlace& other : fixed.places)
            if (other.number > 0)
                holders += (holders.empty() ? "" : ", ") + inQuotes(other.object->Name());
        light.opengl_light = "holds no OpenGL light: all are held by " + holders;
        light.findings.push_back({FindingKind::left_out,
                                  fmt::format("is left out on the fixed-function path: all of OpenGL's "
                                              "lights are held by those before it, {}",
                                              holders),
                                  is_cause});
        return;
    }
    }
}

/// The uniforms of a light that are not finite, which explain why its light isn't.
void nameBadUniforms(LightExplanation& light, const Qelt::RenderNamespace::LightSource& source) {
    std::string names;
    for (const auto& [name, value] : source.uniforms())
        if (!isFinite(value))
            names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", inQuotes(name), uniformText(value));
    for (Finding& finding : light.findings)
        if (finding.kind == FindingKind::not_finite && !names.empty())
            finding.text += fmt::format("; not finite is its uniform {}: check its parameters", names);
}

/// Notes where a light writes other uniforms than its snippet declares.
void noteUniforms(LightExplanation& light, const Qelt::RenderNamespace::LightSource& source) {
    const UniformMismatch mismatch = compareUniforms(snippetOf(source, light.name), source.uniforms());
    if (!mismatch.undeclared.empty())
        light.findings.push_back({FindingKind::uniform_undeclared, undeclaredText(mismatch), false});
    if (!mismatch.unwritten.empty())
        light.findings.push_back({FindingKind::uniform_unwritten, unwrittenText(mismatch), false});
}

/// Names the parameters that were set to zero, for a light that has zero intensity: numbers, and colours but
/// for their alpha.
void nameZeroParameters(LightExplanation& light, const Qelt::VObject& object, Qelt::ValuePool& pool) {
    const auto isZero = [](const Qelt::VValueBase& value) {
        const std::vector<double> numbers = numbersOf(value);
        return (numbers.size() == 1 && numbers[0] == 0) ||
               (numbers.size() == 4 && numbers[0] == 0 && numbers[1] == 0 && numbers[2] == 0);
    };
    std::string names;
    for (const auto& [parameter, expert_level] : object.parameters()) {
        const Qelt::VValueBase* const value = parameter->getLocalValue(pool);
        if (value && isZero(*value) && !isZero(parameter->DefaultValue()))
            names += (names.empty() ? "" : ", ") + inQuotes(parameter->Name());
    }
    for (Finding& finding : light.findings)
        if (finding.kind == FindingKind::zero_intensity && !names.empty())
            finding.text += "; set to 0 is its " + names;
}

SampleFunction shaderSamples(LightSampler& sampler, const View& view, const View::Member& member,
                             const glm::vec3& eye) {
    return [&sampler, &view, &member, eye](std::span<const glm::vec3> points) {
        LightParts parts;
        for (std::size_t i = 0; i < member.source_count; ++i)
            parts.push_back(sampler.sample(*view.sources()[member.first_source + i].get(),
                                           member.object->Name(), points, eye));
        return parts;
    };
}

SampleFunction fixedSamples(const OpenGLLight& light, bool is_ambient_only) {
    return [&light, is_ambient_only](std::span<const glm::vec3> points) {
        LightParts parts(is_ambient_only ? 1 : 2);
        for (const glm::vec3& point : points)
            if (is_ambient_only) {
                parts[0].push_back(light.ambientAlone());
            } else {
                parts[0].push_back(light.directedAt(point));
                parts[1].push_back(light.ambientAt(point));
            }
        return parts;
    };
}

/// What keeps an object from taking part in any picture.
void addDisabled(LightExplanation& light, const Scene& scene, const Qelt::VObject& object) {
    light.opengl_light = "holds no OpenGL light: it takes no part in the picture";
    if (const Qelt::VObject* const solo = scene.soloLight(); solo && solo != &object)
        light.findings.push_back({FindingKind::silenced,
                                  fmt::format("is silenced, since {} shines alone", inQuotes(solo->Name()))});
    if (scene.isMuted(object))
        light.findings.push_back({FindingKind::muted, "is muted"});
}

} // namespace

void explainLights(const LitScene& at, Explanation& explanation) {
    ShaderPath shader_path;
    shader_path.fillUniforms(at.view, at.viewpoint);
    LightSampler sampler;
    const FixedLights fixed = setUpFixedLights(at);
    const bool on_fixed = at.path == RenderPath::fixed;
    for (const auto& object : at.scene.objects()) {
        if (!isLight(*object))
            continue;
        LightExplanation light;
        light.name = object->Name();
        light.type = object->creator() ? typeName(*object->creator()) : "";
        const auto member = std::find_if(at.view.members().begin(), at.view.members().end(),
                                         [&](const auto& one) { return one.object == object.get(); });
        if (member == at.view.members().end()) {
            addDisabled(light, at.scene, *object);
            explanation.lights.push_back(std::move(light));
            continue;
        }
        const auto place = std::find_if(fixed.places.begin(), fixed.places.end(),
                                        [&](const auto& one) { return one.object == member->object; });
        addOpenGLLight(light, *place, fixed, at.path);
        if (!on_fixed)
            diagnoseLight(light, shaderSamples(sampler, at.view, *member, at.viewpoint.eye), at.samples);
        else if (const auto held = fixed.lights.find(member->object); held != fixed.lights.end())
            diagnoseLight(light, fixedSamples(held->second, place->outcome == Outcome::ambient_only),
                          at.samples);
        if (!on_fixed && member->source_count > 0) {
            const auto& source = *at.view.sources()[member->first_source].get();
            nameBadUniforms(light, source);
            noteUniforms(light, source);
        }
        nameZeroParameters(light, *object, at.view.pool());
        std::stable_sort(light.findings.begin(), light.findings.end(), [](const auto& a, const auto& b) {
            return a.is_cause != b.is_cause ? a.is_cause : a.kind < b.kind;
        });
        if (explanation.pixel && light.contribution)
            explanation.pixel->sum += light.contribution->sum();
        explanation.lights.push_back(std::move(light));
    }
    if (explanation.lights.empty())
        explanation.scene.insert(explanation.scene.begin(),
                                 {FindingKind::no_lights, "the scene has no light"});
}

} // namespace korl
