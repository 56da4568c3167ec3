#include "shell/animation/output_files.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>
#include <string>

namespace korl {
namespace {

TEST(OutputFilesTest, TheEndingTellsTheKind) {
    EXPECT_EQ(sequenceKind("day_##.png"), SequenceKind::pictures);
    EXPECT_EQ(sequenceKind("DAY_##.PNG"), SequenceKind::pictures);
    EXPECT_EQ(sequenceKind("some.folder/day.mp4"), SequenceKind::mp4);
    EXPECT_EQ(sequenceKind("day.gif"), SequenceKind::gif);
    for (const std::string name : {"day", "day.avi", "day.png/", ".mp4", ""})
        try {
            sequenceKind(name);
            ADD_FAILURE() << name;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(),
                      "a sequence is written to pictures such as \"day_####.png\" or to a film such as "
                      "\"day.mp4\" or \"day.gif\", found \"" +
                          name + "\"");
        }
}

TEST(OutputFilesTest, ThePatternTakesTheNumber) {
    EXPECT_EQ(FrameNames("day_####.png").file(7), "day_0007.png");
    EXPECT_EQ(FrameNames("#.png").file(7), "7.png");
    EXPECT_EQ(FrameNames("#.png").file(12), "12.png");
    EXPECT_EQ(FrameNames("##").file(12), "12");
    EXPECT_EQ(FrameNames("a/b#b/c##d.png").file(3), "a/b#b/c03d.png");
    EXPECT_EQ(FrameNames("c##d.png").digits(), 2);
}

TEST(OutputFilesTest, RefusesAPatternWithoutOnePlace) {
    for (const std::string name : {"day.png", "day_#_#.png", "##_##.png"})
        try {
            const FrameNames names("folder#/" + name);
            ADD_FAILURE() << name;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(),
                      "the names of a sequence's pictures have one place for the number, written as # "
                      "characters, such as \"day_####.png\"; found \"" +
                          name + "\"");
        }
}

} // namespace
} // namespace korl
