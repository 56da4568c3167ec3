#include "shell/sequence/sequence_lock.hpp"

#include "shell/base/file_lock.hpp"
#include "shell/error.hpp"
#include "tests/support/temporary_folder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace korl {
namespace {

class SequenceLockTest : public testing::Test {
protected:
    static std::string failure(const std::filesystem::path& output) {
        try {
            const SequenceLock lock(output);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
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
        EXPECT_EQ(failure(folder / "night_##.png"), "");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(failure(output), "");
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

TEST_F(SequenceLockTest, TheOwnersWordsAreEscaped) {
    test::writeBytes(file, "\x1b[31m\nme");
    const Descriptor owner = lockLeftover(file);
    EXPECT_THAT(failure(output), testing::HasSubstr("it is being made by \\x1b[31m\\nme; wait"));
    test::writeBytes(file, "");
    EXPECT_THAT(failure(output), testing::HasSubstr("it is being made by another process; wait"));
}

TEST_F(SequenceLockTest, SaysWhyThereIsNone) {
    EXPECT_EQ(failure(folder / "nowhere/day_##.png"),
              "cannot lock " + (folder / "nowhere/day_##.png").string() + ": cannot write " +
                  (folder / "nowhere/.day_##.png.lock").string() + ": No such file or directory");
    std::filesystem::create_symlink("elsewhere", file);
    EXPECT_EQ(failure(output), "cannot lock " + output + ": cannot write " + file.string() +
                                   ": Too many levels of symbolic links");
}

} // namespace
} // namespace korl
