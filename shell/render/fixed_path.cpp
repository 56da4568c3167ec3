#include "shell/render/fixed_path.hpp"

#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/render/gl_error.hpp"
#include "shell/render/material.hpp"
#include "shell/scene/light.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>
#include <glm/gtc/type_ptr.hpp>
#include <string>

namespace korl {

namespace {

using FloatQuad = std::array<GLfloat, 4>;

GLenum openGLLight(int number) {
    return GL_LIGHT0 + static_cast<GLenum>(number - 1);
}

int lightCount() {
    GLint count = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &count);
    return count;
}

/// Brings the lights to the values that the OpenGL specification (version 2.1, table 6.9) gives them at
/// first.
void resetLights() {
    constexpr FloatQuad black{0, 0, 0, 1}, white{1, 1, 1, 1}, toward_viewer{0, 0, 1, 0}, away{0, 0, -1, 0};
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity(); // positions and directions are stored as this matrix turns them
    for (int number = 1; number <= lightCount(); ++number) {
        const GLenum light = openGLLight(number);
        const FloatQuad& color = number == 1 ? white : black;
        glDisable(light);
        glLightfv(light, GL_AMBIENT, black.data());
        glLightfv(light, GL_DIFFUSE, color.data());
        glLightfv(light, GL_SPECULAR, color.data());
        glLightfv(light, GL_POSITION, toward_viewer.data());
        glLightfv(light, GL_SPOT_DIRECTION, away.data());
        glLightf(light, GL_SPOT_EXPONENT, 0);
        glLightf(light, GL_SPOT_CUTOFF, 180);
        glLightf(light, GL_CONSTANT_ATTENUATION, 1);
        glLightf(light, GL_LINEAR_ATTENUATION, 0);
        glLightf(light, GL_QUADRATIC_ATTENUATION, 0);
    }
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 1);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SINGLE_COLOR);
}

/// OpenGL scales all of a light by its spot factor, which is 0 everywhere for a cut-off of 0: a light with
/// that cut-off would not even give its ambient light. Such a light gets its due through the light model
/// instead, and is off while the frame is drawn. @returns whether the light is such a one.
bool moveConelessLightToModel(GLenum light, FloatQuad& model_ambient) {
    GLfloat cutoff = 180;
    glGetLightfv(light, GL_SPOT_CUTOFF, &cutoff);
    if (cutoff != 0)
        return false;
    FloatQuad ambient{};
    glGetLightfv(light, GL_AMBIENT, ambient.data());
    for (std::size_t i = 0; i < 3; ++i)
        model_ambient[i] += ambient[i];
    glDisable(light);
    return true;
}

/// Whether everything that a set-up light gives is finite. One that is not would spoil all that the others
/// give.
bool givesFiniteLight(GLenum light) {
    for (const int name : {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_POSITION, GL_SPOT_DIRECTION,
                           GL_CONSTANT_ATTENUATION, GL_LINEAR_ATTENUATION, GL_QUADRATIC_ATTENUATION}) {
        FloatQuad values{};
        glGetLightfv(light, static_cast<GLenum>(name), values.data());
        if (!std::all_of(values.begin(), values.end(), [](GLfloat value) { return std::isfinite(value); }))
            return false;
    }
    return true;
}

void setMaterial() {
    constexpr FloatQuad black{0, 0, 0, 1};
    constexpr FloatQuad specular{material_specular, material_specular, material_specular, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black.data());
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular.data());
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, material_shininess);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
}

/// The number of the creator that made an object, which stands for its type; 0 where there is none.
std::uint64_t typeOf(const Qelt::RenderAble& object) {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    return creator ? creator->number() : 0;
}

void reportWithoutLight(const Qelt::RenderAble& object, Reports& reports) {
    reports.once(object.number(), "no OpenGL light", [&] {
        return fmt::format("light {} adds nothing on the fixed-function path: its type sets up no OpenGL "
                           "light; the shader path shows it",
                           inQuotes(object.Name()));
    });
}

} // namespace

void FixedPath::setUpLights(View& view, const Viewpoint& viewpoint, Reports& reports, bool alone) {
    using Outcome = FixedLightPlace::Outcome;
    resetLights();
    my_places.clear();
    FloatQuad model_ambient{0, 0, 0, 1};
    const int max_lights = lightCount();
    int number = 1;
    for (const View::Member& member : view.members()) {
        if (number > max_lights)
            break;
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(glm::value_ptr(viewpoint.view));
        view.context().setLightNumber(number);
        ModuleCall(*member.object, "environment_render").run([&] {
            member.object->environment_render(view.context());
        });
        requireNoGLError("light", member.object->Name());
        const GLenum light = openGLLight(number);
        const bool is_lit = glIsEnabled(light);
        my_lighting_types[typeOf(*member.object)] = is_lit;
        if (!is_lit) {
            my_places.push_back({member.object, Outcome::sets_up_none, 0});
            if (alone && member.source_count > 0)
                reportWithoutLight(*member.object, reports);
            continue;
        }
        if (givesFiniteLight(light)) {
            const bool is_coneless = moveConelessLightToModel(light, model_ambient);
            my_places.push_back(
                {member.object, is_coneless ? Outcome::ambient_only : Outcome::holds, number});
        } else {
            glDisable(light);
            my_places.push_back({member.object, Outcome::not_finite, number});
            reports.once(member.object->number(), "OpenGL light not finite", [&] {
                return fmt::format(
                    "light {} adds nothing on the fixed-function path: what it gives OpenGL is not finite; "
                    "check its parameters",
                    inQuotes(member.object->Name()));
            });
        }
        ++number;
    }
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, model_ambient.data());
    const std::size_t called = my_places.size();
    for (const View::Member& member : view.members().subspan(called)) {
        const bool is_left_out = wouldLight(*member.object);
        my_places.push_back({member.object, is_left_out ? Outcome::left_out : Outcome::sets_up_none, 0});
        if (alone && member.source_count > 0 && !is_left_out)
            reportWithoutLight(*member.object, reports);
    }
    reportLeftOut(places().subspan(called), reports);
}

bool FixedPath::wouldLight(const Qelt::RenderAble& object) const {
    if (!isLight(object))
        return false;
    const auto known = my_lighting_types.find(typeOf(object));
    return known == my_lighting_types.end() || known->second;
}

void FixedPath::reportLeftOut(std::span<const FixedLightPlace> uncalled, Reports& reports) {
    std::string names;
    std::size_t lights = 0;
    constexpr std::size_t max_names = 20;
    for (const FixedLightPlace& place : uncalled)
        if (place.outcome == FixedLightPlace::Outcome::left_out &&
            reports.isFirst(place.object->number(), "left out") && ++lights <= max_names)
            names += (names.empty() ? "" : ", ") + inQuotes(place.object->Name());
    if (lights > max_names)
        names += fmt::format(" and {} more", lights - max_names);
    if (lights > 0)
        reports.warn(fmt::format("left out on the fixed-function path: {}; OpenGL has {} lights here, and "
                                 "those before hold them all",
                                 names, lightCount()));
}

void FixedPath::draw(const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes) {
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(glm::value_ptr(viewpoint.projection));
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(glm::value_ptr(viewpoint.view));
    setMaterial();
    glEnable(GL_NORMALIZE);
    glEnable(GL_LIGHTING); // also where no light asked for it: an unlit scene is dark, not plainly coloured
    for (const auto& [mesh, buffers] : meshes)
        buffers->drawFixed();
    glDisable(GL_LIGHTING);
    glDisable(GL_COLOR_MATERIAL);
}

} // namespace korl
