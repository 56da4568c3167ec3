#include "shell/scene/aiming.hpp"

#include "tests/support/plain_object.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace {

using korl::Scene;
using Orvid::PhysicalSpace;
using Qelt::TypedSlot;
using Qelt::VCreationPreferences;

struct Parallel : Qelt::VObject {
    Parallel(const std::string& name, const VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {}
    TypedSlot<PhysicalSpace::vector> direction{this, "direction", {0, 0, -1}};
};

struct Placed : Qelt::VObject {
    Placed(const std::string& name, const VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {}
    TypedSlot<PhysicalSpace::point> position{this, "lightposition", {0, 0, 1}};
    TypedSlot<PhysicalSpace::point> target{this, "shineat", {0, 0, 0}};
};

/// Its parameter has the name, but is not a vector.
struct Puzzling : Qelt::VObject {
    Puzzling(const std::string& name, const VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {}
    TypedSlot<double> direction{this, "direction", 3};
};

class AimingTest : public testing::Test {
protected:
    AimingTest() {
        korl::test::acknowledgeSlotCreators();
        scene.create("Parallel", "parallel");
        scene.create("Placed", "placed");
        scene.create("Puzzling", "puzzling");
    }
    const Qelt::VCreator<Parallel, void> parallel{std::string("Parallel"), 0};
    const Qelt::VCreator<Placed, void> placed{std::string("Placed"), 0};
    const Qelt::VCreator<Puzzling, void> puzzling{std::string("Puzzling"), 0};
    Scene scene;

    std::string text(const std::string& object, const std::string& parameter) {
        return scene.parameter(object, parameter).globalValue().Text();
    }
};

TEST_F(AimingTest, ParallelLightTravelsTowardsThePoint) {
    korl::aimAt(scene, "parallel", {0, -3, 0});
    EXPECT_EQ(text("parallel", "direction"), "0 -1 0");
}

TEST_F(AimingTest, ParallelLightFromADirectionTravelsAgainstIt) {
    korl::shineFrom(scene, "parallel", {0, 0, 8});
    EXPECT_EQ(text("parallel", "direction"), "0 0 -1"); // without negative zeros
    korl::shineFrom(scene, "parallel", {-1e-320, 0, 0});
    EXPECT_EQ(text("parallel", "direction"), "1 0 0");
}

TEST_F(AimingTest, PlacedLightKeepsItsPlaceOrItsDistance) {
    korl::aimAt(scene, "placed", {1, 2, 3});
    EXPECT_EQ(text("placed", "lightposition"), "0 0 1");
    EXPECT_EQ(text("placed", "shineat"), "1 2 3");
    scene.setParameterText("placed", "lightposition", "1 2 7");
    korl::shineFrom(scene, "placed", {0, 0.5, 0});
    EXPECT_EQ(text("placed", "lightposition"), "1 6 3");
    EXPECT_EQ(text("placed", "shineat"), "1 2 3");
}

TEST_F(AimingTest, PlacedLightOnItsTargetGoesOneUnitAway) {
    scene.setParameterText("placed", "lightposition", "0 0 0");
    korl::shineFrom(scene, "placed", {-5, 0, 0});
    EXPECT_EQ(text("placed", "lightposition"), "-1 0 0");
}

TEST_F(AimingTest, RefusesWhatLeadsNowhereAndChangesNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    for (const char* const light : {"parallel", "placed"})
        for (const glm::dvec3& direction : {glm::dvec3(0), glm::dvec3(nan, 0, 0), glm::dvec3(0, inf, 0)})
            EXPECT_THROW(korl::shineFrom(scene, light, direction), korl::InvalidValue) << light;
    EXPECT_THROW(korl::aimAt(scene, "parallel", {0, 0, 0}), korl::InvalidValue);
    EXPECT_THROW(korl::aimAt(scene, "placed", {0, 0, 1}), korl::InvalidValue);
    EXPECT_THROW(korl::aimAt(scene, "placed", {0, nan, 1}), korl::InvalidValue);
    EXPECT_EQ(text("parallel", "direction"), "0 0 -1");
    EXPECT_EQ(text("placed", "lightposition"), "0 0 1");
    EXPECT_EQ(text("placed", "shineat"), "0 0 0");
}

TEST_F(AimingTest, RefusesObjectsWithoutADirection) {
    EXPECT_THROW(korl::aimAt(scene, "puzzling", {1, 2, 3}), korl::WrongType);
    EXPECT_THROW(korl::shineFrom(scene, "puzzling", {1, 2, 3}), korl::WrongType);
    EXPECT_THROW(korl::shineFrom(scene, "nobody", {1, 2, 3}), korl::UnknownName);
}

} // namespace
