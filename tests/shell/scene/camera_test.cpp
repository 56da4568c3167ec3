#include "shell/scene/camera.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace korl {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

Camera cameraAt(const glm::dvec3& position, const glm::dvec3& target) {
    Camera camera;
    camera.position = position;
    camera.target = target;
    return camera;
}

void expectNear(const glm::dvec3& actual, const glm::dvec3& expected, double tolerance = 1e-12) {
    EXPECT_LT(glm::distance(actual, expected), tolerance) << actual.x << ' ' << actual.y << ' ' << actual.z;
}

glm::dvec3 inEyeSpace(const Camera& camera, const glm::dvec3& place) {
    return glm::dvec3(camera.view() * glm::dvec4(place, 1));
}

glm::dvec3 inPicture(const Camera& camera, double aspect, const Ball& ball, const glm::dvec3& place) {
    const glm::dvec4 clip = camera.projection(aspect, ball) * camera.view() * glm::dvec4(place, 1);
    return glm::dvec3(clip) / clip.w;
}

/// Points all over a ball's surface.
std::vector<glm::dvec3> pointsOn(const Ball& ball) {
    std::vector<glm::dvec3> points;
    for (int i = 0; i <= 90; ++i) {
        for (int j = 0; j < 180; ++j) {
            const double polar = std::numbers::pi * i / 90, azimuth = std::numbers::pi * j / 90;
            points.push_back(ball.center + ball.radius * glm::dvec3(std::sin(polar) * std::cos(azimuth),
                                                                    std::sin(polar) * std::sin(azimuth),
                                                                    std::cos(polar)));
        }
    }
    return points;
}

/// How far the ball reaches in the picture at most, each direction measured in halves of the picture.
glm::dvec2 reachOf(const Camera& camera, double aspect, const Ball& ball) {
    glm::dvec2 reach{0, 0};
    for (const glm::dvec3& point : pointsOn(ball)) {
        const glm::dvec3 seen = inPicture(camera, aspect, ball, point);
        reach = glm::max(reach, glm::abs(glm::dvec2(seen)));
        EXPECT_LE(std::abs(seen.z), 1) << "cut off by the near or far plane";
    }
    return reach;
}

TEST(CameraTest, EyeSpaceHasTheTargetAheadAndUpUpwards) {
    // From the +y side scene x leads to the left.
    const Camera camera = cameraAt({1, 7, 2}, {1, 2, 2});
    expectNear(inEyeSpace(camera, {1, 7, 2}), {0, 0, 0});
    expectNear(inEyeSpace(camera, {1, 2, 2}), {0, 0, -5});
    expectNear(inEyeSpace(camera, {1, 7, 3}), {0, 1, 0});
    expectNear(inEyeSpace(camera, {2, 7, 2}), {-1, 0, 0});
}

TEST(CameraTest, UpMayHaveAnyLengthAndAngle) {
    const Camera plain = cameraAt({1, 7, 2}, {1, 2, 2});
    for (const glm::dvec3 up : {glm::dvec3(0, 0, 1e-200), {0, 0, 1e200}, {0, -9, 1}, {0, 100, 0.01}}) {
        Camera camera = plain;
        camera.up = up;
        validate(camera);
        expectNear(inEyeSpace(camera, {1, 7, 3}), {0, 1, 0}, 1e-9);
    }
    Camera upside_down = plain;
    upside_down.up = {0, 0, -2};
    expectNear(inEyeSpace(upside_down, {1, 7, 3}), {0, -1, 0});
}

TEST(CameraTest, ViewIsARigidMotionHoweverFarTheTarget) {
    for (const double distance : {1e-160, 1e-3, 1.0, 1e6, 1e200}) {
        const Camera camera = cameraAt({0, 0, 0}, distance * glm::dvec3(0.6, 0, 0.8));
        validate(camera);
        const glm::dmat3 turn(camera.view());
        EXPECT_NEAR(glm::determinant(turn), 1, 1e-12) << distance;
        expectNear(turn * glm::dvec3(0.6, 0, 0.8), {0, 0, -1});
    }
}

TEST(CameraTest, FieldOfViewIsVertical) {
    Camera camera = cameraAt({0, 4, 0}, {0, 0, 0});
    const Ball ball{{0, 0, 0}, 1};
    for (const double fov : {1.0, 30.0, 90.0, 179.0}) {
        camera.fov_degrees = fov;
        const double half_height = 4 * std::tan(fov * std::numbers::pi / 360);
        for (const double aspect : {0.5, 1.0, 2.0}) {
            const glm::dvec3 corner =
                inPicture(camera, aspect, ball, {-half_height * aspect, 0, half_height});
            EXPECT_NEAR(corner.x, 1, 1e-9);
            EXPECT_NEAR(corner.y, 1, 1e-9);
        }
    }
}

TEST(CameraTest, NearAndFarPlaneEncloseTheBallClosely) {
    const Camera camera = cameraAt({0, 10, 0}, {0, 9, 0});
    const Ball ball{{3, 0, 0}, 2};
    EXPECT_NEAR(inPicture(camera, 1, ball, {0, 2.02, 0}).z, -1, 1e-9);
    EXPECT_NEAR(inPicture(camera, 1, ball, {0, -2.02, 0}).z, 1, 1e-9);
}

