// Headlight goes with the viewer, like a lamp on the forehead: on the shader path every point is lit along
// the line of sight with the same strength; the fixed-function light keeps its place relative to the eye. One
// light source serves all render contexts, so the values of the rendering that came last stand in it.

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
using Orvid::PhysicalSpace;
using RenderNamespace::LightSource;
using RenderNamespace::writeUniform;
using Tessan::StrongPtr;

// Names, defaults, fallbacks.

constexpr const char* intensity_name = "intensity";
constexpr const char* specular_name = "specular";
constexpr const char* position_name = "positionmv";

constexpr double strength_default = 0.8;                  ///< of both the diffuse and the specular light
constexpr PhysicalSpace::point position_default{0, 0, 1}; ///< in eye space: one unit behind the eye
constexpr int intensity_level = 0, specular_level = 1, position_level = 2;

/// Before the other light types, which share one priority number.
constexpr int headlight_priority = -200010;

/// What is taken when a strength cannot be read: full strength, not the default, on purpose.
constexpr double strength_fallback = 1;

constexpr const char* intensity_uniform = "HeadlightIntensity$$";
constexpr const char* specular_uniform = "HeadlightSpecularIntensity$$";

// The snippet. Its tabs and blanks are part of the text.

constexpr const char* headlight_snippet = R"glsl(

uniform vec4 HeadlightIntensity$$         = vec4(1,1,1,1);
uniform vec4 HeadlightSpecularIntensity$$ = vec4(1,1,1,1);

#pragma import "getViewDir"

//
// VHeadlight
//
void	getLight_$$(in vec3 vertex,
		    out vec3 light_incidence   ,
		    out vec3 intensity         ,
		    out vec3 specular_intensity)

{
	light_incidence    = getViewDir();
	intensity          = HeadlightIntensity$$.rgb;
	specular_intensity = HeadlightSpecularIntensity$$.rgb;
}

)glsl";

// The icon.

#include "Headlight.xpm"

// The light.

class Headlight final : public VLightSource {
public:
    class MyLightSource final : public LightSource {
    public:
        std::string snippet() const override { return headlight_snippet; }
    };

    Headlight(const std::string& name, const VCreationPreferences& preferences)
        : VLightSource(name, headlight_priority, preferences) {}

    void illuminate(const VRenderContext& context) const override {
        context.enableLightSource(my_base_source);
    }

    /// The uniforms, and the fixed-function light at its place in eye space, from which it shines all around.
    bool environment_render(VRenderContext& context) const override {
        ValuePool& pool = context.pool();
        const auto intensity = static_cast<float>(readTypedOr(strength_fallback, my_intensity, pool));
        const auto specular = static_cast<float>(readTypedOr(strength_fallback, my_specular, pool));
        writeUniform(my_source->uniforms(), intensity_uniform,
                     FloatColor{intensity, intensity, intensity, 1});
        writeUniform(my_source->uniforms(), specular_uniform, FloatColor{specular, specular, specular, 1});

        const GLenum light = openGLLight(context);
        const FloatColor diffuse{intensity, intensity, intensity, 1}, ambient{0, 0, 0, 1};
        const FloatColor highlight{specular, specular, specular,
                                   0}; // alpha 0 here, 1 in the uniform, on purpose

        setNoAttenuation(light);
        glLightfv(light, GL_DIFFUSE, diffuse.data());
        glLightfv(light, GL_SPECULAR, highlight.data());
        glLightfv(light, GL_AMBIENT, ambient.data());

        // OpenGL stores a position as the model-view matrix turns it: under the identity it is one in eye
        // space.
        glMatrixMode(GL_MODELVIEW); // and stays so: the former mode is not restored, on purpose
        glPushMatrix();
        glLoadIdentity();
        const PhysicalSpace::point p = readTypedOr(position_default, my_position, pool);
        const FloatColor position{static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z),
                                  1};
        glLightfv(light, GL_POSITION, position.data());
        glPopMatrix();

        glEnable(light);
        glEnable(GL_LIGHTING);
        return true;
    }
    using VLightSource::environment_render;

    const char* const* xpm_icon() const override { return headlight_xpm; }

private:
    TypedSlot<double> my_intensity{this, intensity_name, strength_default, intensity_level};
    TypedSlot<double> my_specular{this, specular_name, strength_default, specular_level};
    TypedSlot<PhysicalSpace::point> my_position{this, position_name, position_default, position_level};

    const StrongPtr<MyLightSource> my_source = Tessan::makeStrong<MyLightSource>();
    const StrongPtr<LightSource> my_base_source = my_source; ///< the same one, as render contexts take it
};

// The creators and their registration.

class HeadlightUnit final : public Unit {
    using Property = VCreatorPropertyBase;

    // Registered twice, on purpose: first under a plain name ahead of all other types, then with its
    // properties behind them.
    VCreator<Headlight, void> my_plain_creator{std::string("Headlight"), -3000};
    VCreator<Headlight, void> my_creator{VCreatorProperties(Property(Property::Kind::date, __DATE__)) +
                                             Property(Property::Kind::name, "Headlight") +
                                             Property(Property::Kind::source, __FILE__) +
                                             Property(Property::Kind::category, "Scenery"),
                                         2000};
    ValueType<double> my_number_type;
    ValueType<PhysicalSpace::point> my_point_type;
};

} // namespace

std::unique_ptr<Unit> registerHeadlight() {
    return std::make_unique<HeadlightUnit>();
}

} // namespace tovek
