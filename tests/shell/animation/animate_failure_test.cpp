// What korl animate does where something goes wrong: with what it is told, with a frame, with itself.

#include "tests/shell/animation/animate_support.hpp"

namespace {

using korl::test::ProgramResult;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

class AnimateTest : public korl::test::Animating {};
class AnimateFailureGLTest : public korl::test::Animating {};

const std::string no_mood =
    "update of \"m\" in the module \"failing_frames\" threw the exception \"in no mood for it\"; "
    "report it to the author of the module";

TEST_F(AnimateTest, RefusesWhatCannotBe) {
    struct Case {
        Words arguments;
        std::string output, message;
        int exit_code = 1;
    };
    const std::string at = folder.path().string() + "/";
    const std::string usage = "\nRun with --help for more information.";
    const std::vector<Case> table{
        {{"--frames", "0"}, "f_#.png", "a sequence has at least one frame, found 0"},
        {{"--frames", "10"},
         "f_#.png",
         "\"f_#.png\" takes 9 frames at most, found 10; put more # characters into the name"},
        {{"--frames", "1000000"}, "f.mp4", "\"f.mp4\" takes 999999 frames at most, found 1000000"},
        {{},
         "f.png",
         "the names of a sequence's pictures have one place for the number, written as # characters, such as "
         "\"day_####.png\"; found \"f.png\""},
        {{},
         "f.avi",
         "a sequence is written to pictures such as \"day_####.png\" or to a film such as \"day.mp4\" or "
         "\"day.gif\", found \"" +
             at + "f.avi\""},
        {{},
         "no/f_##.png",
         "cannot write " + at + "no/f_##.png: the folder " + at + "no does not exist; make it first"},
        {{"--fps", "0"}, "f.mp4", "a film has more than 0 frames per second"},
        {{"--fps", "60"}, "f.gif", "a GIF shows 50 frames per second at most; ask for fewer, or for an MP4"},
        {{"--view", "left"}, "f_##.png", "unknown view \"left\": the scene has no views"},
        {{"--sun-time", "6:18"},
         "f_##.png",
         "the time of the sun cannot be varied: the scene has no Sun; add one"},
        {{"--light", "Sun:sun", "--sun-time", "6:18", "--vary", "sun.timeofday=1:2"},
         "f_##.png",
         "\"sun.timeofday\" is varied twice; once is enough"},
        {{"--vary", "sun.timeofday=6:18"}, "f_##.png", "unknown object \"sun\": the scene has no objects"},
        {{"--vary", "sun.timeofday=6"},
         "f_##.png",
         "--vary: a variation is NAME.PARAM=FROM:TO such as \"sun.timeofday=6:18\", found "
         "\"sun.timeofday=6\"" +
             usage,
         2},
        {{"--jobs", "0"}, "f_##.png", "--jobs: Value 0 not in range 1 to 1024" + usage, 2},
    };
    for (const auto& [arguments, output, message, exit_code] : table) {
        const ProgramResult result = animate(arguments, output);
        EXPECT_EQ(result.errors, "korl: " + message + "\n");
        EXPECT_EQ(result.exit_code, exit_code) << message;
    }
    EXPECT_THAT(files(), ElementsAre());
}

TEST_F(AnimateTest, AWorkerWithoutAJobSaysSo) {
    const ProgramResult result =
        korl::test::runProgram("/bin/sh", {"-c", KORL_PROGRAM " sequence-worker </dev/null"});
    EXPECT_EQ(result.errors,
              "korl: no frames to make were sent; workers are started by korl animate itself\n");
    EXPECT_EQ(result.exit_code, 1);
}

TEST_F(AnimateFailureGLTest, FramesThatFailTwiceAreToldByNumber) {
    // The frames' moods: good, throwing, deadly.
    const ProgramResult result =
        animate(joined(moody, {"--vary", "m.mood=0:2", "--frames", "3", "--jobs", "2", "--quiet"}));
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, "korl: 2 of 3 frames could not be made, though each was tried twice\n"
                             "frame 3: its worker ended with signal 9 (Killed)\n"
                             "frame 2: " +
                                 no_mood + "\n");
    EXPECT_THAT(files(), ElementsAre("f_01.png"));
}

TEST_F(AnimateFailureGLTest, EqualFailuresAreToldTogether) {
    const ProgramResult result = animate(joined(moody, {"--vary", "m.mood=1:1", "--frames", "4", "--quiet"}));
    EXPECT_EQ(result.errors, "korl: 4 of 4 frames could not be made, though each was tried twice\n"
                             "frame 1-4: " +
                                 no_mood + "\n");
}

TEST_F(AnimateFailureGLTest, AFrameThatFailsOnceIsMade) {
    environment = {{"KORL_TEST_MARKER", folder / "marker"}};
    const ProgramResult result =
        animate(joined(moody, {"--vary", "m.mood=3:3", "--frames", "3", "--jobs", "2", "--quiet"}));
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(files(), ElementsAre("f_01.png", "f_02.png", "f_03.png", "marker"));
}

TEST_F(AnimateFailureGLTest, StopsOnSignalsWithWholeFramesAndGoesOn) {
    const Words slow = joined(moody, {"--vary", "m.mood=4:4", "--frames", "12", "--jobs", "2", "--quiet"});
    for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
        const int status = animateUntil("f_01.png", signal, slow);
        ASSERT_TRUE(WIFSIGNALED(status)) << status;
        EXPECT_EQ(WTERMSIG(status), signal);
        Words there = files();
        // A program that is killed, or too slow to end in time, leaves a lock and perhaps temporary files,
        // which the next run removes.
        std::erase_if(there, [](const std::string& name) { return name.starts_with('.'); });
        EXPECT_LT(there.size(), 12u);
        EXPECT_THAT(there, Contains("f_01.png"));
        EXPECT_THAT(there, Each(MatchesRegex("f_[0-9][0-9]\\.png")));
        const ProgramResult resumed =
            animate(joined(moody, {"--vary", "m.mood=4:4", "--frames", "12", "--jobs", "2", "--resume"}));
        EXPECT_EQ(resumed.exit_code, 0);
        EXPECT_THAT(resumed.errors,
                    HasSubstr("; " + std::to_string(there.size()) + " of them were there already\n"));
        EXPECT_EQ(files().size(), 12u);
        for (const std::string& name : files())
            std::filesystem::remove(folder / name);
    }
}

} // namespace
