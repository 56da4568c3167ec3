#include <doltra/vlight_source.hpp>

namespace Qelt {

VLightSource::VLightSource(const std::string& name, int priority, const VCreationPreferences& preferences)
    : VEnvironmentRenderObject(name, priority, preferences) {}

VLightSource::~VLightSource() = default;

} // namespace Qelt
