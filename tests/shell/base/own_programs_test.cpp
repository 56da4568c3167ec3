#include "shell/base/own_programs.hpp"

#include "shell/base/error.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korl {
namespace {

TEST(OwnProgramsTest, AProgramThatIsMissingIsAnErrorThatNamesIt) {
    try {
        ownProgram("korl-nothing");
        ADD_FAILURE() << "there is no such program";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), testing::MatchesRegex(
                                      "a program that belongs to korl is missing: .*/lib/korl/korl-nothing\n"
                                      "Install korl once more, or build all of it\\."));
    }
}

} // namespace
} // namespace korl
