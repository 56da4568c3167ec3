// AmbientLight lights every point of the scene with the same colour, from no direction and without
// highlights: the light that is left when everything has been scattered so often that it comes from
// everywhere, as under an overcast sky.

#include "light_contract.hpp"
#include "unit.hpp"

#include <doltra/light_source.hpp>
#include <doltra/vlight_source.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/module.hpp>
#include <sorvik/slot_access.hpp>

#include <memory>
#include <string>

namespace tovek {

namespace {

using namespace Qelt;
using Orvid::rgba_float_t;
using RenderNamespace::LightSource;
using RenderNamespace::writeUniform;
using Tessan::StrongPtr;

// Names, defaults, fallbacks.

constexpr const char* color_name = "Color";
constexpr rgba_float_t color_default{1, 1, 1, 1};
constexpr int color_expert_level = 1;
/// What is taken when no colour can be read; darker than the default, on purpose.
constexpr rgba_float_t color_fallback{0.5f, 0.5f, 0.5f, 1};

constexpr const char* intensity_uniform = "AmbientIntensity$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* ambient_snippet = R"glsl(

uniform vec4 AmbientIntensity$$         = vec4(1,1,1,1);

//
// AmbientLight
//
void	getLight_$$(in vec3 vertex,
		    out vec3 light_incidence,
		    out vec3 intensity,
		    out vec3 specular_intensity
		    )

{
	light_incidence = vec3(0,0,0);
	intensity = AmbientIntensity$$.rgb;
	specular_intensity = vec3(0,0,0);
}

)glsl";

// The light.

class AmbientLight final : public VLightSource {
public:
    AmbientLight(const std::string& name, const VCreationPreferences& preferences)
        : VLightSource(name, light_priority, preferences) {}

    class MyLightSource final : public LightSource {
    public:
        std::string snippet() const override { return ambient_snippet; }
    };

    /// Kept by the shell for each render context.
    class LightState final : public State {
    public:
        const StrongPtr<MyLightSource> light_source = Tessan::makeStrong<MyLightSource>();
    };

    StrongPtr<State> newState() const override { return Tessan::makeStrong<LightState>(); }

    /// Writes the uniform of the request's context.
    bool update(VRequest& request, double) override {
        const rgba_float_t color = readColor(request.pool());
        writeUniform(lightSource(request.pool())->uniforms(), intensity_uniform, color);
        return true;
    }

    void illuminate(const VRenderContext& context) const override {
        context.enableLightSource(lightSource(context.pool()));
    }

    /// The fixed-function light: all of it in the ambient term.
    bool environment_render(VRenderContext& context) const override {
        const rgba_float_t color = readColor(context.pool());
        const GLenum light = openGLLight(context);
        // Alpha is 1, whatever the parameter's; the uniform keeps it.
        const FloatColor ambient{color.r, color.g, color.b, 1}, none{0, 0, 0, 0};

        glLightfv(light, GL_AMBIENT, ambient.data());
        glLightfv(light, GL_DIFFUSE, none.data());
        glLightfv(light, GL_SPECULAR, none.data());
        glLightfv(light, GL_SPOT_DIRECTION, none.data());
        glLightfv(light, GL_POSITION, none.data());
        glLightf(light, GL_SPOT_CUTOFF, 0); // meant: a light without direction has no cone either
        glEnable(light);
        glEnable(GL_LIGHTING);
        return true;
    }
    using VLightSource::environment_render;

private:
    rgba_float_t readColor(ValuePool& pool) const {
        return readOr<VValue<rgba_float_t>>(color_fallback, my_color, pool);
    }

    const StrongPtr<MyLightSource>& lightSource(ValuePool& pool) const {
        return static_cast<const LightState&>(*myState(pool)).light_source;
    }

    TypedSlot<rgba_float_t> my_color{this, color_name, color_default, color_expert_level};
};

// The creator and its registration.

class AmbientLightUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    VCreator<AmbientLight, void> my_creator{
        VCreatorProperties(Property(Property::Kind::description, "A light source that lights everything.")) +
            Property(Property::Kind::group, "General") + Property(Property::Kind::date, __DATE__) +
            Property(Property::Kind::name, "AmbientLight") + Property(Property::Kind::source, __FILE__) +
            Property(Property::Kind::category, "Scenery"),
        0};
    ValueType<rgba_float_t> my_color_type;
};

} // namespace

std::unique_ptr<Unit> registerAmbientLight() {
    return std::make_unique<AmbientLightUnit>();
}

} // namespace tovek
