// Torch burns at a height above a place on the ground. Its light comes from there and gets weaker with the
// square of the distance, smoothed so that it never exceeds the torch's strength close by. It has no
// fixed-function light.

#include "light_contract.hpp"
#include "unit.hpp"

#include <doltra/shader_light.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/module.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace tovek {

namespace {

using namespace Qelt;
using Orvid::PhysicalSpace;
using RenderNamespace::UniformMap;
using RenderNamespace::writeUniform;

// Names, defaults, fallbacks.

constexpr const char* intensity_name = "intensity";
constexpr const char* specular_name = "specular";
constexpr const char* elevation_name = "elevation";
constexpr const char* scale_distance_name = "scaleDistance";
constexpr const char* up_name = "up";
constexpr const char* location_name = "location";

constexpr double strength_default = 0.8; ///< of both the diffuse and the specular light
constexpr double elevation_default = 100;
constexpr double scale_distance_default = 1000; ///< where the light has half its strength
constexpr PhysicalSpace::vector up_default{0, 0, 1};
constexpr PhysicalSpace::point location_default{0, 0, 0};

constexpr double elevation_max = 1000;
constexpr double scale_distance_max = 10000;

/// The levels do not follow the order of the parameters, on purpose.
constexpr int intensity_level = 0, specular_level = 1, elevation_level = 2, scale_distance_level = 3;
constexpr int up_level = 8, location_level = 7;

/// What is taken when a strength cannot be read: full strength, not the default, on purpose.
constexpr double strength_fallback = 1;

constexpr const char* intensity_uniform = "TorchIntensity$$";
constexpr const char* specular_uniform = "TorchSpecularIntensity$$";
constexpr const char* location_uniform = "TorchLocation$$";
constexpr const char* elevation_uniform = "TorchElevation$$";
constexpr const char* scale_distance_uniform = "TorchScaleDistance$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* torch_snippet = R"glsl(

uniform vec4 TorchIntensity$$         = vec4(1,1,1,1);
uniform vec4 TorchSpecularIntensity$$ = vec4(1,1,1,1);
uniform vec3 TorchLocation$$          = vec3(0,0,0);

uniform vec3 TorchElevation$$         = vec3(0,0,100.0);

const float TorchDistanceAttenuation$$ = 2;
uniform float TorchScaleDistance$$       = 1000.0;


/* VTorch

Given a vertex, provide the light at this point.
*/
void	getLight_$$(in  vec3 vertex,
		    out vec3 light_incidence,
		    out vec3 intensity,
		    out vec3 specular_intensity
		    )
{
vec3	TorchAt = TorchLocation$$ + TorchElevation$$;
vec3	d = vertex - TorchAt;
	light_incidence = normalize(d);

float	dl = length(d);
float	a = pow(TorchScaleDistance$$/dl, TorchDistanceAttenuation$$ );	// Inverse-square law
float	attenuation = a/(1+a);						// smooth infinity correction

	intensity          = TorchIntensity$$.rgb*attenuation;
	specular_intensity = TorchSpecularIntensity$$.rgb*attenuation;
}

)glsl";

// The icons: an image, and the path of another one in the module's resource.

#include "Torch.xpm"

constexpr const char* resource_path = ":/light/Torch.png";

// The light.

class Torch final : public ShaderLight {
public:
    Torch(const std::string& name, const VCreationPreferences& preferences)
        : ShaderLight(name, light_priority, preferences) {
        setProperty(my_elevation, "max", elevation_max);
        setProperty(my_scale_distance, "max", scale_distance_max);
    }

    std::string lightSnippet() const override { return torch_snippet; }

    void fillUniforms(UniformMap& uniforms, VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        const PhysicalSpace::point location = readTypedOr(location_default, my_location, pool);
        const double elevation = readTypedOr(elevation_default, my_elevation, pool);
        const double scale_distance = readTypedOr(scale_distance_default, my_scale_distance, pool);

        writeUniform(uniforms, intensity_uniform, FloatColor{intensity, intensity, intensity, 1});
        writeUniform(uniforms, specular_uniform, FloatColor{specular, specular, specular, 1});
        writeUniform(uniforms, location_uniform, location);
        // Always along +z, whatever "up" says.
        writeUniform(uniforms, elevation_uniform, PhysicalSpace::vector{0, 0, elevation});
        writeUniform(uniforms, scale_distance_uniform, scale_distance);
    }

    const char* const* xpm_icon() const override { return torch_xpm; }
    std::string qt_icon() const override { return resource_path; }

private:
    TypedSlot<double> my_intensity{this, intensity_name, strength_default, intensity_level};
    TypedSlot<double> my_specular{this, specular_name, strength_default, specular_level};
    TypedSlot<double> my_elevation{this, elevation_name, elevation_default, elevation_level};
    TypedSlot<double> my_scale_distance{this, scale_distance_name, scale_distance_default,
                                        scale_distance_level};
    TypedSlot<PhysicalSpace::vector> my_up{this, up_name, up_default,
                                           up_level}; ///< kept and saved, never read
    TypedSlot<PhysicalSpace::point> my_location{this, location_name, location_default, location_level};
};

// The creator and its registration.

/// The name of a source file without its folder and its extension: the name of the type that it defines.
constexpr std::string_view typeNameOf(std::string_view source_path) {
    const std::size_t slash = source_path.rfind('/');
    const std::size_t separator = slash != std::string_view::npos ? slash : source_path.rfind('\\');
    if (separator != std::string_view::npos)
        source_path.remove_prefix(separator + 1);
    return source_path.substr(0, source_path.rfind('.'));
}

class TorchUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    VCreator<Torch, void> my_creator{VCreatorProperties(Property(Property::Kind::date, __DATE__)) +
                                         Property(Property::Kind::name, std::string(typeNameOf(__FILE__))) +
                                         Property(Property::Kind::source, __FILE__) +
                                         Property(Property::Kind::category, "Scenery"),
                                     0};
    ValueType<double> my_number_type;
    ValueType<PhysicalSpace::vector> my_vector_type;
    ValueType<PhysicalSpace::point> my_point_type;
};

} // namespace

std::unique_ptr<Unit> registerTorch() {
    return std::make_unique<TorchUnit>();
}

} // namespace tovek
