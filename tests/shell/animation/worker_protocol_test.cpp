#include "shell/animation/worker_protocol.hpp"

#include "shell/base/error.hpp"

#include <gtest/gtest.h>

namespace korl {
namespace {

TEST(WorkerProtocolTest, MessagesComeAsTheyWereSent) {
    auto [here, there] = MessageSocket::makePair();
    const std::vector<Message> messages{
        {"done"}, {"", "", "a\nb"}, {"sun", ""}, {std::string(50'000, 'x'), "y"}};
    for (const Message& message : messages)
        EXPECT_TRUE(here.send(message));
    for (const Message& message : messages)
        EXPECT_EQ(there.receive(), message);
    here.close();
    EXPECT_EQ(there.receive(), std::nullopt);
    EXPECT_FALSE(there.send({"too late"}));
}

TEST(WorkerProtocolTest, RefusesWhatItCannotCarry) {
    auto [here, there] = MessageSocket::makePair();
    EXPECT_THROW(here.send({std::string("a\0b", 3)}), Error);
    EXPECT_THROW(here.send({std::string(5'000'000, 'x')}), Error);
}

TEST(WorkerProtocolTest, JobsAndRequestsAreReadAsTheyWereWritten) {
    const WorkerJob job{"scene.json", {64, 48, RenderPath::both}, "left", 50, {"a.so", "b.so"}};
    const WorkerJob read_job = WorkerJob::from(job.message());
    EXPECT_EQ(read_job.message(), job.message());
    EXPECT_EQ(read_job.picture.path, RenderPath::both);
    EXPECT_EQ(read_job.picture.height, 48);
    EXPECT_EQ(read_job.plugins, job.plugins);

    const FrameRequest request{7, "7.png", "ff", "", {{"sun", "timeofday", "6"}, {"sun", "Intensity", "1"}}};
    const FrameRequest read_request = FrameRequest::from(request.message());
    EXPECT_EQ(read_request.message(), request.message());
    EXPECT_EQ(read_request.number, 7);
    EXPECT_EQ(read_request.values.at(1).parameter, "Intensity");
}

TEST(WorkerProtocolTest, RefusesWhatIsNoJobAndNoRequest) {
    for (const Message& message : std::vector<Message>{
             {}, {"7"}, {"seven", "7.png", "ff", ""}, {"7", "7.png", "ff", "", "sun", "timeofday"}})
        EXPECT_THROW(FrameRequest::from(message), Error);
    for (const Message& message :
         std::vector<Message>{{}, {"s", "1", "1", "0", ""}, {"s", "1", "1x", "0", "", "0"}})
        EXPECT_THROW(WorkerJob::from(message), Error);
}

} // namespace
} // namespace korl
