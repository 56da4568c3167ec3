#include "shell/base/printable.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korl {
namespace {

TEST(PrintableTest, EscapesWhatATerminalWouldObeyAndNothingElse) {
    struct Case {
        std::string text, shown;
    };
    const std::vector<Case> cases{
        {"", ""},
        {"Torch 2", "Torch 2"},
        {"a\tb", "a\tb"},
        {"a\nb", "a\\nb"},
        {"a\rb", "a\\x0db"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"\x1b[31mred", "\\x1b[31mred"},
        {"\x7f", "\\x7f"},
        {"\xc2\x80\xc2\x9b\xc2\x9f", "\\u0080\\u009b\\u009f"},
        {"\xc2\xa0", "\xc2\xa0"}, // the first one that is not C1
        {"Stra\xc3\x9f\x65 \xe2\x82\xac \xf0\x9f\x92\xa1", "Stra\xc3\x9f\x65 \xe2\x82\xac \xf0\x9f\x92\xa1"},
        {"\x9b", "\\x9b"},                            // C1 as a single byte
        {"\xc3", "\\xc3"},                            // cut off
        {"\xe2\x82", "\\xe2\\x82"},                   // cut off
        {"\xc0\x9b", "\\xc0\\x9b"},                   // overlong
        {"\xe0\x82\x9b", "\\xe0\\x82\\x9b"},          // overlong
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},          // a surrogate
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, // beyond Unicode
        {"\xe2(x", "\\xe2(x"},                        // what follows a broken character is whole again
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(printable(text), shown);
}

TEST(PrintableTest, KeepsTheLinesOfALongerText) {
    EXPECT_EQ(printableLines("a\nb\r\n\x1b"
                             "c"),
              "a\nb\\x0d\n\\x1bc");
}

} // namespace
} // namespace korl
