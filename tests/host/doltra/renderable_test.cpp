#include "tests/support/captured_trace.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <doltra/vlight_source.hpp>

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using korl::test::traceOf;
using Qelt::RenderAble;
using Qelt::VRenderContext;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Draws as it is told.
struct Ground : RenderAble {
    Ground() : RenderAble("ground", 0, {}) {}
    bool render(VRenderContext&) override {
        const auto start = Clock::now();
        while (secondsSince(start) < seconds) {
        }
        if (at_end)
            at_end();
        return draws;
    }
    bool getBoundingBall(Orvid::Ball& ball) const override {
        ball = {{1, 2, 3}, 4};
        return true;
    }
    bool environment_render(VRenderContext&) const override {
        ++set_up;
        return draws;
    }
    using RenderAble::environment_render;

    double seconds = 0;
    std::function<void()> at_end;
    bool draws = true;
    mutable int set_up = 0;
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

TEST(RenderAble, TimedEnvironmentIsTheSameAtAnyTime) {
    Ground ground;
    VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_TRUE(ground.environment_render(context, 0, 1));
    EXPECT_EQ(ground.set_up, 1);
    ground.draws = false;
    EXPECT_FALSE(ground.environment_render(context, 0, 1));
}

TEST(RenderAble, TouchableBallIsNoneWhereThereIsNoBoundingBall) {
    struct Flat : RenderAble {
        Flat() : RenderAble("flat", 0, {}) {}
        bool getBoundingBall(Orvid::Ball&) const override { return false; }
    };
    Orvid::Ball ball{{1, 2, 3}, 4};
    EXPECT_FALSE(Flat().getTouchableBoundingBall(ball));
    EXPECT_EQ(ball, (Orvid::Ball{{1, 2, 3}, 4}));
}

TEST(RenderAble, SafeRenderGivesTheSecondsOfTheLatestRendering) {
    Ground ground;
    VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_EQ(ground.getLastRenderTime(), 0);
    const auto expectTime = [&](double seconds, bool drawn) {
        ground.seconds = seconds;
        const auto start = Clock::now();
        EXPECT_EQ(ground.safe_render(context), drawn);
        const double at_most = secondsSince(start);
        EXPECT_GE(ground.getLastRenderTime(), seconds);
        EXPECT_LE(ground.getLastRenderTime(), at_most);
        EXPECT_GT(ground.getLastRenderTime(), 0);
    };
    expectTime(0.02, true);
    expectTime(0, true); // what went before is not added
    ground.draws = false;
    expectTime(0.001, false);
    ground.at_end = [] { throw 42; };
    testing::internal::CaptureStdout();
    expectTime(0.002, false); // one that fails takes its time too
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();
}

TEST(RenderAble, SafeRenderReportsFailures) {
    Ground ground;
    VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    struct Case {
        std::function<void()> fail;
        const char* report;
    };
    const Case cases[] = {
        {[] { throw std::runtime_error("no grass"); }, "RenderAble: rendering ground failed: no grass\n"},
        {[] { throw std::length_error("too long"); }, "RenderAble: rendering ground failed: too long\n"},
        {[] { throw 42; }, "RenderAble: rendering ground failed for an unknown reason\n"},
        {[] { throw "text"; }, "RenderAble: rendering ground failed for an unknown reason\n"},
    };
    for (const Case& failing : cases) {
        ground.at_end = failing.fail;
        EXPECT_EQ(traceOf(0, [&] { EXPECT_FALSE(ground.safe_render(context)); }), failing.report);
        EXPECT_EQ(traceOf(-1, [&] { EXPECT_FALSE(ground.safe_render(context)); }), "");
    }
}

TEST(VLightSource, KeepsWhatItIsGivenAndAnEmptyState) {
    Qelt::VCreationPreferences preferences;
    preferences.prefer("Intensity", "0.25");
    const Qelt::VLightSource light("lamp", -199990, preferences);
    EXPECT_EQ(light.priority(), -199990);
    EXPECT_EQ(light.Name(), "lamp");
    EXPECT_EQ(*light.preferences().find("Intensity"), "0.25");
    const auto pool = Tessan::makeStrong<Qelt::ValuePool>();
    EXPECT_TRUE(light.myState(*pool));
    EXPECT_EQ(light.myState(*pool), light.myState(*pool));
}

} // namespace
