// The lights' snippets in the driver: compiled alone and together, and evaluated against references in C++.

#include "every_light.hpp"
#include "tests/support/gl_test.hpp"
#include "tests/support/module_types.hpp"

#include "shell/render/gl_objects.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/offscreen_target.hpp"
#include "shell/render/shader_assembly.hpp"
#include "shell/render/uniform_values.hpp"

#include <algorithm>
#include <cmath>
#include <glm/glm.hpp>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

using korl::test::Lighting;
using korl::test::LightingFormula;
using korl::test::ModuleLight;

class SnippetGLTest : public korl::test::GLTest {};

std::string snippetOf(const std::string& type) {
    ModuleLight light(type);
    return light.source().snippet();
}

TEST_F(SnippetGLTest, CompileAloneTogetherAndTwiceInEveryVersion) {
    std::vector<korl::LightSnippet> snippets;
    for (const std::string& type : korl::test::moduleTypes())
        snippets.push_back({type, snippetOf(type)});
    for (const int version : korl::glsl_versions) {
        const auto build = [&](const std::vector<korl::LightSnippet>& some) {
            EXPECT_NO_THROW(korl::buildLightingProgram(korl::assembleShader(some, version)))
                << "GLSL " << version << ": " << some.front().light_name << " with "
                << some.back().light_name;
        };
        for (const auto& first : snippets) {
            build({first});
            for (const auto& second : snippets) // itself included
                build({first, second});
        }
        build(snippets);
    }
}

constexpr int side = 128; // 16384 vertices

/// Evaluates a light's snippet for many vertices in the driver.
class Evaluator {
public:
    explicit Evaluator(const std::vector<glm::vec3>& vertices) {
        glBindTexture(GL_TEXTURE_2D, my_vertices.name());
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB32F, side, side, 0, GL_RGB, GL_FLOAT, vertices.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }

    /// One of the three outputs, 0 to 2, for every vertex.
    std::vector<glm::vec4> evaluate(const std::string& snippet,
                                    const Qelt::RenderNamespace::UniformMap& uniforms, int output) {
        korl::Shader vertex(GL_VERTEX_SHADER), fragment(GL_FRAGMENT_SHADER);
        EXPECT_TRUE(
            vertex.compile("#version 330\nvoid main() { gl_Position = vec4(gl_VertexID == 1 ? 3 : -1, "
                           "gl_VertexID == 2 ? 3 : -1, 0, 1); }\n"))
            << vertex.log();
        EXPECT_TRUE(
            fragment.compile("#version 330\n"
                             "uniform sampler2D vertices;\n"
                             "uniform int output_index;\n"
                             "out vec4 result;\n"
                             "uniform vec3 eye;\n"
                             "vec3 getViewDir() { return normalize(texelFetch(vertices, "
                             "ivec2(gl_FragCoord.xy), 0).xyz - eye); }\n" +
                             korl::applySuffix(snippet, "L1") +
                             "void main() {\n"
                             "  vec3 outputs[3];\n"
                             "  getLight_L1(texelFetch(vertices, ivec2(gl_FragCoord.xy), 0).xyz, outputs[0], "
                             "outputs[1], outputs[2]);\n"
                             "  result = vec4(outputs[output_index], 1);\n"
                             "}\n"))
            << fragment.log();
        korl::Program program;
        program.attach(vertex);
        program.attach(fragment);
        EXPECT_TRUE(program.link()) << program.log();
        glUseProgram(program.name());
        for (const auto& [name, value] : uniforms)
            if (const GLint location = program.uniformLocation(korl::applySuffix(name, "L1")); location >= 0)
                korl::uploadUniform(location, value);
        glUniform1i(program.uniformLocation("output_index"), output);
        const glm::vec3 eye(korl::test::eye);
        glUniform3f(program.uniformLocation("eye"), eye.x, eye.y, eye.z);
        my_target.bind();
        glDisable(GL_DEPTH_TEST);
        const korl::VertexArray no_arrays;
        glBindVertexArray(no_arrays.name());
        glDrawArrays(GL_TRIANGLES, 0, 3);
        glBindVertexArray(0);
        glUseProgram(0);
        std::vector<glm::vec4> results(side * side);
        my_target.read(std::span(&results[0].x, results.size() * 4));
        // Read from top to bottom, but fetched from bottom to top.
        for (int row = 0; row < side / 2; ++row)
            std::swap_ranges(results.begin() + row * side, results.begin() + (row + 1) * side,
                             results.begin() + (side - 1 - row) * side);
        return results;
    }

private:
    korl::Texture my_vertices;
    korl::OffscreenTarget my_target{side, side, 1, korl::OffscreenTarget::Format::RGBA32F};
};

