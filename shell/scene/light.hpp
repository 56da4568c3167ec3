#pragma once

#include <doltra/vlight_source.hpp>

namespace korl {

/// Whether an object is a light, of whatever type.
inline bool isLight(const Qelt::VObject& object) {
    return dynamic_cast<const Qelt::VLightSource*>(&object) != nullptr;
}

/// Whether an object has a time of day, in hours of solar time at a latitude: the parameters of a sun.
inline bool hasSolarTime(const Qelt::VObject& object) {
    const auto isNumber = [&](const char* name) {
        const Qelt::VParameter* const parameter = object.findParameter(name);
        return parameter && parameter->type() == typeid(double);
    };
    return isNumber("timeofday") && isNumber("latitude");
}

} // namespace korl
