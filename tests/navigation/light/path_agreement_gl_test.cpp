// Lights that answer on both paths look alike on both: the mean difference of the pictures over the model.

#include "every_light.hpp"
#include "tests/support/gl_test.hpp"

#include "shell/mesh/builtin_scene.hpp"
#include "shell/render/renderer.hpp"

#include <orvid/rgba_float.hpp>

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using korl::Image;
using korl::RenderPath;

class PathAgreementGLTest : public korl::test::GLTest {
protected:
    PathAgreementGLTest() {
        for (korl::Mesh& mesh : korl::builtinScene())
            scene.addMesh(std::move(mesh));
        scene.background = {1, 0, 1, 0}; // what keeps alpha 0 does not belong to the model
    }

    /// In units of 1/255, over all channels of the pixels that the model covers on both paths.
    double meanDifference() {
        const Image shader = renderer.render(scene, view, {320, 240, RenderPath::shader});
        const Image fixed = renderer.render(scene, view, {320, 240, RenderPath::fixed});
        double sum = 0;
        int values = 0;
        long brightness = 0;
        for (std::size_t i = 0; i < shader.pixels.size(); i += 4) {
            if (shader.pixels[i + 3] != 255 || fixed.pixels[i + 3] != 255)
                continue;
            for (std::size_t channel = i; channel < i + 3; ++channel) {
                sum += std::abs(int{shader.pixels[channel]} - int{fixed.pixels[channel]});
                brightness += shader.pixels[channel];
                ++values;
            }
        }
        EXPECT_GT(values, 10000);
        EXPECT_GT(brightness / values, 20) << "a dark picture shows nothing";
        RecordProperty("mean_difference", std::to_string(sum / values));
        return sum / values;
    }

    korl::test::LoadedModule module;
    korl::Scene scene;
    korl::View view;
    std::vector<std::string> reports;
    korl::Renderer renderer{context(), [this](const std::string& report) { reports.push_back(report); }};
};

class EveryLightsPathsGLTest : public PathAgreementGLTest,
                               public testing::WithParamInterface<korl::test::LightDeclaration> {
protected:
    void add(const korl::test::Settings& settings) {
        scene.create(GetParam().type, "light");
        for (const auto& [parameter, value] : settings)
            scene.setParameterText("light", parameter, value);
    }
};

TEST_P(EveryLightsPathsGLTest, AgreeWhereTheyAreMeantTo) {
    for (const auto& [settings, max_difference] : GetParam().agreements) {
        add(settings);
        EXPECT_LT(meanDifference(), max_difference);
        scene.remove("light");
    }
}

TEST_P(EveryLightsPathsGLTest, FixedPathSaysWhichTypesItDoesNotShow) {
    add(GetParam().lighting);
    renderer.render(scene, view, {32, 24, RenderPath::fixed});
    const bool is_missing = std::any_of(reports.begin(), reports.end(), [](const std::string& report) {
        return report.starts_with("light \"light\" adds nothing on the fixed-function path");
    });
    EXPECT_EQ(is_missing, !GetParam().hasOpenGLLight());
}

TEST_P(EveryLightsPathsGLTest, LightsInALoopGiveWhatThreeOfThemGiveUnrolled) {
    korl::Scene few, many;
    for (korl::Scene* const each : {&few, &many}) {
        for (korl::Mesh& mesh : korl::builtinScene())
            each->addMesh(std::move(mesh));
        for (int i = 0; i < 3; ++i)
            each->create(GetParam().type);
    }
    many.create(GetParam().type, "dark"); // a fourth, which gives nothing
    for (const auto& entry : many.object("dark").parameters())
        if (entry.parameter->type() == typeid(Orvid::rgba_float_t))
            many.setParameterText("dark", entry.parameter->Name(), "0 0 0 0");
        else if (entry.parameter->type() == typeid(double))
            many.setParameterText("dark", entry.parameter->Name(), "0");
    korl::View one, other;
    EXPECT_EQ(renderer.render(few, one, {160, 120, RenderPath::shader}).pixels,
              renderer.render(many, other, {160, 120, RenderPath::shader}).pixels);
}

FOR_EVERY_LIGHT(EveryLightsPathsGLTest);

TEST_F(PathAgreementGLTest, HeadlightServesTwoContextsAtOnce) {
    scene.create("Headlight", "h");
    korl::View other;
    scene.object("h")
        .findParameter("intensity")
        ->getLocalValue(other.pool(), "", true)
        ->setValueFromText("0");
    scene.object("h").findParameter("specular")->getLocalValue(other.pool(), "", true)->setValueFromText("0");
    const auto brightness = [&](korl::View& in, RenderPath path) {
        const Image image = renderer.render(scene, in, {32, 24, path});
        long sum = 0;
        for (std::size_t i = 0; i < image.pixels.size(); i += 4)
            sum += image.pixels[i + 3] == 255 ? image.pixels[i] : 0;
        return sum;
    };
    // One after the other, each with its own values in the one light source.
    for (int frame = 0; frame < 2; ++frame)
        for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
            EXPECT_GT(brightness(view, path), 1000);
            EXPECT_EQ(brightness(other, path), 0);
        }
}

TEST_F(PathAgreementGLTest, HundredObjectsOfEachTypeInTwoContextsGoWithTheModule) {
    std::size_t uniforms = 0;
    for (const korl::test::LightDeclaration& light : korl::test::declaredLights()) {
        uniforms += static_cast<std::size_t>(
            std::count_if(light.answers.begin(), light.answers.end(),
                          [](const auto& answer) { return answer.first.ends_with("$$"); }));
        for (int i = 0; i < 100; ++i)
            scene.create(light.type);
    }
    korl::View other;
    for (korl::View* const each : {&view, &other}) {
        for (const RenderPath path : {RenderPath::shader, RenderPath::fixed})
            renderer.render(scene, *each, {16, 16, path});
        EXPECT_EQ(renderer.listUniforms(scene, *each).size(), 100 * uniforms);
    }
    module.unload();
    EXPECT_FALSE(korl::test::LoadedModule::isInProcess());
    EXPECT_TRUE(scene.objects().empty());
}

} // namespace
