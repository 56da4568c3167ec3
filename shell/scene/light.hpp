#pragma once

#include <doltra/vlight_source.hpp>

namespace korl {

/// Whether an object is a light, of whatever type.
inline bool isLight(const Qelt::VObject& object) {
    return dynamic_cast<const Qelt::VLightSource*>(&object) != nullptr;
}

} // namespace korl
