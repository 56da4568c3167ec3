#include "shell/base/written_text.hpp"

#include <gtest/gtest.h>
#include <string_view>
#include <unistd.h>

namespace korl {
namespace {

class WrittenTextTest : public testing::Test {
protected:
    void write(std::string_view bytes) const {
        ASSERT_EQ(::write(text.descriptor(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    const WrittenText text;
};

TEST_F(WrittenTextTest, IsEmptyAtFirst) {
    EXPECT_EQ(text.beginning(), "");
    EXPECT_EQ(text.lastLines(3), "");
}

TEST_F(WrittenTextTest, BeginsByteForByte) {
    write(std::string_view("one\0\x1b\n", 6));
    write("two");
    EXPECT_EQ(text.beginning(), std::string_view("one\0\x1b\ntwo", 9));
    write(std::string(100'000, 'x'));
    EXPECT_EQ(text.beginning().size(), 64u * 1024);
}

TEST_F(WrittenTextTest, LastLinesAreThoseThatAreNotEmpty) {
    write("one\n\ntwo \r\nthree\n \n\n");
    EXPECT_EQ(text.lastLines(1), "three");
    EXPECT_EQ(text.lastLines(2), "two\nthree");
    EXPECT_EQ(text.lastLines(3), "one\ntwo\nthree");
    EXPECT_EQ(text.lastLines(9), "one\ntwo\nthree");
    EXPECT_EQ(text.lastLines(0), "");
}

TEST_F(WrittenTextTest, ReadingDoesNotMoveTheWriter) {
    write("one\n");
    EXPECT_EQ(text.lastLines(1), "one");
    write("two\n");
    EXPECT_EQ(text.beginning(), "one\ntwo\n");
}

TEST_F(WrittenTextTest, LastLinesAreFitForATerminal) {
    write("red \x1b[31m\n");
    EXPECT_EQ(text.lastLines(1), "red \\x1b[31m");
}

TEST_F(WrittenTextTest, OfAVeryLongLineTheEndIsTaken) {
    write(std::string(10'000, 'x') + "end");
    EXPECT_EQ(text.lastLines(1), std::string(1997, 'x') + "end");
}

} // namespace
} // namespace korl
