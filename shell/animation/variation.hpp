#pragma once

#include <string>

namespace korl {

class Scene;

/// A parameter that goes from one value to another over the frames of a sequence.
struct Variation {
    std::string object, parameter;
    std::string from, to; ///< text forms, of the first and the last frame
};

/// Reads "NAME.PARAM=FROM:TO", such as "sun.timeofday=6:18" or "light.direction=0 0 -1:1 0 -1". The object's
/// name may have dots in it, the parameter's has none. Throws Error for any other form.
Variation parseVariation(const std::string& text);

/// The variation of the time of day of the scene's first sun, an object with a `timeofday` and a
/// `latitude`. Throws Error for a scene without one, and for a
/// text that is not "FROM:TO".
/// @param hours such as "6:18".
Variation sunTime(const Scene& scene, const std::string& hours);

/// Throws Error where the scene has no such object or parameter, where one of the ends is not a finite
/// value of the parameter's type, and where the parameter follows another one, so that its own value has no
/// effect.
/// @param view the view that is to be drawn, which may have values of its own; may be empty.
void validate(const Variation& variation, const Scene& scene, const std::string& view);

/// The value of a frame in text form, each component by itself: a + (b - a)·k/(n - 1) in double precision.
/// The first and the last frame have the texts of the ends, exactly; a single frame has that of the first.
/// The variation must be valid.
///
/// A direction whose ends are opposite would go through zero, where it is none. It takes the great circle
/// instead, at a steady angle, half way along the one that a light from above travels: with a and b of the
/// lengths |a| and |b|, u = a/|a| and the unit vector d that is perpendicular to u and closest to (0, 0, -1),
/// it is (cos(pi·t)·u + sin(pi·t)·d)·(|a| + (|b| - |a|)·t), t = k/(n - 1). Where u is vertical, d is (0, -1,
/// 0): such a light comes from where a camera stands that is fitted to the scene.
/// @param frame k, counted from 0.
/// @param frames n, at least 1.
/// @param is_direction whether the value is a direction (see isDirection).
std::string valueAt(const Variation& variation, int frame, int frames, bool is_direction = false);

/// Whether a variation is of a direction: a parameter that holds a vector.
bool isDirection(const Variation& variation, const Scene& scene);

/// Whether the parameter is the time of day of a Sun: hours of solar time on the day of an equinox.
bool isSolarTime(const Variation& variation, const Scene& scene);

} // namespace korl
