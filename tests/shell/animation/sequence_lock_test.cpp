#include "shell/animation/sequence_lock.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_lock.hpp"
#include "tests/support/error_of.hpp"
#include "tests/support/temporary_folder.hpp"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace korl {
namespace {

class SequenceLockTest : public testing::Test {
protected:
    static std::string failure(const std::filesystem::path& output) {
        return test::errorOf([&] { const SequenceLock lock(output); });
    }

    /// Leaves an unlocked file in a folder that everybody may write to.
    void leaveForOthers(unsigned rights) const {
        test::writeBytes(file, "process 1 on larch since 2026-04-12 08:30:00 UTC");
        std::filesystem::permissions(file, static_cast<std::filesystem::perms>(rights));
        std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    }

    /// In a process of its own, which can give up the rights of the administrator.
    static bool holdsForPlainUser(const std::function<bool()>& condition) {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit((::geteuid() != 0 || ::setuid(65534) == 0) && condition() ? 0 : 1);
        int status = -1;
        return ::waitpid(child, &status, 0) == child && status == 0;
    }

    const test::TemporaryFolder folder;
    const std::string output = folder / "day_##.png";
    const std::filesystem::path file = folder / ".day_##.png.lock";
};

TEST_F(SequenceLockTest, KeepsOthersFromTheSequenceAndSaysWhoHasIt) {
    {
        const SequenceLock lock(output);
        EXPECT_TRUE(lock.isHeld());
        EXPECT_THAT(failure(output),
                    testing::MatchesRegex("cannot make .*/day_##\\.png: it is being made by process " +
                                          std::to_string(::getpid()) +
                                          " on .+ since ....-..-.. ..:..:.. UTC; wait for its end, or "
                                          "write to files of another name"));
        EXPECT_EQ(failure(folder / "night_##.png"), "no error");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(failure(output), "no error");
}

TEST_F(SequenceLockTest, WhatAKilledProcessLeftKeepsNobody) {
    test::writeBytes(file,
                     "process 1 on larch since 2026-04-12 08:30:00 UTC, and a much longer text than usual" +
                         std::string(200, '.'));
    const SequenceLock lock(output);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_THAT(test::bytesOf(file), testing::StartsWith("process " + std::to_string(::getpid()) + " on "));
    EXPECT_THAT(test::bytesOf(file), testing::EndsWith(" UTC"));
}

TEST_F(SequenceLockTest, WhatAnotherUserLeftKeepsNobodyWhoCanReadIt) {
    leaveForOthers(0444);
    EXPECT_TRUE(holdsForPlainUser([this] {
        const SequenceLock lock(output);
        return lock.isHeld() && test::bytesOf(file).starts_with("process " + std::to_string(::getpid()));
    }));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(SequenceLockTest, ALockThatIsClosedToThisUserIsToldWithWhatToDo) {
    leaveForOthers(0);
    EXPECT_TRUE(holdsForPlainUser([this] {
        return failure(output) ==
               "cannot lock " + output + ": cannot write " + file.string() +
                   ": Permission denied; remove that file if nobody is making the sequence";
    }));
}

TEST_F(SequenceLockTest, TheOwnersWordsAreEscaped) {
    test::writeBytes(file, "\x1b[31m\nme");
    const Descriptor owner = lockLeftover(file);
    EXPECT_THAT(failure(output), testing::HasSubstr("it is being made by \\x1b[31m\\nme; wait"));
    test::writeBytes(file, "");
    EXPECT_THAT(failure(output), testing::HasSubstr("it is being made by another process; wait"));
}

TEST_F(SequenceLockTest, SaysWhyThereIsNone) {
    EXPECT_EQ(failure(folder / "nowhere\n/day_##.png"),
              "cannot lock " + (folder / "nowhere").string() + "\\n/day_##.png: cannot write " +
                  (folder / "nowhere").string() + "\\n/.day_##.png.lock: No such file or directory");
    std::filesystem::create_symlink("elsewhere", file);
    EXPECT_EQ(failure(output),
              "cannot lock " + output + ": cannot write " + file.string() +
                  ": Too many levels of symbolic links; remove that file if nobody is making "
                  "the sequence");
}

} // namespace
} // namespace korl