class SnippetValueGLTest : public korl::test::GLTest {
protected:
    SnippetValueGLTest() : evaluator((context(), vertices())) {}

    static const std::vector<glm::vec3>& vertices() {
        static const std::vector<glm::vec3> made = [] {
            std::mt19937 random(8);
            std::uniform_real_distribution<float> mantissa(-1, 1), exponent(-2, 4);
            std::vector<glm::vec3> all(side * side);
            for (glm::vec3& vertex : all) {
                const float scale = std::pow(10.0f, exponent(random));
                vertex = glm::vec3(mantissa(random), mantissa(random), mantissa(random)) * scale;
            }
            return all;
        }();
        return made;
    }

    /// Compares what the driver makes of a snippet with a formula. The difference counts relative to the
    /// length of each output.
    void expectLight(const std::string& snippet, const Qelt::RenderNamespace::UniformMap& uniforms,
                     const LightingFormula& formula) {
        for (int output = 0; output < 3; ++output) {
            const auto found = evaluator.evaluate(snippet, uniforms, output);
            double largest = 0;
            for (std::size_t i = 0; i < found.size(); ++i) {
                const Lighting expected = formula(glm::dvec3(vertices()[i]));
                const glm::dvec3 wanted = output == 0   ? expected.incidence
                                          : output == 1 ? expected.intensity
                                                        : expected.specular;
                const double difference = glm::length(glm::dvec3(found[i]) - wanted);
                const double relative = difference / std::max(glm::length(wanted), 1e-30);
                // Once not-a-number, it stays so.
                largest = std::isnan(relative) ? relative : std::max(largest, relative);
            }
            EXPECT_LE(largest, 1e-5) << "output " << output;
        }
    }

    Evaluator evaluator;
};

class EveryLightsSnippetGLTest : public SnippetValueGLTest,
                                 public testing::WithParamInterface<korl::test::LightDeclaration> {};

TEST_P(EveryLightsSnippetGLTest, SnippetGivesWhatTheFormulaSays) {
    ModuleLight light(GetParam().type);
    setValues(light, GetParam());
    light.light.environment_render(light.context); // where some lights write their uniforms
    const auto& source = light.source();
    expectLight(source.snippet(), source.uniforms(), GetParam().formula);
}

TEST_P(EveryLightsSnippetGLTest, DeclaredDefaultsHoldBeforeAnyUpload) {
    expectLight(ModuleLight(GetParam().type).source().snippet(), {}, GetParam().formula_as_declared);
}

FOR_EVERY_LIGHT(EveryLightsSnippetGLTest);

void set(ModuleLight& light, const std::string& parameter, const std::string& text) {
    ASSERT_TRUE(light.parameter(parameter).setGlobalValueFromText(text));
}

TEST_F(SnippetValueGLTest, TorchByDefaultLightsTheOriginWithAHundredOfAHundredAndOne) {
    ModuleLight light("Torch");
    Evaluator there(std::vector<glm::vec3>(side * side, glm::vec3(0))); // 100 below it: a = (1000/100)²
    for (const int output : {1, 2})
        EXPECT_NEAR(there.evaluate(light.source().snippet(), light.source().uniforms(), output)[0].x,
                    0.8 * 100 / 101, 1e-5);
}

TEST_F(SnippetValueGLTest, TorchGivesHalfItsLightAtItsScaleDistance) {
    ModuleLight light("Torch");
    set(light, "elevation", "-2");
    std::vector<glm::vec3> at_distance(side * side);
    for (std::size_t i = 0; i < at_distance.size(); ++i) {
        const double angle = 0.001 * static_cast<double>(i);
        at_distance[i] = glm::vec3(1000 * std::cos(angle), 1000 * std::sin(angle), -2);
    }
    Evaluator there(at_distance);
    for (const int output : {1, 2})
        for (const glm::vec4& strength :
             there.evaluate(light.source().snippet(), light.source().uniforms(), output))
            ASSERT_NEAR(strength.x, 0.4, 0.4 * 1e-5);
}

TEST_F(SnippetValueGLTest, TorchWithoutScaleDistanceIsDark) {
    ModuleLight light("Torch");
    set(light, "scaleDistance", "0");
    for (const int output : {1, 2})
        for (const glm::vec4& strength :
             evaluator.evaluate(light.source().snippet(), light.source().uniforms(), output))
            ASSERT_EQ(strength.x, 0);
}

TEST_F(SnippetValueGLTest, TorchAtTheVertexIsNotFinite) {
    ModuleLight light("Torch");
    set(light, "elevation", "0");
    Evaluator there(std::vector<glm::vec3>(side * side, glm::vec3(0)));
    const auto incidence = there.evaluate(light.source().snippet(), light.source().uniforms(), 0);
    EXPECT_FALSE(std::isfinite(incidence[0].x));
}

} // namespace
