#include "shell/image/xpm.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Xpm, Decodes) {
    const char* const lines[] = {"2 2 3 2", "   c None", "AA c #FF8000", "B. c #0000ff", "AA  ", "B.AA"};
    const korl::Image image = korl::decodeXpm(lines);
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.pixels,
              (std::vector<std::uint8_t>{255, 128, 0, 255, 0, 0, 0, 0, 0, 0, 255, 255, 255, 128, 0, 255}));
}

template <std::size_t N>
std::string errorOf(const char* const (&lines)[N]) {
    return korl::test::errorOf([&] { korl::decodeXpm(lines); });
}

TEST(Xpm, WhatIsWrongIsTold) {
    EXPECT_EQ(errorOf({"2 2 x"}),
              "the XPM image has the header \"2 2 x\", expected \"WIDTH HEIGHT COLORS CHARACTERS\"");
    EXPECT_EQ(errorOf({"0 2 1 1"}),
              "the XPM image has the header \"0 2 1 1\", expected \"WIDTH HEIGHT COLORS CHARACTERS\"");
    EXPECT_EQ(errorOf({"1 1 1 1", "A c red", "A"}),
              "the XPM image has the colour line \"A c red\", expected \"KEY c #RRGGBB\" or \"KEY c None\"");
    EXPECT_EQ(errorOf({"1 1 1 1", "A", "A"}),
              "the XPM image has the colour line \"A\", expected \"KEY c #RRGGBB\" or \"KEY c None\"");
    EXPECT_EQ(errorOf({"2 1 1 1", "A c #000000", "A"}),
              "the XPM image has a row of 1 characters, expected 2");
    EXPECT_EQ(errorOf({"1 1 1 1", "A c #000000", "B"}),
              "the XPM image uses \"B\", which is not one of its colours");
}

} // namespace
