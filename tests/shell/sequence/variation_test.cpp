#include "shell/sequence/variation.hpp"

#include "tests/support/flat_scene.hpp"

#include "shell/error.hpp"
#include "shell/scene/scene.hpp"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korl {
namespace {

/// A type with a parameter of each kind, as a module would register it.
struct PlainType : test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

/// The parameter of a Sun that matters here.
struct SunType : Qelt::VObject {
    SunType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {
        test::acknowledgeSlotCreators();
    }
    Qelt::TypedSlot<double> time{this, "timeofday", 12};
};

class VariationTest : public testing::Test {
protected:
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    const Qelt::VCreator<SunType, void> sun{std::string("Sun"), 1};
    Scene scene;
};

template <class Action>
std::string errorOf(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

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
