// DistanceLight stands at one point and shines at another. On the shader path it acts as a light from far
// away along that line; on the fixed-function path it is a light at its own place.

#include "light_contract.hpp"
#include "unit.hpp"

#include <doltra/shader_light.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/module.hpp>

#include <memory>
#include <string>

namespace tovek {

namespace {

using namespace Qelt;
using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;
using RenderNamespace::UniformMap;
using RenderNamespace::writeUniform;

// Names, defaults, fallbacks.

constexpr const char* intensity_name = "Intensity";
constexpr const char* specular_name = "Specular";
constexpr const char* position_name = "lightposition";
constexpr const char* target_name = "shineat";
constexpr const char* color_name = "color";

constexpr double strength_default = 0.8; ///< of both the diffuse and the specular light
constexpr PhysicalSpace::point position_default{0, 0, 1};
constexpr PhysicalSpace::point target_default{0, 0, 0};
constexpr rgba_float_t color_default{1, 1, 1, 1};
constexpr int color_expert_level = 1;

/// What is taken when a strength cannot be read: full strength, not the default, on purpose.
constexpr double strength_fallback = 1;
/// What is taken when the position cannot be read; the two paths differ, on purpose.
constexpr PhysicalSpace::point position_fallback_in_shader{0, 0, 10};
constexpr PhysicalSpace::point position_fallback_in_opengl{0, 0, 1};

constexpr const char* intensity_uniform = "DistanceLightIntensity$$";
constexpr const char* specular_uniform = "DistanceLightSpecularIntensity$$";
constexpr const char* direction_uniform = "DistanceLightDirection$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* distance_snippet = R"glsl(

uniform vec4 DistanceLightIntensity$$         = vec4(1,1,1,1);
uniform vec4 DistanceLightSpecularIntensity$$ = vec4(1,1,1,1);
uniform vec3 DistanceLightDirection$$           = vec3(0,0,-1);

/* DistanceLight

Given a vertex, provide the light at this point.
*/
void	getLight_$$(in vec3 vertex,
		    out vec3 light_incidence,
		    out vec3 intensity,
		    out vec3 specular_intensity)
{
	light_incidence    = normalize(DistanceLightDirection$$);

	intensity          = DistanceLightIntensity$$.rgb;
	specular_intensity = DistanceLightSpecularIntensity$$.rgb;
}

)glsl";

// The light.

class MyLightSource final : public ShaderLight {
public:
    MyLightSource(const std::string& name, const VCreationPreferences& preferences)
        : ShaderLight(name, light_priority, preferences) {}

    std::string lightSnippet() const override { return distance_snippet; }

    void fillUniforms(UniformMap& uniforms, VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        const rgba_float_t color = readTypedOr(color_default, my_color, pool);
        const PhysicalSpace::point from = readTypedOr(position_fallback_in_shader, my_position, pool);
        const PhysicalSpace::point to = readTypedOr(target_default, my_target, pool);
        const PhysicalSpace::vector d = normalized(to - from);

        // Alpha is multiplied too, unlike that of the fixed-function light; the colour leaves the highlights
        // white.
        writeUniform(
            uniforms, intensity_uniform,
            FloatColor{intensity * color.r, intensity * color.g, intensity * color.b, intensity * color.a});
        writeUniform(uniforms, specular_uniform, FloatColor{specular, specular, specular, 1});
        writeUniform(uniforms, direction_uniform, d);
    }

    /// The fixed-function light: at its place, aimed at its target. Attenuation, ambient colour and cut-off
    /// keep what the OpenGL light holds, on purpose.
    bool environment_render(VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const double intensity = readTypedOr(strength_fallback, my_intensity, pool);
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        const PhysicalSpace::point from = readTypedOr(position_fallback_in_opengl, my_position, pool);
        const PhysicalSpace::point to = readTypedOr(target_default, my_target, pool);
        const rgba_float_t color = readTypedOr(color_default, my_color, pool);

        const GLenum light = openGLLight(context);
        const PhysicalSpace::vector d = to - from; // of any length
        // Each product is formed in double precision, unlike that of the uniform.
        const FloatColor diffuse{static_cast<float>(color.r * intensity),
                                 static_cast<float>(color.g * intensity),
                                 static_cast<float>(color.b * intensity), 1};
        const FloatColor highlight{specular, specular, specular, 1};
        const FloatColor position{static_cast<float>(from.x), static_cast<float>(from.y),
                                  static_cast<float>(from.z), 1};
        const FloatColor direction{static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z),
                                   0};

        glLightfv(light, GL_DIFFUSE, diffuse.data());
        glLightfv(light, GL_SPECULAR, highlight.data());
        glLightfv(light, GL_POSITION, position.data());
        glLightfv(light, GL_SPOT_DIRECTION, direction.data());
        glEnable(light);
        glEnable(GL_LIGHTING);
        return true;
    }
    using ShaderLight::environment_render;

private:
    TypedSlot<double> my_intensity{this, intensity_name, strength_default};
    TypedSlot<double> my_specular{this, specular_name, strength_default};
    TypedSlot<PhysicalSpace::point> my_position{this, position_name, position_default};
    TypedSlot<PhysicalSpace::point> my_target{this, target_name, target_default};
    TypedSlot<rgba_float_t> my_color{this, color_name, color_default, color_expert_level};
};

// The creator and its registration.

class DistanceLightUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    VCreator<MyLightSource, PhysicalSpace::point> my_creator{
        VCreatorProperties(
            Property(Property::Kind::description,
                     "A light source that shines from one light source to one specific point.")) +
            Property(Property::Kind::date, __DATE__) + Property(Property::Kind::name, "DistanceLight") +
            Property(Property::Kind::source, __FILE__) + Property(Property::Kind::category, "Scenery"),
        0};
    ValueType<double> my_number_type;
    ValueType<PhysicalSpace::point> my_point_type;
    ValueType<rgba_float_t> my_color_type;
};

} // namespace

std::unique_ptr<Unit> registerDistanceLight() {
    return std::make_unique<DistanceLightUnit>();
}

} // namespace tovek
