#include "shell/animation/frame_stamp.hpp"

#include "tests/support/temporary_folder.hpp"

#include "shell/image/png.hpp"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korl {
namespace {

class FrameStampTest : public testing::Test {
protected:
    std::string pngWith(const std::vector<std::pair<std::string, std::string>>& texts) const {
        Image image{5, 4, std::vector<std::uint8_t>(80, 77)};
        const auto bytes = encodePng(image, texts);
        return {bytes.begin(), bytes.end()};
    }
    std::string stampOf(const std::string& bytes) const { return frameStamp(folder.write("f.png", bytes)); }

    const test::TemporaryFolder folder;
};

TEST_F(FrameStampTest, IsReadFromTheFile) {
    EXPECT_EQ(stampOf(pngWith({{"Comment", "6 h"}, {frame_stamp_keyword, "0123"}, {"Korl", "x"}})), "0123");
    EXPECT_EQ(stampOf(pngWith({{"Comment", frame_stamp_keyword}})), "");
    EXPECT_EQ(stampOf(pngWith({})), "");
    EXPECT_EQ(stampOf(""), "");
    EXPECT_EQ(stampOf("Korl-Frame"), "");
    EXPECT_EQ(frameStamp(folder / "nowhere.png"), "");
    EXPECT_EQ(frameStamp(folder.path()), "");
}

TEST_F(FrameStampTest, AFileThatIsNotWholeHasNone) {
    const std::string whole = pngWith({{frame_stamp_keyword, "0123"}});
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(stampOf(whole.substr(0, size)), "") << size;
    for (std::size_t damaged = 0; damaged < whole.size(); ++damaged) {
        std::string bytes = whole;
        bytes[damaged] = static_cast<char>(bytes[damaged] ^ 4);
        EXPECT_EQ(stampOf(bytes), "") << damaged;
    }
}

} // namespace
} // namespace korl
