#include "shell/base/child_process.hpp"

#include "tests/support/temporary_folder.hpp"

#include "shell/error.hpp"

#include <chrono>
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
        start.log = folder / "log";
        start.environment = {{"KORL_WORD", "spoken"}};
        return endText(ChildProcess(start).wait());
    }

    const test::TemporaryFolder folder;
};

TEST_F(ChildProcessTest, WorksInItsFolderWithItsLogAndEnvironment) {
    EXPECT_EQ(run("pwd; echo $KORL_WORD >&2; cat"), "exit code 0"); // nothing to read for cat
    EXPECT_EQ(test::bytesOf(folder / "log"), folder.path().string() + "\nspoken\n");
}

TEST_F(ChildProcessTest, GetsTheSharedDescriptorAsItsThird) {
    const int file = ::open(folder.write("words", "shared words").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    ProcessStart start{"/bin/sh", {"-c", "cat <&3"}};
    start.log = folder / "log";
    start.shared = file;
    EXPECT_EQ(endText(ChildProcess(start).wait()), "exit code 0");
    EXPECT_EQ(test::bytesOf(folder / "log"), "shared words");
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

} // namespace
} // namespace korl
