#include "shell/explain/reflection.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

using korl::LightSample;
using korl::reflect;
using korl::Reflection;
using korl::SurfacePoint;

const glm::vec3 eye{0, 0, 10}; ///< straight above the point
const SurfacePoint floor_point{{0, 0, 0}, {0, 0, 1}, {0.5f, 0.25f, 1}, 0};

/// White light that comes from an angle beside the zenith, degrees.
LightSample from(double angle) {
    const double radians = angle * std::numbers::pi / 180;
    return {{static_cast<float>(-std::sin(radians)), 0, static_cast<float>(-std::cos(radians))},
            glm::vec3(1),
            glm::vec3(1)};
}

TEST(Reflection, FollowsTheCosineAndTheColor) {
    const Reflection reflection = reflect(floor_point, from(60), eye); // of which the cosine is a half
    EXPECT_NEAR(reflection.diffuse.x, 0.25, 1e-6);
    EXPECT_NEAR(reflection.diffuse.y, 0.125, 1e-6);
    EXPECT_NEAR(reflection.diffuse.z, 0.5, 1e-6);
}

TEST(Reflection, HighlightFollowsTheHalfAngle) {
    // Light and eye are 60 degrees apart, so the halfway vector is 30 degrees from the normal: half of
    // (sqrt(3) / 2)^32 = (3/4)^16.
    const double expected = 0.5 * std::pow(0.75, 16);
    EXPECT_NEAR(reflect(floor_point, from(60), eye).specular.x, expected, 1e-6);
    EXPECT_NEAR(reflect(floor_point, from(0), eye).specular.y, 0.5, 1e-6);
}

TEST(Reflection, LightFromBehindGivesNothing) {
    const Reflection reflection = reflect(floor_point, from(120), eye);
    EXPECT_EQ(reflection.sum(), glm::vec3(0));
}

TEST(Reflection, AmbientLightIsTheSameWhateverTheNormal) {
    SurfacePoint averted = floor_point;
    averted.normal = {0, 0, -1};
    const LightSample ambient{glm::vec3(0), {0.5f, 0.5f, 0.5f}, glm::vec3(1)};
    EXPECT_EQ(reflect(averted, ambient, eye).diffuse, glm::vec3(0.25f, 0.125f, 0.5f));
    EXPECT_EQ(reflect(averted, ambient, eye).specular, glm::vec3(0));
}

TEST(Reflection, LightThatIsNotFiniteGivesNothing) {
    LightSample light = from(0);
    light.specular_intensity.y = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(reflect(floor_point, light, eye).sum(), glm::vec3(0));
    light = from(0);
    light.incidence.x = std::numeric_limits<float>::infinity();
    EXPECT_EQ(reflect(floor_point, light, eye).sum(), glm::vec3(0));
}

TEST(Reflection, LengthsOfNormalAndIncidenceDoNotMatter) {
    SurfacePoint point = floor_point;
    point.normal *= 1e-20f;
    LightSample light = from(60);
    light.incidence *= 1e20f;
    EXPECT_NEAR(reflect(point, light, eye).diffuse.z, 0.5, 1e-6);
}

} // namespace
