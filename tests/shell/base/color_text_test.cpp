#include "shell/base/color_text.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>

namespace {

using korl::parseColor;
using Orvid::rgba_float_t;

TEST(ColorText, ReadsHexadecimalAndNumbers) {
    EXPECT_EQ(parseColor("#ff0033"), (rgba_float_t{1, 0, 51 / 255.0f, 1}));
    EXPECT_EQ(parseColor("#00FF0080"), (rgba_float_t{0, 1, 0, 128 / 255.0f}));
    EXPECT_EQ(parseColor("0.1 0.2 0.3"), (rgba_float_t{0.1f, 0.2f, 0.3f, 1}));
    EXPECT_EQ(parseColor("0.1 0.2 0.3 0"), (rgba_float_t{0.1f, 0.2f, 0.3f, 0}));
}

TEST(ColorText, RefusesEverythingElse) {
    for (const char* const text : {"", "red", "#", "#fff", "#ff00331", "#ff003g", "#+f0033", "1 1",
                                   "1 1 1 1 1", "2 0 0", "-1 0 0", "nan 0 0", "0 0 0 1.5"}) {
        try {
            parseColor(text);
            ADD_FAILURE() << "taken: " << text;
        } catch (const korl::Error& error) {
            EXPECT_EQ(
                error.what(),
                "\"" + std::string(text) +
                    "\" is not a colour; write \"#rrggbb\", \"#rrggbbaa\", or three or four numbers from 0 "
                    "to 1 such as \"0.1 0.1 0.12\"");
        }
    }
}

} // namespace
