// What the lights are said to give at a pixel adds up to the pixel's colour.

#include "every_light.hpp"
#include "tests/support/gl_test.hpp"

#include "shell/explain/explain.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/session/shell.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace {

using korl::RenderPath;

/// Pixels inside the sphere, the column and the landscape of the built-in scene.
constexpr std::pair<int, int> inner_pixels[]{{112, 44}, {117, 49}, {76, 75}, {100, 90}};

class ContributionGLTest : public korl::test::GLTest {
protected:
    ContributionGLTest() {
        shell.plugins().load(korl::test::moduleFile());
        for (korl::Mesh& mesh : korl::builtinScene())
            shell.scene().addMesh(std::move(mesh));
    }

    void add(const std::string& type, const korl::test::Settings& settings) {
        const std::string name = shell.scene().create(type).Name();
        for (const auto& [parameter, value] : settings)
            shell.scene().setParameterText(name, parameter, value);
    }

    /// The largest difference, in 255ths, between a pixel and the sum of what the lights are said to give it.
    double differenceAt(RenderPath path, const std::pair<int, int>& pixel) {
        const korl::Explanation explanation = korl::explain(shell, {160, 120, path, pixel, ""});
        EXPECT_TRUE(explanation.pixel->surface) << pixel.first << "," << pixel.second << " shows no mesh";
        double difference = 0;
        for (int i = 0; i < 3; ++i) {
            const double told = std::clamp(static_cast<double>(explanation.pixel->sum[i]), 0.0, 1.0) * 255;
            difference =
                std::max(difference, std::abs(told - explanation.pixel->color[static_cast<std::size_t>(i)]));
            brightest = std::max(brightest, told);
        }
        return difference;
    }

    korl::Shell shell;
    double brightest = 0; ///< of what the light is said to give, in 255ths
};

TEST_F(ContributionGLTest, OfManyLightsAddsUp) {
    add("AmbientLight", {{"Color", "0.1 0.1 0.2 1"}});
    add("Sun", {{"timeofday", "9"}, {"Intensity", "0.3"}});
    add("Torch", {{"elevation", "1"}, {"scaleDistance", "1"}, {"intensity", "0.3"}});
    add("Headlight", {{"intensity", "0.2"}});
    for (const auto& pixel : inner_pixels)
        EXPECT_LT(differenceAt(RenderPath::shader, pixel), 2.0) << pixel.first << "," << pixel.second;
}

class EveryLightsContributionGLTest : public ContributionGLTest,
                                      public testing::WithParamInterface<korl::test::LightDeclaration> {
protected:
    EveryLightsContributionGLTest() { add(GetParam().type, GetParam().lighting); }
};

TEST_P(EveryLightsContributionGLTest, IsThePixelOnTheShaderPath) {
    for (const auto& pixel : inner_pixels)
        EXPECT_LT(differenceAt(RenderPath::shader, pixel), 2.0) << pixel.first << "," << pixel.second;
    EXPECT_GT(brightest, 20) << "a dark picture shows nothing";
}

TEST_P(EveryLightsContributionGLTest, IsThePixelOnTheFixedPathWhereTheMeshIsFine) {
    // OpenGL lights the corners and interpolates, so that highlights differ a little.
    if (GetParam().hasOpenGLLight()) {
        EXPECT_LT(differenceAt(RenderPath::fixed, {112, 44}), 6.0);
    }
}

FOR_EVERY_LIGHT(EveryLightsContributionGLTest);

} // namespace
