#include "tests/support/error_of.hpp"
#include "tests/support/flat_scene.hpp"
#include "tests/support/gl_test.hpp"

#include "shell/render/light_sampler.hpp"
#include "shell/render/offscreen_target.hpp"

#include <doltra/uniform_map.hpp>
#include <gmock/gmock.h>

#include <cmath>

namespace {

using korl::LightSample;
using korl::LightSampler;
using korl::test::errorOf;
using Qelt::RenderNamespace::LightSource;
using Qelt::RenderNamespace::writeUniform;

/// A light source of the tests' own.
class TextSource : public LightSource {
public:
    explicit TextSource(std::string snippet) : my_snippet(std::move(snippet)) {}
    std::string snippet() const override { return my_snippet; }

private:
    std::string my_snippet;
};

constexpr const char* head =
    "void getLight_$$(in vec3 vertex, out vec3 incidence, out vec3 intensity, out vec3 specular)\n";

class LightSamplerGLTest : public korl::test::GLTest {
protected:
    LightSample at(const LightSource& source, const glm::vec3& point, const glm::vec3& eye = {0, 0, 9}) {
        return sampler.sample(source, "light", std::span(&point, 1), eye).front();
    }

    LightSampler sampler;
};

TEST_F(LightSamplerGLTest, GivesAllThreeResultsAtEachPoint) {
    const TextSource source(std::string(head) +
                            "{ incidence = vertex; intensity = vertex * -1000.0; specular = vertex.zyx; }");
    constexpr int count = 300000; // more than one target holds
    std::vector<glm::vec3> points;
    points.reserve(count);
    for (int i = 0; i < count; ++i)
        points.emplace_back(static_cast<float>(i), static_cast<float>(-i) / 7, 0.25f);
    const std::vector<LightSample> samples = sampler.sample(source, "light", points, {0, 0, 0});
    ASSERT_EQ(samples.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(samples[i].incidence, points[i]) << i;
        ASSERT_EQ(samples[i].intensity, points[i] * -1000.0f) << i;
        ASSERT_EQ(samples[i].specular_intensity, glm::vec3(points[i].z, points[i].y, points[i].x)) << i;
    }
}

TEST_F(LightSamplerGLTest, OfNoPointsGivesNothing) {
    EXPECT_TRUE(sampler.sample(TextSource("no GLSL"), "light", std::span<const glm::vec3>(), {}).empty());
}

TEST_F(LightSamplerGLTest, KnowsTheDirectionOfView) {
    const TextSource source("#pragma import \"getViewDir\"\n" + std::string(head) +
                            "{ incidence = getViewDir(); intensity = specular = vec3(1); }");
    EXPECT_EQ(at(source, {0, 0, 1}, {0, 0, 9}).incidence, glm::vec3(0, 0, -1));
    EXPECT_EQ(at(source, {5, 0, 1}, {1, 0, 1}).incidence, glm::vec3(1, 0, 0));
}

TEST_F(LightSamplerGLTest, TakesTheUniformsOfEachSourceAndElseTheDeclaredValues) {
    const std::string snippet = "uniform vec2 Pair$$ = vec2(2.0, 3.0);\nuniform float S$$ = 0.5;\n" +
                                std::string(head) +
                                "{ incidence = vec3(0); intensity = vec3(Pair$$, S$$); specular = vec3(0); }";
    TextSource set(snippet);
    const TextSource unset(snippet);
    writeUniform(set.uniforms(), "Pair$$", Orvid::FixedArray<float, 2>{{7, 8}});
    writeUniform(set.uniforms(), "S$$", 9.0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(at(set, {}).intensity, glm::vec3(7, 8, 9));
        EXPECT_EQ(at(unset, {}).intensity, glm::vec3(2, 3, 0.5f)) << "round " << round;
    }
    EXPECT_EQ(sampler.declaredValue(set, "light", "Pair$$"), (std::array<float, 4>{2, 3, 0, 0}));
    EXPECT_EQ(sampler.declaredValue(set, "light", "S$$"), (std::array<float, 4>{0.5f, 0, 0, 0}));
    EXPECT_EQ(sampler.declaredValue(set, "light", "Unknown$$"), (std::array<float, 4>{}));
}

TEST_F(LightSamplerGLTest, KeepsWhatIsNotFinite) {
    TextSource source("uniform vec3 Odd$$;\n" + std::string(head) +
                      "{ incidence = Odd$$; intensity = specular = vec3(1); }");
    writeUniform(source.uniforms(), "Odd$$", Orvid::FixedArray<float, 3>{{NAN, INFINITY, -INFINITY}});
    const LightSample sample = at(source, {});
    EXPECT_TRUE(std::isnan(sample.incidence.x));
    EXPECT_TRUE(std::isinf(sample.incidence.y));
    EXPECT_TRUE(std::isinf(sample.incidence.z));
    EXPECT_FALSE(sample.isFinite());
    EXPECT_TRUE((LightSample{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}.isFinite()));
    EXPECT_FALSE((LightSample{{1, 2, 3}, {4, NAN, 6}, {7, 8, 9}}.isFinite()));
    EXPECT_FALSE((LightSample{{1, 2, 3}, {4, 5, 6}, {7, 8, INFINITY}}.isFinite()));
}

TEST_F(LightSamplerGLTest, LeavesTargetViewportAndTestsAsTheyWere) {
    const korl::OffscreenTarget target(20, 10);
    target.bind();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 1, 1);
    GLint before = 0, after = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &before);
    const TextSource source(std::string(head) + "{ incidence = intensity = specular = vertex; }");
    EXPECT_EQ(at(source, {1, 2, 3}).intensity, glm::vec3(1, 2, 3));
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &after);
    EXPECT_EQ(before, after);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_THAT(viewport, testing::ElementsAre(0, 0, 20, 10));
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_SCISSOR_TEST);
}

TEST_F(LightSamplerGLTest, NamesTheLightThatTheDriverRefuses) {
    const TextSource broken(std::string(head) + "{ incidence = intensity = specular = wrong; }");
    {
        const korl::test::ToleratedGLErrors refusal;
        EXPECT_THAT(errorOf([&] { at(broken, {}); }),
                    testing::HasSubstr("\"light\" does not compile, line 2"));
    }
    TextSource mistyped("uniform vec3 V$$;\n" + std::string(head) +
                        "{ incidence = intensity = specular = V$$; }");
    writeUniform(mistyped.uniforms(), "V$$", 1.0f);
    const korl::test::ExpectedGLErrors refusal;
    EXPECT_THAT(errorOf([&] { at(mistyped, {}); }),
                testing::HasSubstr("of another type than its snippet declares"));
}

} // namespace
