// DirectionalLight shines on every point from the same direction with the same strength: a source so far away
// that its rays are parallel, such as the sun or the moon, with a colour of its own and white highlights.

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
constexpr const char* direction_name = "direction";
constexpr const char* color_name = "color";

constexpr double intensity_default = 0.9;
constexpr double specular_default = 0.1;
constexpr PhysicalSpace::vector direction_default{0, 0, -1}; ///< the way the light travels: straight down
constexpr rgba_float_t color_default{0.7f, 0.7f, 0.7f, 1};
constexpr int color_expert_level = 1;

/// What is taken when a strength cannot be read: full strength, not the default, on purpose.
constexpr double strength_fallback = 1;

constexpr const char* intensity_uniform = "DirectionalLightIntensity$$";
constexpr const char* specular_uniform = "DirectionalLightSpecularIntensity$$";
constexpr const char* direction_uniform = "DirectionalLightDirection$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* directional_snippet = R"glsl(

uniform vec4 DirectionalLightIntensity$$         = vec4(1,1,1,1);
uniform vec4 DirectionalLightSpecularIntensity$$ = vec4(1,1,1,1);
uniform vec3 DirectionalLightDirection$$         = vec3(0,0,-1);

/* DirectionalLight

Given a vertex, provide the light at this point.
*/
void	getLight_$$(in vec3 vertex,
		    out vec3 light_incidence,
		    out vec3 intensity,
		    out vec3 specular_intensity)
{
vec3	d = DirectionalLightDirection$$;
	light_incidence    = normalize(d);

	intensity          = DirectionalLightIntensity$$.rgb;
	specular_intensity = DirectionalLightSpecularIntensity$$.rgb;
}

)glsl";

// The light.

class DirectionalLight final : public ShaderLight {
public:
    DirectionalLight(const std::string& name, const VCreationPreferences& preferences)
        : ShaderLight(name, light_priority, preferences) {}

    std::string lightSnippet() const override { return directional_snippet; }

    void fillUniforms(UniformMap& uniforms, VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        const rgba_float_t color = readTypedOr(color_default, my_color, pool);
        const PhysicalSpace::vector d = normalized(readTypedOr(direction_default, my_direction, pool));

        // Alpha is multiplied too, unlike that of the fixed-function light; the colour leaves the highlights
        // white.
        writeUniform(
            uniforms, intensity_uniform,
            FloatColor{intensity * color.r, intensity * color.g, intensity * color.b, intensity * color.a});
        writeUniform(uniforms, specular_uniform, FloatColor{specular, specular, specular, 1});
        writeUniform(uniforms, direction_uniform, d);
    }

    /// The fixed-function light: at infinity, where the light comes from.
    bool environment_render(VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const double intensity = readTypedOr(strength_fallback, my_intensity, pool);
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        const PhysicalSpace::vector d = normalized(readTypedOr(direction_default, my_direction, pool));
        const rgba_float_t color = readTypedOr(color_default, my_color, pool);

        const GLenum light = openGLLight(context);
        // Each product is formed in double precision, unlike that of the uniform.
        const FloatColor diffuse{static_cast<float>(color.r * intensity),
                                 static_cast<float>(color.g * intensity),
                                 static_cast<float>(color.b * intensity), 1};
        const FloatColor ambient{0, 0, 0, 1}, highlight{specular, specular, specular, 1};
        const FloatColor position{static_cast<float>(-d.x), static_cast<float>(-d.y),
                                  static_cast<float>(-d.z), 0};
        const FloatColor direction{static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z),
                                   0};

        setNoAttenuation(light);
        glLightfv(light, GL_DIFFUSE, diffuse.data());
        glLightfv(light, GL_AMBIENT, ambient.data());
        glLightfv(light, GL_SPECULAR, highlight.data());
        glLightfv(light, GL_POSITION, position.data());
        glLightfv(light, GL_SPOT_DIRECTION, direction.data());
        glLightf(light, GL_SPOT_CUTOFF, 180); // no cone
        glEnable(light);
        glEnable(GL_LIGHTING);
        return true;
    }
    using ShaderLight::environment_render;

private:
    TypedSlot<double> my_intensity{this, intensity_name, intensity_default};
    TypedSlot<double> my_specular{this, specular_name, specular_default};
    TypedSlot<PhysicalSpace::vector> my_direction{this, direction_name, direction_default};
    TypedSlot<rgba_float_t> my_color{this, color_name, color_default, color_expert_level};
};

// The creator and its registration.

class DirectionalLightUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    VCreator<DirectionalLight, PhysicalSpace::vector> my_creator{
        VCreatorProperties(Property(Property::Kind::description, "A directional light source.")) +
            Property(Property::Kind::date, __DATE__) + Property(Property::Kind::name, "DirectionalLight") +
            Property(Property::Kind::source, __FILE__) + Property(Property::Kind::category, "Scenery"),
        0};
    ValueType<double> my_number_type;
    ValueType<PhysicalSpace::vector> my_vector_type;
    ValueType<rgba_float_t> my_color_type;
};

} // namespace

std::unique_ptr<Unit> registerDirectionalLight() {
    return std::make_unique<DirectionalLightUnit>();
}

} // namespace tovek
