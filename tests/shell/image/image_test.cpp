#include "shell/image/image.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>
#include <string>

namespace korl {
namespace {

using korl::test::errorOf;

/// A picture in which each byte tells where it is.
Image numbered(int width, int height, int first) {
    Image image{width, height, {}};
    for (int i = 0; i < width * height * 4; ++i)
        image.pixels.push_back(static_cast<std::uint8_t>(first + i));
    return image;
}

TEST(ImageTest, SideBySideKeepsEveryPixel) {
    const Image left = numbered(2, 3, 0), right = numbered(1, 3, 100);
    const Image both = sideBySide(left, right);
    EXPECT_EQ(both.width, 3);
    EXPECT_EQ(both.height, 3);
    const std::vector<std::uint8_t> expected{0,  1,  2,  3,  4,  5,  6,  7,  100, 101, 102, 103, //
                                             8,  9,  10, 11, 12, 13, 14, 15, 104, 105, 106, 107, //
                                             16, 17, 18, 19, 20, 21, 22, 23, 108, 109, 110, 111};
    EXPECT_EQ(both.pixels, expected);
}

TEST(ImageTest, DifferentHeightsDoNotStandBesideEachOther) {
    EXPECT_EQ(errorOf([] { sideBySide(numbered(2, 3, 0), numbered(2, 4, 0)); }),
              "a picture of 2 x 3 pixels can't stand beside one of 2 x 4: their heights must be equal");
}

TEST(ImageTest, DamagedPicturesAreRefused) {
    struct Row {
        int width, height;
        std::size_t byte_count;
        std::string message;
    };
    const std::string empty = " pixels has no content; its width and height must be 1 or more";
    const std::vector<Row> rows{
        {0, 0, 0, "a picture of 0 x 0" + empty},
        {0, 2, 0, "a picture of 0 x 2" + empty},
        {-1, 1, 0, "a picture of -1 x 1" + empty},
        {1, -1, 0, "a picture of 1 x -1" + empty},
        {2, 2, 15, "a picture of 2 x 2 pixels must have 16 bytes, but this one has 15"},
        {1, 1, 5, "a picture of 1 x 1 pixels must have 4 bytes, but this one has 5"},
    };
    for (const Row& row : rows) {
        const Image image{row.width, row.height, std::vector<std::uint8_t>(row.byte_count)};
        EXPECT_EQ(errorOf([&] { validate(image); }), row.message);
        EXPECT_EQ(errorOf([&] { sideBySide(image, numbered(1, 1, 0)); }), row.message);
        EXPECT_EQ(errorOf([&] { sideBySide(numbered(1, 1, 0), image); }), row.message);
    }
    EXPECT_EQ(errorOf([] { validate(numbered(3, 2, 0)); }), "no error");
}

} // namespace
TEST(ImageTest, StraightAlphaIsDividedOutAndRounded) {
    Image image{3, 2, {1, 2, 3, 0, 10, 51, 102, 102, 3, 1, 0, 7, 8, 9, 10, 255, 1, 2, 3, 254, 90, 80, 0, 80}};
    korl::makeAlphaStraight(image);
    EXPECT_EQ(image.pixels, (std::vector<std::uint8_t>{
                                0, 0, 0,  0,   25, 128, 255, 102, 109, 36,  0, 7,
                                8, 9, 10, 255, 1,  2,   3,   254, 255, 255, 0, 80})); // never above white
}

} // namespace korl
