#include "shell/animation/variation.hpp"

#include "tests/support/error_of.hpp"
#include "tests/support/flat_scene.hpp"

#include "shell/base/error.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korl {
namespace {

using test::errorOf;

/// A type with a parameter of each kind, as a module would register it.
struct PlainType : test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

/// The parameters by which a sun is known.
struct SunType : Qelt::VObject {
    SunType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {
        test::acknowledgeSlotCreators();
    }
    Qelt::TypedSlot<double> time{this, "timeofday", 12};
    Qelt::TypedSlot<double> latitude{this, "latitude", 45};
};

class VariationTest : public testing::Test {
protected:
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    const Qelt::VCreator<SunType, void> sun{std::string("Sun"), 1};
    Scene scene;
};

std::vector<std::string> values(const std::string& from, const std::string& to, int frames) {
    std::vector<std::string> texts;
    for (int frame = 0; frame < frames; ++frame)
        texts.push_back(valueAt({"a", "b", from, to}, frame, frames));
    return texts;
}

TEST_F(VariationTest, IsReadFromText) {
    const Variation read = parseVariation("my.sun.timeofday=6:18.5");
    EXPECT_EQ(read.object, "my.sun");
    EXPECT_EQ(read.parameter, "timeofday");
    EXPECT_EQ(read.from, "6");
    EXPECT_EQ(read.to, "18.5");
    EXPECT_EQ(parseVariation("a.b=0 0 -1:1 0 -1").from, "0 0 -1");
}

TEST_F(VariationTest, RefusesOtherForms) {
    for (const std::string text : {"", "sun", "sun.timeofday", "sun.timeofday=", "sun.timeofday=6", "a.b=:6",
                                   "a.b=6:", "a.b=1:2:3", ".b=1:2", "a.=1:2", "a=1:2", "a=1.5:2.5"})
        EXPECT_EQ(errorOf([&] { parseVariation(text); }),
                  "a variation is NAME.PARAM=FROM:TO such as \"sun.timeofday=6:18\", found \"" + text + "\"");
}

TEST_F(VariationTest, GoesInEqualStepsWithExactEnds) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(values("6", "18", 5), (Texts{"6", "9", "12", "15", "18"}));
    EXPECT_EQ(values("0", "1", 11)[3], "0.3"); // the nearest double to 3/10
    EXPECT_EQ(values("1", "-1", 3), (Texts{"1", "0", "-1"}));
    EXPECT_EQ(values("0 0 -1", "1 0 -2", 3), (Texts{"0 0 -1", "0.5 0 -1.5", "1 0 -2"}));
    EXPECT_EQ(values("0.10", "0.7e0", 4).front(), "0.10");
    EXPECT_EQ(values("0.10", "0.7e0", 4).back(), "0.7e0");
    EXPECT_EQ(values("6", "18", 1), Texts{"6"});
    EXPECT_EQ(values("6", "18", 2), (Texts{"6", "18"}));
    EXPECT_EQ(values("-1.5e308", "1.5e308", 3), (Texts{"-1.5e308", "0", "1.5e308"}));
}

using Vector = std::array<double, 3>;
using korl::test::errorOf;

std::vector<Vector> directions(const std::string& from, const std::string& to, int frames) {
    std::vector<Vector> found;
    for (int frame = 0; frame < frames; ++frame) {
        Vector& vector = found.emplace_back();
        EXPECT_TRUE(Qelt::componentsFromText(vector, valueAt({"a", "b", from, to}, frame, frames, true)));
    }
    return found;
}

void expectNear(const Vector& found, const Vector& wanted, const std::string& what) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(found[i], wanted[i], 4e-16 * std::max(1.0, std::abs(wanted[i])))
            << what << ", component " << i;
}

