#include <doltra/renderable.hpp>

#include <sorvik/vprintf.hpp>

#include <chrono>
#include <exception>

namespace Qelt {

VSensorInfo::VSensorInfo() = default;
VSensorInfo::~VSensorInfo() = default;

RenderAble::~RenderAble() = default;

bool RenderAble::render(VRenderContext&) {
    return false;
}

bool RenderAble::safe_render(VRenderContext& context) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    bool drawn = false;
    try {
        drawn = render(context);
    } catch (const std::exception& error) {
        Vprintf(0, "RenderAble: rendering %s failed: %s\n", Name().c_str(), error.what());
    } catch (...) {
        Vprintf(0, "RenderAble: rendering %s failed for an unknown reason\n", Name().c_str());
    }
    my_last_render_time = std::chrono::duration<double>(Clock::now() - start).count();
    return drawn;
}

void RenderAble::illuminate(const VRenderContext&) const {}

bool RenderAble::environment_render(VRenderContext&) const {
    return true;
}

bool RenderAble::environment_render(VRenderContext& context, double, double) const {
    return environment_render(context);
}

bool RenderAble::getBoundingBall(Orvid::Ball&) const {
    return false;
}

bool RenderAble::getTouchableBoundingBall(Orvid::Ball& ball) const {
    return getBoundingBall(ball);
}

const VSensorInfo* RenderAble::getSensorInfo() const {
    return nullptr;
}

VEnvironmentRenderObject::~VEnvironmentRenderObject() = default;

} // namespace Qelt
