#include "shell/animation/worker_pool.hpp"

#include "tests/support/temporary_folder.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korl {
namespace {

/// Makes a frame of whatever it is asked for, and does not end when it has no more work.
constexpr const char* hanging_worker = R"(#!/bin/sh
take() { dd bs=65536 count=1 of=/dev/null 2>/dev/null; }
trap '' TERM
take
printf 'ready\0' >&0
take
printf 'done\0' >&0
exec sleep 60
)";

TEST(WorkerPoolTest, AWorkerThatHangsAtItsEndIsStopped) {
    const test::TemporaryFolder folder;
    WorkerPool::Settings settings;
    settings.program = folder.write("worker", hanging_worker);
    std::filesystem::permissions(settings.program, std::filesystem::perms::owner_all);
    settings.time_to_unload = std::chrono::milliseconds(50);
    std::vector<std::string> reports;
    settings.report = [&](const std::string& text) { reports.push_back(text); };
    settings.progress = [](int, int) {};
    const std::vector<FrameRequest> frames(1);
    EXPECT_TRUE(WorkerPool(settings, {}, frames).run().empty());
    EXPECT_THAT(reports, testing::ElementsAre("a worker did not end after its last frame and was stopped: a "
                                              "module may hang when it is unloaded; the frames are not "
                                              "affected"));
}

} // namespace
} // namespace korl
