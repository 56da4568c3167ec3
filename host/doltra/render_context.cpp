#include <doltra/render_context.hpp>

#include <sorvik/action_notifier.hpp>
#include <tessan/living.hpp>

#include <stdexcept>
#include <utility>

namespace Qelt {

namespace {

using LivingContexts = Tessan::Living<VRenderContext>;

/// Like all that reaches the objects of a module that goes, this takes for granted that no other thread
/// renders or makes light sources meanwhile.
struct LightSourceDropper final : VActionNotifier {
    void instancesDeleted(const std::type_info&) override { VRenderContext::dropLightSources(); }
};

/// Never destroyed: modules go as late as after `main`.
[[maybe_unused]] const auto& light_source_dropper = *new LightSourceDropper;

} // namespace

VRenderContext::VRenderContext(Tessan::StrongPtr<ValuePool> pool) : my_pool(std::move(pool)) {
    if (!my_pool)
        throw std::invalid_argument("VRenderContext: a render context needs a value pool, none was given");
    LivingContexts::objects().enter(*this);
}

VRenderContext::~VRenderContext() {
    LivingContexts::objects().leave(*this);
}

void VRenderContext::dropLightSources() {
    std::vector<LightSources> dropped;
    LivingContexts::objects().visitAll(
        [&](VRenderContext& context) { dropped.push_back(std::exchange(context.my_enabled, {})); });
}

void VRenderContext::enableLightSource(const Tessan::StrongPtr<RenderNamespace::LightSource>& source) const {
    my_enabled.push_back(source);
}

void VRenderContext::beginRendering() noexcept {
    my_enabled.clear(); // keeps its memory, so that a steady frame allocates nothing
    my_light_number = 1;
}

} // namespace Qelt
