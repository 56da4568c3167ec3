#include <doltra/render_context.hpp>

#include <stdexcept>
#include <utility>

namespace Qelt {

VRenderContext::VRenderContext(Tessan::StrongPtr<ValuePool> pool) : my_pool(std::move(pool)) {
    if (!my_pool)
        throw std::invalid_argument("VRenderContext: a render context needs a value pool, none was given");
}

VRenderContext::~VRenderContext() = default;

void VRenderContext::enableLightSource(const Tessan::StrongPtr<RenderNamespace::LightSource>& source) const {
    my_enabled.push_back(source);
}

void VRenderContext::beginRendering() noexcept {
    my_enabled.clear(); // keeps its room, so that a steady frame allocates nothing
    my_light_number = 1;
}

} // namespace Qelt
