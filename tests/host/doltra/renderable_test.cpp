#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <doltra/vlight_source.hpp>

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using Qelt::RenderAble;
using Qelt::VRenderContext;

struct Ground : RenderAble {
    Ground() : RenderAble("ground", 0, {}) {}
    bool render(VRenderContext&) override {
        if (fails)
            throw std::runtime_error("no grass");
        return true;
    }
    bool getBoundingBall(Orvid::Ball& ball) const override {
        ball = {{1, 2, 3}, 4};
        return true;
    }
    bool fails = false;
};

TEST(RenderAble, BaseTakesPartByDoingNothing) {
    RenderAble object("o", 0, {});
    VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_FALSE(object.render(context));
    EXPECT_FALSE(object.safe_render(context));
    object.illuminate(context);
    EXPECT_TRUE(context.enabledLightSources().empty());
    EXPECT_TRUE(object.environment_render(context));
    EXPECT_TRUE(object.environment_render(context, 0, 1));
    Orvid::Ball ball{{0, 0, 0}, 42};
    EXPECT_FALSE(object.getBoundingBall(ball));
    EXPECT_FALSE(object.getTouchableBoundingBall(ball));
    EXPECT_EQ(ball.radius, 42);
    EXPECT_EQ(object.getSensorInfo(), nullptr);
}

TEST(RenderAble, TouchableBallIsTheBoundingBall) {
    const Ground ground;
    Orvid::Ball ball;
    EXPECT_TRUE(ground.getTouchableBoundingBall(ball));
    EXPECT_EQ(ball, (Orvid::Ball{{1, 2, 3}, 4}));
}

TEST(RenderAble, SafeRenderTimesAndReportsFailures) {
    Ground ground;
    VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_EQ(ground.getLastRenderTime(), 0);
    EXPECT_TRUE(ground.safe_render(context));
    EXPECT_GT(ground.getLastRenderTime(), 0);
    ground.fails = true;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(ground.safe_render(context));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "RenderAble: rendering ground failed: no grass\n");
}

TEST(VLightSource, PassesItsPriorityOnAndKeepsAnEmptyState) {
    const Qelt::VLightSource light("light", -199990, {});
    EXPECT_EQ(light.priority(), -199990);
    EXPECT_EQ(light.Name(), "light");
    const auto pool = Tessan::makeStrong<Qelt::ValuePool>();
    EXPECT_TRUE(light.myState(*pool.get()));
}

} // namespace
