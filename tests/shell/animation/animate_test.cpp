#include "tests/shell/animation/animate_support.hpp"
#include "tests/support/read_picture.hpp"

#include <set>

namespace {

using korl::Image;
using korl::test::ProgramResult;
using korl::test::runProgram;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class AnimateGLTest : public korl::test::Animating {
protected:
    Image image(const std::string& name) const { return korl::test::readPicture(folder / name); }
};

TEST_F(AnimateGLTest, EachFrameIsThePictureOfItsValues) {
    const ProgramResult result = animate(joined(sun, {"--vary", "sun.timeofday=6:18", "--frames", "3"}));
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "korl: varies sun.timeofday from 6 to 18 (equinox, solar time)\nkorl: wrote " +
                                 (folder / "f_##.png").string() + ", 3 frames numbered from 1\n");
    EXPECT_THAT(files(), ElementsAre("f_01.png", "f_02.png", "f_03.png"));
    for (const auto& [name, hour] : {std::pair("f_01.png", "6"), {"f_02.png", "12"}, {"f_03.png", "18"}}) {
        EXPECT_THAT(bytes(name),
                    HasSubstr(std::string("sun.timeofday = ") + hour + " (equinox, solar time)"));
        runProgram(KORL_PROGRAM,
                   {"render", "--light", "Sun:sun", "--set", "sun.latitude=52", "--set",
                    std::string("sun.timeofday=") + hour, "--size", "24x16", "-o", folder / "one.png"});
        EXPECT_EQ(image(name).pixels, image("one.png").pixels) << hour;
    }
    EXPECT_NE(image("f_01.png").pixels, image("f_02.png").pixels);
}

TEST_F(AnimateGLTest, FramesAreTheSameWhateverTheNumberOfJobs) {
    const Words arguments = joined(sun, {"--sun-time", "6:18", "--light", "Torch:t", "--vary",
                                         "t.location=0 0 0:0.5 0.5 0", "--path", "both", "--frames", "7"});
    ASSERT_EQ(animate(joined(arguments, {"--jobs", "1"}), "one_#.png").exit_code, 0);
    ASSERT_EQ(animate(joined(arguments, {"--jobs", "3"}), "three_#.png").exit_code, 0);
    std::set<std::string> different;
    for (int number = 1; number <= 7; ++number) {
        const std::string end = "_" + std::to_string(number) + ".png";
        EXPECT_EQ(bytes("one" + end), bytes("three" + end)) << number;
        different.insert(bytes("one" + end));
    }
    EXPECT_EQ(different.size(), 7u);
    EXPECT_THAT(bytes("one_4.png"), HasSubstr("t.location = 0.25 0.25 0; sun.timeofday = 12 (equinox, "));
}

TEST_F(AnimateGLTest, ResumeKeepsTheFramesOfTheSameSequence) {
    const Words arguments = joined(sun, {"--sun-time", "6:18", "--frames", "5"});
    ASSERT_EQ(animate(arguments).exit_code, 0);
    const std::string third = bytes("f_03.png"), fourth = bytes("f_04.png");
    std::filesystem::remove(folder / "f_03.png");
    folder.write("f_04.png", fourth.substr(0, fourth.size() / 2));
    const auto resumed = joined(arguments, {"--resume"});
    EXPECT_THAT(animate(resumed).errors, HasSubstr("; 3 of them were there already\n"));
    EXPECT_EQ(bytes("f_03.png"), third);
    EXPECT_EQ(bytes("f_04.png"), fourth);
    EXPECT_THAT(animate(resumed).errors, HasSubstr("; 5 of them were there already\n"));

    // Each is another sequence than all before it.
    const std::vector<Words> others{{"--background", "1 0 0"}, {"--path", "fixed"}, {"--camera", "3 3 3"}};
    for (const Words& other : others) {
        const ProgramResult made = animate(joined(resumed, other));
        EXPECT_EQ(made.exit_code, 0);
        EXPECT_THAT(made.errors, Not(HasSubstr("already"))) << other[0];
    }
    size = "16x24";
    EXPECT_THAT(animate(joined(resumed, others.back())).errors, Not(HasSubstr("already")));
    EXPECT_EQ(image("f_03.png").height, 24);
}

TEST_F(AnimateGLTest, AViewsOwnValuesAreVaried) {
    const std::string scene = folder.write("scene.json", R"({"korl": 1,
        "views": ["left"],
        "objects": [{"type": "AmbientLight", "name": "a", "parameters": {"Color": "1 1 1 1"}, 
                     "views": {"left": {"Color": "0 0 1 1"}}}]})");
    const Words arguments{scene, "--vary", "a.Color=1 0 0 1:0 1 0 1", "--frames", "2"};
    ASSERT_EQ(animate(joined(arguments, {"--view", "left"}), "left_#.png").exit_code, 0);
    ASSERT_EQ(animate(arguments, "all_#.png").exit_code, 0);
    EXPECT_EQ(image("left_1.png").pixels, image("all_1.png").pixels);
    EXPECT_EQ(image("left_2.png").pixels, image("all_2.png").pixels);
    EXPECT_NE(image("left_1.png").pixels, image("left_2.png").pixels);
}

TEST_F(AnimateGLTest, QuietSaysNothing) {
    EXPECT_EQ(animate(joined(sun, {"--sun-time", "6:18", "--frames", "2", "--quiet"})).errors, "");
    EXPECT_THAT(files(), ElementsAre("f_01.png", "f_02.png"));
}

TEST_F(AnimateGLTest, WhatLightsCannotShowIsToldOnce) {
    const std::string errors = animate({"--light", "Torch:t", "--vary", "t.elevation=0:1", "--path", "fixed",
                                        "--frames", "4", "--jobs", "2", "--quiet"})
                                   .errors;
    EXPECT_EQ(errors, "korl: light \"t\" adds nothing on the fixed-function path: its type sets up no OpenGL "
                      "light; the shader path shows it\n");
}

TEST_F(AnimateGLTest, OneFrameHasTheFirstValues) {
    ASSERT_EQ(animate(joined(sun, {"--sun-time", "7:18", "--frames", "1"})).exit_code, 0);
    EXPECT_THAT(bytes("f_01.png"), HasSubstr("sun.timeofday = 7 (equinox, solar time)"));
}

} // namespace
