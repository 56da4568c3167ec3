// Sun is the sun on the day of an equinox, seen from a latitude at a time of day: parallel white light whose
// direction follows the sun along the celestial equator, without season, longitude or time zone. It keeps its
// full strength below the horizon, where it shines upwards.

#include "light_contract.hpp"
#include "unit.hpp"

#include <doltra/shader_light.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/module.hpp>

#include <cmath>
#include <memory>
#include <string>

namespace tovek {

namespace {

using namespace Qelt;
using Orvid::PhysicalSpace;
using RenderNamespace::UniformMap;
using RenderNamespace::writeUniform;

// Names, defaults, fallbacks.

constexpr const char* intensity_name = "Intensity";
constexpr const char* specular_name = "Specular";
constexpr const char* latitude_name = "latitude";
constexpr const char* time_of_day_name = "timeofday";

constexpr double intensity_default = 0.9;  ///< of white
constexpr double specular_default = 0.1;   ///< of white
constexpr double latitude_default = 45;    ///< degrees, north positive
constexpr double time_of_day_default = 12; ///< hours, 12 is noon

constexpr double latitude_min = -90;
constexpr double latitude_max = 90;
constexpr double time_of_day_max = 24; ///< there is no "min", on purpose

constexpr double radians_per_degree = 0.017453292519943295; ///< π/180
constexpr double radians_per_hour = 0.2617993877991494;     ///< π/12

/// What is taken when a strength cannot be read: full strength, not the default, on purpose.
constexpr double strength_fallback = 1;

constexpr const char* intensity_uniform = "SunIntensity$$";
constexpr const char* specular_uniform = "SunSpecularIntensity$$";
constexpr const char* direction_uniform = "SunDirection$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* sun_snippet = R"glsl(

uniform vec4 SunIntensity$$         = vec4(1,1,1,1);
uniform vec4 SunSpecularIntensity$$ = vec4(1,1,1,1);
uniform vec3 SunDirection$$         = vec3(0,0,-1);

/* Sun

Given a vertex, provide the light at this point.
*/
void	getLight_$$(in vec3 vertex,
		    out vec3 light_incidence,
		    out vec3 intensity,
		    out vec3 specular_intensity)
{
vec3	d = SunDirection$$;
	light_incidence    = normalize(d);

	intensity          = SunIntensity$$.rgb;
	specular_intensity = SunSpecularIntensity$$.rgb;
}

)glsl";

// The light. Its class has the name of the directional light's, from which it differs in where the direction
// comes from; each is private to its file.

class DirectionalLight final : public ShaderLight {
public:
    DirectionalLight(const std::string& name, const VCreationPreferences& preferences)
        : ShaderLight(name, light_priority, preferences) {
        setProperty(my_latitude, "min", latitude_min);
        setProperty(my_latitude, "max", latitude_max);
        setProperty(my_time_of_day, "max", time_of_day_max);
    }

    std::string lightSnippet() const override { return sun_snippet; }

    void fillUniforms(UniformMap& uniforms, VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));

        // The sun has no colour, so its alpha is the strength as well; that of the highlights is 1, on
        // purpose.
        writeUniform(uniforms, intensity_uniform, FloatColor{intensity, intensity, intensity, intensity});
        writeUniform(uniforms, specular_uniform, FloatColor{specular, specular, specular, 1});
        writeUniform(uniforms, direction_uniform, direction(pool));
    }

    /// The fixed-function light: straight above, whatever the latitude and the time of day, on purpose.
    bool environment_render(VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));

        const GLenum light = openGLLight(context);
        const FloatColor diffuse{intensity, intensity, intensity, 1}, ambient{0, 0, 0, 1};
        const FloatColor highlight{specular, specular, specular, 1};
        const FloatColor position{0, 0, 1, 0}, downward{0, 0, -1, 0};

        setNoAttenuation(light);
        glLightfv(light, GL_DIFFUSE, diffuse.data());
        glLightfv(light, GL_AMBIENT, ambient.data());
        glLightfv(light, GL_SPECULAR, highlight.data());
        glLightfv(light, GL_POSITION, position.data());
        glLightfv(light, GL_SPOT_DIRECTION, downward.data());
        glLightf(light, GL_SPOT_CUTOFF, 180); // no cone
        glEnable(light);
        glEnable(GL_LIGHTING);
        return true;
    }
    using ShaderLight::environment_render;

private:
    /// The way the light travels: the midnight direction (0, sin φ, cos φ) turned by the hour angle t about
    /// the axis of the celestial pole, (0, −cos φ, sin φ). It has unit length up to rounding.
    PhysicalSpace::vector direction(ValuePool& pool) const {
        // Only held values count here, while the strengths may be computed ones.
        const double phi = readOr<VValue<double>>(latitude_default, my_latitude, pool) * radians_per_degree;
        const double t = readOr<VValue<double>>(time_of_day_default, my_time_of_day, pool) * radians_per_hour;
        const double sin_phi = std::sin(phi), cos_phi = std::cos(phi);
        const double sin_t = std::sin(t), cos_t = std::cos(t);
        return {-sin_t * (cos_phi * cos_phi + sin_phi * sin_phi), cos_t * sin_phi, cos_t * cos_phi};
    }

    TypedSlot<double> my_intensity{this, intensity_name, intensity_default};
    TypedSlot<double> my_specular{this, specular_name, specular_default};
    TypedSlot<double> my_latitude{this, latitude_name, latitude_default};
    TypedSlot<double> my_time_of_day{this, time_of_day_name, time_of_day_default};
};

// The creator and its registration.

class SunUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    VCreator<DirectionalLight, PhysicalSpace::vector> my_creator{
        // The two full stops are part of the text.
        VCreatorProperties(
            Property(Property::Kind::description,
                     "A light source that is specified by altitude and azimuth angles, and changes its "
                     "color when setting or rising..")) +
            Property(Property::Kind::date, __DATE__) + Property(Property::Kind::name, "Sun") +
            Property(Property::Kind::source, __FILE__) + Property(Property::Kind::category, "Scenery"),
        0};
    ValueType<double> my_number_type;
};

} // namespace

std::unique_ptr<Unit> registerSun() {
    return std::make_unique<SunUnit>();
}

} // namespace tovek
