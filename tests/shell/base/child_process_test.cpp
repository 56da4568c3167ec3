#include "shell/base/child_process.hpp"
#include "shell/base/written_text.hpp"

#include "tests/support/temporary_folder.hpp"

#include "shell/base/error.hpp"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace korl {
namespace {

class ChildProcessTest : public testing::Test {
protected:
    /// How a shell script ends.
    std::string run(const std::string& script) const {
        ProcessStart start{"/bin/sh", {"-c", script}};
        start.folder = folder.path();
        start.output = log.descriptor();
        start.environment = {{"KORL_WORD", "spoken"}};
        return endText(ChildProcess(start).wait());
    }

    const test::TemporaryFolder folder;
    const WrittenText log;
};

TEST_F(ChildProcessTest, WorksInItsFolderWithItsLogAndEnvironment) {
    EXPECT_EQ(run("pwd; echo $KORL_WORD >&2; cat"), "exit code 0"); // nothing to read for cat
    EXPECT_EQ(log.beginning(), folder.path().string() + "\nspoken\n");
}

TEST_F(ChildProcessTest, GetsTheSharedDescriptorAsItsThird) {
    const int file = ::open(folder.write("words", "shared words").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    ProcessStart start{"/bin/sh", {"-c", "cat <&3"}};
    start.output = log.descriptor();
    start.shared = file;
    EXPECT_EQ(endText(ChildProcess(start).wait()), "exit code 0");
    EXPECT_EQ(log.beginning(), "shared words");
    ::close(file);
    EXPECT_EQ(run("cat <&3"), "exit code 2") << "without one there is none";
}

TEST_F(ChildProcessTest, PutsItsOutputsOnADescriptor) {
    const int file = ::open((folder / "outputs").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ProcessStart start{"/bin/sh", {"-c", "echo out; echo err >&2"}};
    start.output = file;
    EXPECT_EQ(endText(ChildProcess(start).wait()), "exit code 0");
    ::close(file);
    EXPECT_EQ(test::bytesOf(folder / "outputs"), "out\nerr\n");
}

TEST_F(ChildProcessTest, TellsHowItEnded) {
    EXPECT_EQ(run("exit 3"), "exit code 3");
    EXPECT_EQ(run("kill -SEGV $$"), "signal 11 (Segmentation fault)");
}

TEST_F(ChildProcessTest, AProgramThatIsNotThereIsAnError) {
    try {
        const ChildProcess process({"/nowhere/korl", {}});
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "cannot start the program /nowhere/korl: No such file or directory");
    }
}

TEST_F(ChildProcessTest, EndsWithItsOwner) {
    const auto start = std::chrono::steady_clock::now();
    {
        ChildProcess process({"sleep", {"60"}});
        EXPECT_EQ(process.poll(), std::nullopt);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST_F(ChildProcessTest, IsWaitedForNoLongerThanAsked) {
    ChildProcess sleeper({"sleep", {"60"}});
    EXPECT_EQ(sleeper.waitFor(std::chrono::milliseconds(20)), std::nullopt);
    sleeper.kill();
    const std::optional<int> status = sleeper.waitFor(std::chrono::minutes(1));
    ASSERT_TRUE(status);
    EXPECT_EQ(endText(*status), "signal 9 (Killed)");
}

TEST_F(ChildProcessTest, IsKilledWhereItDoesNotEndWhenAsked) {
    const std::string ready = folder / "ready";
    ChildProcess deaf({"sh", {"-c", "trap '' TERM; : > '" + ready + "'; exec sleep 60"}});
    while (!std::filesystem::exists(ready))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const auto start = std::chrono::steady_clock::now();
    deaf.end(std::chrono::milliseconds(50));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST_F(ChildProcessTest, IsInAGroupOfItsOwn) {
    // The group's number is the sixth field of /proc/PID/stat's, the fifth behind the number itself.
    EXPECT_EQ(run("set -- $(cat /proc/$$/stat); test $1 = $5"), "exit code 0");
}

TEST_F(ChildProcessTest, IsKilledWithWhatItHasStarted) {
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ProcessStart start{"/bin/sh", {"-c", "sleep 60 & echo started >&2; wait"}};
    start.output = ends[1];
    ChildProcess process(start);
    ::close(ends[1]);
    char word[100];
    EXPECT_GT(::read(ends[0], word, sizeof word), 0);
    process.kill();
    EXPECT_EQ(::read(ends[0], word, sizeof word), 0) << "nobody holds the other end any more";
    ::close(ends[0]);
}

TEST_F(ChildProcessTest, TakesDescriptorsThatAreThoseOfStandardStreams) {
    const auto runWithout = [&] {
        const std::string word = folder.write("word", "shared");
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
        ProcessStart start{"/bin/sh", {"-c", "test \"$(cat <&3)\" = shared && cat >&2"}};
        start.shared = ::open(word.c_str(), O_RDONLY | O_CLOEXEC); // 0, the place of `input`
        start.input = ::open(folder.write("input", "input").c_str(), O_RDONLY | O_CLOEXEC);
        ::_exit(start.shared == 0 && endText(ChildProcess(start).wait()) == "exit code 0" ? 0 : 1);
    };
    EXPECT_EXIT(runWithout(), testing::ExitedWithCode(0), "^input$");
}

TEST_F(ChildProcessTest, AnEndThatTheSystemDoesNotTellIsNoSuccess) {
    std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(run("exit 0"), "an unknown exit code");
    ChildProcess polled({"true", {}});
    EXPECT_EQ(polled.waitFor(std::chrono::minutes(1)), unknown_end);
    std::signal(SIGCHLD, SIG_DFL);
}

} // namespace
} // namespace korl
