#include "shell/base/temporary_folder.hpp"

#include "shell/base/error.hpp"
#include "tests/support/error_of.hpp"
#include "tests/support/temporary_folder.hpp"

#include <cstdlib>
#include <exception>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/resource.h>

namespace korl {
namespace {

namespace fs = std::filesystem;

/// Lets temporary files go to a folder of the test's own.
class SequenceFolderTest : public testing::Test {
protected:
    SequenceFolderTest() {
        if (const char* const former = std::getenv("TMPDIR"))
            my_former = former;
        ::setenv("TMPDIR", place.path().c_str(), 1);
    }
    ~SequenceFolderTest() override {
        if (my_former)
            ::setenv("TMPDIR", my_former->c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }

    static std::string failure() {
        return test::errorOf([&] { const TemporaryFolder folder; });
    }

    const test::TemporaryFolder place;

private:
    std::optional<std::string> my_former;
};

TEST_F(SequenceFolderTest, GoesWithItsContent) {
    {
        const TemporaryFolder folder;
        EXPECT_EQ(folder.path().parent_path(), place.path());
        test::writeBytes(folder.path() / "file", "text");
    }
    EXPECT_TRUE(fs::is_empty(place.path()));
}

TEST_F(SequenceFolderTest, SweepsThoseOfKilledProcessesAndNoOthers) {
    fs::create_directories(place / "korl-sequence-killed/more");
    place.write("korl-sequence-killed/more/file", "text");
    fs::create_directory(place / "korl-other");
    const TemporaryFolder of_the_living;
    const TemporaryFolder folder;
    EXPECT_FALSE(fs::exists(place / "korl-sequence-killed"));
    EXPECT_TRUE(fs::exists(of_the_living.path()));
    EXPECT_TRUE(fs::exists(place / "korl-other"));
}

TEST_F(SequenceFolderTest, SaysWhatToDoWhereThereIsNoPlace) {
    const std::string remedy = "\nLet the variable TMPDIR name a folder that can be written to.";
    const std::string nowhere = (place / "nowhere").string();
    ::setenv("TMPDIR", nowhere.c_str(), 1);
    EXPECT_EQ(failure(),
              "no temporary folder can be made in " + nowhere + ": No such file or directory" + remedy);
    const std::string file = place.write("file", "");
    ::setenv("TMPDIR", file.c_str(), 1);
    EXPECT_EQ(failure(), "no temporary folder can be made in " + file + ": Not a directory" + remedy);
    ::setenv("TMPDIR", "/proc", 1); // where nobody can make a folder, not even root
    EXPECT_THAT(failure(), testing::StartsWith("no temporary folder can be made in /proc: "));
}

TEST_F(SequenceFolderTest, LeavesNothingWhereItCannotBeOpened) {
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    std::exception_ptr thrown; // looked at later, since sanitizers need descriptors for that
    try {
        const TemporaryFolder folder;
    } catch (...) {
        thrown = std::current_exception();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
    ASSERT_TRUE(thrown);
    const std::string message = [&] {
        try {
            std::rethrow_exception(thrown);
        } catch (const Error& error) {
            return std::string(error.what());
        }
    }();
    EXPECT_THAT(message, testing::StartsWith("no temporary folder can be made in " + place.path().string() +
                                             ": Too many open files\n"));
    EXPECT_TRUE(fs::is_empty(place.path()));
}

} // namespace
} // namespace korl