TEST(CameraTest, PlanesAreSoundFromAnywhere) {
    struct Row {
        std::string name;
        glm::dvec3 eye;
        Ball ball;
    };
    const std::vector<Row> rows{
        {"inside, ahead of the centre", {0, 0.5, 0}, {{0, 0, 0}, 2}},
        {"at the centre", {0, 0, 0}, {{0, 0, 0}, 2}},
        {"on the surface", {0, 2, 0}, {{0, 0, 0}, 2}},
        {"behind the eye", {0, -50, 0}, {{0, 0, 0}, 2}},
        {"no extent", {0, 3, 0}, {{0, 0, 0}, 0}},
        {"no extent, at the eye", {0, 3, 0}, {{0, 3, 0}, 0}},
        {"far away", {0, 1e9, 0}, {{0, 0, 0}, 1}},
        {"tiny", {0, 1e-9, 0}, {{0, 0, 0}, 1e-10}},
    };
    for (const auto& [name, eye, ball] : rows) {
        const Camera camera = cameraAt(eye, eye - glm::dvec3(0, 1, 0));
        const glm::dmat4 projection = camera.projection(1, ball);
        // The planes as the matrix has them: where eye-space depth becomes -1 and 1.
        const double near = projection[3][2] / (projection[2][2] - 1);
        const double far = projection[3][2] / (projection[2][2] + 1);
        EXPECT_GT(near, 0) << name;
        EXPECT_GT(far, near) << name;
        EXPECT_LE(far, near * 1001) << name;
        EXPECT_TRUE(std::isfinite(far)) << name;
    }
}

TEST(CameraFitTest, TheBallFillsTheNarrowerDirection) {
    for (const Ball& ball : {Ball{{0, 0, 0}, 0.5}, Ball{{3, -2, 7}, 1e-4}, Ball{{1e5, 0, 0}, 1e4}}) {
        for (const double aspect : {0.05, 0.5, 1.0, 4.0 / 3, 10.0}) {
            const Camera camera = fitCamera(ball, aspect);
            validate(camera);
            const glm::dvec2 reach = reachOf(camera, aspect, ball);
            const double narrower = std::max(reach.x, reach.y);
            EXPECT_LT(narrower, 0.96) << aspect;
            EXPECT_GT(narrower, 0.94) << aspect;
            EXPECT_GE(aspect < 1 ? reach.x : reach.y, narrower) << aspect;
        }
    }
}

TEST(CameraFitTest, LooksFromTheFrontAndAbove) {
    const Ball ball{{1, 2, 3}, 0.5};
    const Camera camera = fitCamera(ball, 1.5);
    EXPECT_EQ(camera.target, ball.center);
    EXPECT_EQ(camera.up, glm::dvec3(0, 0, 1));
    EXPECT_EQ(camera.fov_degrees, 30);
    const glm::dvec3 side = camera.position - ball.center;
    expectNear(side / glm::length(side), glm::dvec3(0.35, 0.85, 0.45) / std::sqrt(0.1225 + 0.7225 + 0.2025));
    // The margin by the closed form: a ball of 1.05 times the radius would touch the field of view's edge.
    EXPECT_NEAR(glm::length(side), 1.05 * 0.5 / std::sin(15 * std::numbers::pi / 180), 1e-12);
}

TEST(CameraFitTest, ABallWithoutExtentIsSeenAsOne) {
    const Camera camera = fitCamera({{1, 2, 3}, 0}, 1);
    validate(camera);
    EXPECT_EQ(camera.position, fitCamera({{1, 2, 3}, 1}, 1).position);
}

TEST(CameraValidationTest, EachDefectIsNamed) {
    struct Row {
        Camera camera;
        std::string message;
    };
    const glm::dvec3 up{0, 0, 1};
    const std::vector<Row> rows{
        {{{nan, 0, 1}, {0, 0, 0}, up, 30}, "position is \"nan 0 1\", expected three finite numbers"},
        {{{0, 0, 1}, {0, infinity, 0}, up, 30}, "target is \"0 inf 0\", expected three finite numbers"},
        {{{0, 1, 1}, {0, 0, 0}, {0, 0, -infinity}, 30},
         "up direction is \"0 0 -inf\", expected three finite numbers"},
        {{{0, 1, 1}, {0, 0, 0}, up, 0}, "field of view is 0 degrees, expected more than 0 and less than 180"},
        {{{0, 1, 1}, {0, 0, 0}, up, 180},
         "field of view is 180 degrees, expected more than 0 and less than 180"},
        {{{0, 1, 1}, {0, 0, 0}, up, -30},
         "field of view is -30 degrees, expected more than 0 and less than 180"},
        {{{0, 1, 1}, {0, 0, 0}, up, nan},
         "field of view is nan degrees, expected more than 0 and less than 180"},
        {{{0.1, 1, 1}, {0.1, 1, 1}, up, 30},
         "position and target are both \"0.1 1 1\", so that it has no line of sight; move one of them"},
        {{{1e308, 0, 0}, {-1e308, 0, 0}, up, 30},
         "position \"1e+308 0 0\" and target \"-1e+308 0 0\" are too far apart; move them closer together"},
        {{{0, 1, 1}, {0, 0, 0}, {0, 0, 0}, 30},
         "up direction is \"0 0 0\", which leads nowhere; give another one"},
        {{{1, 2, 3}, {0, 0, 0}, {2, 4, 6}, 30},
         "up direction \"2 4 6\" lies along its line of sight; give one across it"},
        {{{0, 0, 1}, {0, 0, 3}, {0, 0, -1e-200}, 30},
         "up direction \"0 0 -1e-200\" lies along its line of sight; give one across it"},
    };
    for (const auto& [camera, message] : rows) {
        try {
            validate(camera);
            ADD_FAILURE() << "no error, but expected: " << message;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), "the camera's " + message);
        }
    }
    EXPECT_NO_THROW(validate({{0, 1, 1}, {0, 0, 0}, up, 179.9}));
    EXPECT_NO_THROW(validate({{0, 1e-5, 1}, {0, 0, 0}, up, 1e-3}));
}

} // namespace
} // namespace korl