TEST_F(VariationTest, DirectionsThatWouldGoThroughZeroTakeTheGreatCircle) {
    const double half = std::sqrt(0.5), third = std::sqrt(0.75);
    struct Row {
        std::string from, to;
        std::vector<Vector> way;
    };
    const std::vector<Row> table{
        // By way of straight down, as light from above travels.
        {"1 0 0", "-1 0 0", {{1, 0, 0}, {half, 0, -half}, {0, 0, -1}, {-half, 0, -half}, {-1, 0, 0}}},
        {"0 -1 0",
         "0 1 0",
         {{0, -1, 0},
          {0, -third, -0.5},
          {0, -0.5, -third},
          {0, 0, -1},
          {0, 0.5, -third},
          {0, third, -0.5},
          {0, 1, 0}}},
        // The perpendicular that is closest to straight down; the lengths go in equal steps.
        {"3 0 4", "-6 0 -8", {{3, 0, 4}, {6, 0, -4.5}, {-6, 0, -8}}},
        {"3 0 -4", "-3 0 4", {{3, 0, -4}, {-4, 0, -3}, {-3, 0, 4}}},
        // From straight down to straight up by way of the direction in which the viewer looks.
        {"0 0 -1", "0 0 1", {{0, 0, -1}, {0, -half, -half}, {0, -1, 0}, {0, -half, half}, {0, 0, 1}}},
        {"0 0 2", "0 0 -2", {{0, 0, 2}, {0, -2, 0}, {0, 0, -2}}},
        // Opposite but for what rounding makes of them.
        {"0.1 0 0.3",
         "-0.2 0 -0.6000000000000001",
         {{0.1, 0, 0.3}, {0.45, 0, -0.15}, {-0.2, 0, -0.6000000000000001}}},
        {"1e-300 0 0", "-1e-300 0 0", {{1e-300, 0, 0}, {0, 0, -1e-300}, {-1e-300, 0, 0}}},
        {"1.5e308 0 0", "-1.5e308 0 0", {{1.5e308, 0, 0}, {0, 0, -1.5e308}, {-1.5e308, 0, 0}}},
    };
    for (const Row& row : table) {
        const auto found = directions(row.from, row.to, static_cast<int>(row.way.size()));
        for (std::size_t i = 0; i < found.size(); ++i)
            expectNear(found[i], row.way[i], row.from + " to " + row.to + ", frame " + std::to_string(i));
    }
    EXPECT_EQ(valueAt({"a", "b", "1 0 0", "-1 0 0"}, 1, 3, true), "0 0 -1"); // no rounding half way
}

TEST_F(VariationTest, OtherValuesGoStraightEvenThroughZero) {
    EXPECT_EQ(valueAt({"a", "b", "1 0 0", "-1 0 0"}, 1, 3, false), "0 0 0"); // a point
    EXPECT_EQ(valueAt({"a", "b", "1 0 0", "-1 0 0.1"}, 1, 3, true), "0 0 0.05");
    EXPECT_EQ(valueAt({"a", "b", "0 0 0", "0 0 1"}, 1, 3, true), "0 0 0.5");
    EXPECT_EQ(valueAt({"a", "b", "0 0 0", "0 0 0"}, 1, 3, true), "0 0 0");
    scene.create("Plain", "p");
    EXPECT_TRUE(isDirection({"p", "way", "", ""}, scene));
    for (const std::string other : {"place", "strength", "tint"})
        EXPECT_FALSE(isDirection({"p", other, "", ""}, scene)) << other;
}

TEST_F(VariationTest, RefusesWhatTheSceneDoesNotHave) {
    scene.create("Plain", "p");
    scene.create("Plain", "q");
    scene.connect("p", "strength", "q", "strength");
    scene.addView("left");
    const std::vector<std::pair<std::string, std::string>> table{
        {"r.strength=0:1", "unknown object \"r\": did you mean \"p\"? There are: p, q."},
        {"q.strenght=0:1",
         "unknown parameter \"q.strenght\": did you mean \"strength\"? There are: strength, "
         "tint, place, way."},
        {"q.strength=0:bright",
         "cannot vary \"q.strength\": it takes a double, one number, found \"bright\""},
        {"q.strength=0 1:1", "cannot vary \"q.strength\": it takes a double, one number, found \"0 1\""},
        {"q.way=0 0 1:1", "cannot vary \"q.way\": it takes a vector, three numbers \"x y z\", found \"1\""},
        {"q.strength=0:inf", "cannot vary \"q.strength\": it takes finite numbers, found \"inf\""},
        {"q.way=0 nan 0:0 0 0", "cannot vary \"q.way\": it takes finite numbers, found \"0 nan 0\""},
        {"p.strength=0:1", "cannot vary \"p.strength\": it follows \"q.strength\"; vary that one"},
        {"q.strength=0:1", "no error"}};
    for (const auto& [text, message] : table)
        EXPECT_EQ(errorOf([&, given = text] { validate(parseVariation(given), scene, ""); }), message)
            << text;
    // A view's own value goes before what the parameter follows.
    EXPECT_NO_THROW(validate(parseVariation("p.strength=0:1"), scene, "left"));
}

TEST_F(VariationTest, SunTimeIsThatOfTheFirstSun) {
    EXPECT_EQ(errorOf([&] { sunTime(scene, "6:18"); }),
              "the time of the sun cannot be varied: the scene has no Sun; add one");
    scene.create("Plain", "Sun");
    scene.create("Sun", "first");
    scene.create("Sun", "second");
    const Variation variation = sunTime(scene, "6:18");
    EXPECT_EQ(variation.object, "first");
    EXPECT_EQ(variation.parameter, "timeofday");
    EXPECT_EQ(variation.from, "6");
    EXPECT_EQ(variation.to, "18");
    EXPECT_TRUE(isSolarTime(variation, scene));
    EXPECT_FALSE(isSolarTime({"Sun", "timeofday", "6", "18"}, scene)); // by the type, not by the name
    EXPECT_EQ(errorOf([&] { sunTime(scene, "noon"); }),
              "the time of the sun is FROM:TO in hours, such as \"6:18\", found \"noon\"");
}

} // namespace
} // namespace korl
