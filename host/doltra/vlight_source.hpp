#pragma once

#include <doltra/export.hpp>
#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <sorvik/state_creator.hpp>

#include <string>

namespace Qelt {

/// Base of every light type.
class DOLTRA_EXPORT VLightSource : public VEnvironmentRenderObject, public VStateCreatorBase {
public:
    /// @param priority where the light stands among the objects that are updated for a rendering: lower ones
    /// go first.
    VLightSource(const std::string& name, int priority, const VCreationPreferences& preferences);
    ~VLightSource() override;
};

} // namespace Qelt
