// How sequences end when they are killed, and what the next one finds: locks, leftovers, places where no
// frame can be written.

#include "tests/shell/animation/animate_support.hpp"

#include "shell/animation/animate.hpp"
#include "shell/base/error.hpp"

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using korl::test::bytesOf;
using korl::test::ProgramResult;
using testing::Contains;
using testing::ElementsAre;
using testing::MatchesRegex;

/// With a number that goes into its own file as soon as a worker is at work.
class AnimateEndingTest : public korl::test::Animating {
protected:
    AnimateEndingTest() { environment = {{"KORL_TEST_MARKER", folder / "marker"}}; }

    /// The process that has written its number into the marker; 0 where none does so in a long time.
    pid_t markedProcess() const {
        std::string number;
        waitUntil([&] { return !(number = bytesOf(folder / "marker")).empty(); });
        return number.empty() ? 0 : std::stoi(number);
    }

    static int endOf(pid_t process) {
        int status = 0;
        ::waitpid(process, &status, 0);
        return status;
    }

    const Words stuck = joined(moody, {"--vary", "m.mood=6:6", "--frames", "3", "--jobs", "1", "--quiet"});
};

class AnimateEndingGLTest : public AnimateEndingTest {};

TEST_F(AnimateEndingTest, FramesThatAreNotFilesAreRefused) {
    ASSERT_EQ(::mkfifo((folder / "f_02.png").c_str(), 0600), 0);
    const Words three = joined(sun, {"--sun-time", "6:18", "--frames", "3"});
    const ProgramResult pipe = animate(three);
    EXPECT_EQ(pipe.exit_code, 1);
    EXPECT_EQ(pipe.errors, "korl: cannot write " + (folder / "f_02.png").string() +
                               ": it is a device or a pipe, which cannot be replaced; give the name of a "
                               "file\n");
    EXPECT_THAT(files(), ElementsAre("f_02.png"));
    std::filesystem::remove(folder / "f_02.png");

    for (const std::string name : {"f_03.png", "f.mp4"}) {
        std::filesystem::create_symlink("nowhere", folder / name);
        const ProgramResult link = animate(three, name == "f.mp4" ? name : "f_##.png");
        EXPECT_EQ(link.exit_code, 1);
        EXPECT_EQ(link.errors, "korl: cannot write " + (folder / name).string() +
                                   ": it is a symbolic link to nowhere, which is not there; make that file "
                                   "first, or remove the link\n");
        EXPECT_THAT(files(), ElementsAre(name));
        std::filesystem::remove(folder / name);
    }
}

TEST_F(AnimateEndingTest, AWorkerThatEndsAtOnceIsTold) {
    korl::SequenceSettings settings;
    settings.program = folder.write("program", "#!/bin/sh\nexit 3\n");
    std::filesystem::permissions(settings.program, std::filesystem::perms::owner_all);
    settings.output = folder / "f_##.png";
    korl::Shell shell;
    try {
        korl::animate(shell, settings);
        ADD_FAILURE() << "there is no worker";
    } catch (const korl::Error& error) {
        EXPECT_STREQ(error.what(), "the frames cannot be made: a worker ended with exit code 3 before it had "
                                   "the scene");
    }
}

TEST_F(AnimateEndingTest, WithoutAPlaceForTemporaryFilesItSaysSo) {
    environment = {{"TMPDIR", folder / "nowhere"}};
    const ProgramResult result = animate(joined(sun, {"--sun-time", "6:18", "--quiet"}));
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors,
              "korl: no temporary folder can be made in " + (folder / "nowhere").string() +
                  ": No such file or directory\nLet the variable TMPDIR name a folder that can "
                  "be written to.\n");
    EXPECT_THAT(files(), ElementsAre());
}

TEST_F(AnimateEndingGLTest, OneProcessMakesASequenceAtATime) {
    for (const std::string output : {"f_##.png", "f.gif"}) {
        const pid_t first = start(stuck, output); // until it is killed
        EXPECT_GT(markedProcess(), 0);
        const ProgramResult second = animate(stuck, output);
        EXPECT_EQ(second.exit_code, 1);
        EXPECT_THAT(second.errors,
                    MatchesRegex("korl: cannot make .*/f.*: it is being made by process " +
                                 std::to_string(first) +
                                 " on .+ since ....-..-.. ..:..:.. UTC; wait for its end, or write to files "
                                 "of another name\n"));
        ::kill(first, SIGKILL);
        endOf(first);
        EXPECT_THAT(files(), Contains("." + output + ".lock"));
        EXPECT_EQ(animate(joined(stuck, {"--resume"}), output).exit_code, 0); // with the marker, none hangs
        std::filesystem::remove(folder / "marker");
    }
    EXPECT_THAT(files(), ElementsAre("f.gif", "f_01.png", "f_02.png", "f_03.png"));
}

TEST_F(AnimateEndingGLTest, WhatKilledProcessesLeftIsSwept) {
    std::filesystem::create_directories(folder / "tmp/korl-sequence-killed");
    environment = {{"TMPDIR", folder / "tmp"}};
    folder.write(".korl-unfinished-1-0", "half a frame");
    EXPECT_EQ(animate(joined(sun, {"--sun-time", "6:18", "--frames", "2"})).exit_code, 0);
    EXPECT_THAT(files(), ElementsAre("f_01.png", "f_02.png", "tmp"));
    EXPECT_THAT(files("tmp"), ElementsAre());
}

TEST_F(AnimateEndingGLTest, WorkersEndWithTheirParentWhateverTheyDo) {
    const pid_t parent = start(stuck);
    const pid_t worker = markedProcess();
    ASSERT_GT(worker, 0);
    ::kill(parent, SIGKILL);
    endOf(parent);
    EXPECT_TRUE(waitUntil([&] { return hasEnded(worker); }));
}

TEST_F(AnimateEndingGLTest, AWorkerThatHangsDoesNotKeepTheProgram) {
    const pid_t parent = start(stuck);
    const pid_t worker = markedProcess();
    ASSERT_GT(worker, 0);
    ::kill(parent, SIGTERM);
    const int status = endOf(parent);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_TRUE(waitUntil([&] { return hasEnded(worker); }));
}

TEST_F(AnimateEndingGLTest, AMessageThatNobodyReadsDoesNotKeepTheProgram) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    const char byte = ' ';
    while (::write(ends[1], &byte, 1) == 1) {
    }
    ::fcntl(ends[1], F_SETFL, 0); // what waits from here on is the program
    const Words told = joined(moody, {"--vary", "m.mood=4:4", "--frames", "3", "--jobs", "1"});
    const pid_t program = start(told, "f_##.png", ends[1]);
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(folder / ".f_##.png.lock"); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // for the first message
    ::kill(program, SIGTERM);
    const int status = endOf(program);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(AnimateEndingGLTest, ClosedStandardStreamsDoNotMatter) {
    for (const std::string closed : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
        std::string command = "exec '" KORL_PROGRAM "'";
        for (const std::string& word :
             words(joined(sun, {"--sun-time", "6:18", "--frames", "2"}), "f_##.png"))
            command += " '" + word + "'";
        const ProgramResult result = korl::test::runProgram("/bin/sh", {"-c", command + " " + closed});
        EXPECT_EQ(result.exit_code, 0) << closed << result.errors;
        EXPECT_THAT(files(), ElementsAre("f_01.png", "f_02.png"));
    }
}

} // namespace
