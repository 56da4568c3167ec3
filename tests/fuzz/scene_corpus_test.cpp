#include "tests/fuzz/scene_file_fuzzer.hpp"
#include "tests/support/temporary_folder.hpp"

#include <chrono>
#include <gtest/gtest.h>

namespace {

TEST(SceneCorpus, EveryFileIsReadOrRefusedWithinASecond) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KORL_CORPUS)) {
        SCOPED_TRACE(entry.path());
        const std::string bytes = korl::test::bytesOf(entry.path());
        const auto start = std::chrono::steady_clock::now();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
        ++files;
    }
    EXPECT_GT(files, 10u);
}

} // namespace
