// A module of one light, whose class and light source have the same names in every module that is built from
// this file. The light has two creators, named after the module.

#include <doltra/light_source.hpp>
#include <doltra/vlight_source.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/module.hpp>

#include <string>

namespace twin {

using namespace Qelt;
using Tessan::StrongPtr;

class Lamp final : public VLightSource {
public:
    class Source final : public RenderNamespace::LightSource {
    public:
        std::string snippet() const override { return {}; }
    };

    Lamp(const std::string& name, const VCreationPreferences& preferences)
        : VLightSource(name, 0, preferences) {}

    void illuminate(const VRenderContext& context) const override { context.enableLightSource(my_source); }

private:
    TypedSlot<double> my_strength{this, "strength", 1};
    TypedSlot<Orvid::PhysicalSpace::point> my_place{this, "place", {}};
    const StrongPtr<RenderNamespace::LightSource> my_source{new Source};
};

namespace {

struct Module {
    ModuleAnnouncement announcement{MODULE_NAME};
    ValueType<double> numbers;
#ifndef FORGETS_POINTS
    ValueType<Orvid::PhysicalSpace::point> points;
#endif
    const Lamp::Source source_without_pointers{}; ///< goes after the creators, and nobody holds it
    VCreator<Lamp, void> lamp{std::string(MODULE_NAME), 0};
    VCreator<Lamp, void> lamp_again{std::string(MODULE_NAME) + "_again", 0};
};

const Module the_module;

} // namespace

} // namespace twin

KORL_MODULE_ENTRY(MODULE);
