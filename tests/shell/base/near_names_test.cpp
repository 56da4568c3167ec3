#include "shell/base/near_names.hpp"

#include <gtest/gtest.h>

namespace {

using korl::editDistance;
using korl::nearNames;

TEST(EditDistance, CountsChanges) {
    EXPECT_EQ(editDistance("", ""), 0u);
    EXPECT_EQ(editDistance("sun", "sun"), 0u);
    EXPECT_EQ(editDistance("", "sun"), 3u);
    EXPECT_EQ(editDistance("sun", ""), 3u);
    EXPECT_EQ(editDistance("sin", "sun"), 1u);
    EXPECT_EQ(editDistance("su", "sun"), 1u);
    EXPECT_EQ(editDistance("sunn", "sun"), 1u);
    EXPECT_EQ(editDistance("snu", "sun"), 1u); // neighbours swapped
    EXPECT_EQ(editDistance("SUN", "sun"), 0u); // upper and lower case are the same
    EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
}

TEST(NearNames, GuessesAndLists) {
    EXPECT_EQ(nearNames("Torhc", {"Sun", "Torch"}, ""), "did you mean \"Torch\"? There are: Sun, Torch.");
    EXPECT_EQ(nearNames("color", {"Color"}, ""), "did you mean \"Color\"? There are: Color.");
    EXPECT_EQ(nearNames("Lantern", {"Sun", "Torch"}, ""), "there are: Sun, Torch.");
    EXPECT_EQ(nearNames("Sun", {}, "nothing is there"), "nothing is there");
}

TEST(NearNames, LongListsAreCut) {
    std::vector<std::string> many;
    many.reserve(30);
    for (int i = 0; i < 30; ++i)
        many.push_back("n" + std::to_string(i));
    const std::string text = nearNames("lamp", many, "");
    EXPECT_TRUE(text.ends_with("n18, n19, and 10 more.")) << text;
}

} // namespace
