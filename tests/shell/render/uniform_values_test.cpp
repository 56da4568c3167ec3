#include "shell/render/uniform_values.hpp"

#include "tests/support/gl_test.hpp"

#include "shell/render/gl_objects.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace {

using korl::sameBits;
using korl::uniformText;
using Orvid::Cartesian3D;
using Orvid::Coordinates;
using Orvid::FixedArray;
using Orvid::PhysicalSpace;
using Orvid::Quadratic;
using Qelt::RenderNamespace::UniformValue;
using FloatPoint = Coordinates<Cartesian3D, float>::point;

/// One value of each alternative, all of its components different, the GLSL type that takes it, and its text,
/// which has the numbers that reach the program in their order.
struct Sample {
    UniformValue value;
    const char* glsl_type;
    const char* text;
};

std::vector<Sample> samples() {
    return {
        {-3, "int", "-3"},
        {0.1f, "float", "0.1"},
        {0.3, "float", "0.3"},
        {3000000001u, "uint", "3000000001"},
        {FixedArray<int, 2>{2147483647, -2147483647}, "ivec2", "2147483647 -2147483647"},
        {FixedArray<float, 2>{0.1f, 2}, "vec2", "0.1 2"},
        {FixedArray<double, 2>{0.7, -2}, "vec2", "0.7 -2"},
        {FixedArray<int, 3>{16777217, -2, 3}, "ivec3", "16777217 -2 3"}, // a float cannot hold the first
        {FloatPoint{1.5f, 2.5f, 3.5f}, "vec3", "1.5 2.5 3.5"},
        {FixedArray<float, 3>{1, 2, 0.3f}, "vec3", "1 2 0.3"},
        {PhysicalSpace::point{4.1, -2.1, 1e-30}, "vec3", "4.1 -2.1 1e-30"},
        {FixedArray<double, 3>{5.1, 6.2, 0.3}, "vec3", "5.1 6.2 0.3"},
        {FixedArray<int, 4>{-1, 20, 300, -4000}, "ivec4", "-1 20 300 -4000"},
        {FixedArray<float, 4>{0.7f, 0.8f, 0.9f, 0.6f}, "vec4", "0.7 0.8 0.9 0.6"},
        {FixedArray<double, 4>{1.1, 2.2, 3.3, 0.4}, "vec4", "1.1 2.2 3.3 0.4"},
        {Quadratic<2, float>{{1, 2, 3, 4}}, "mat2", "1 2 3 4"},
        {Quadratic<3, float>{{1, 2, 3, 4, 5, 6, 7, 8, 9}}, "mat3", "1 2 3 4 5 6 7 8 9"},
        {Quadratic<4, float>{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}, "mat4",
         "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
        {std::vector<FixedArray<float, 3>>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, "vec3[3]", "1 2 3 4 5 6 7 8 9"},
        {std::vector<FloatPoint>{{9, 8, 7}, {6, 5, 4}, {3, 2, 1}}, "vec3[3]", "9 8 7 6 5 4 3 2 1"},
    };
}

TEST(UniformValues, TextOfEveryAlternative) {
    const auto all = samples();
    ASSERT_EQ(all.size(), std::variant_size_v<UniformValue>);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].value.index(), i);
        EXPECT_EQ(uniformText(all[i].value), all[i].text);
    }
}

TEST(UniformValues, EveryAlternativeEqualsItselfAndNoOther) {
    const auto all = samples();
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = 0; j < all.size(); ++j)
            EXPECT_EQ(sameBits(all[i].value, samples()[j].value), i == j) << i << " " << j;
}

TEST(UniformValues, AreComparedByBits) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(sameBits(nan, nan));
    EXPECT_FALSE(sameBits(0.0, -0.0));
    EXPECT_FALSE(sameBits(FixedArray<float, 3>{1, 2, 3}, FixedArray<float, 3>{1, 2, 4}));
    using Sequence = std::vector<FixedArray<float, 3>>;
    EXPECT_FALSE(sameBits(Sequence{{1, 2, 3}}, Sequence{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_TRUE(sameBits(Sequence{}, Sequence{}));
}

class UniformValuesGLTest : public korl::test::GLTest {};

/// A program whose uniform U has a type such as "vec3" or "vec3[3]", of which no part can be left out.
korl::Program programWith(const std::string& type) {
    const std::string element = type.substr(0, type.find('['));
    std::string use = "U == " + element + "(7)";
    if (type != element)
        use = "U[0] == U[1] && U[1] == U[2]";
    korl::Shader vertex(GL_VERTEX_SHADER);
    EXPECT_TRUE(vertex.compile("#version 330\nuniform " + element + " U" + type.substr(element.size()) +
                               ";\nvoid main() { gl_Position = vec4(" + use + " ? 1 : 0); }\n"))
        << vertex.log();
    korl::Program program;
    program.attach(vertex);
    EXPECT_TRUE(program.link()) << program.log();
    return program;
}

/// What a program holds in its uniform U, read back element by element as numbers of its type.
std::string heldText(const korl::Program& program, const std::string& type, std::size_t components) {
    std::vector<std::string> locations{"U"};
    if (type.ends_with("[3]"))
        locations = {"U[0]", "U[1]", "U[2]"};
    const std::size_t each = components / locations.size();
    const auto read = [&]<class Number>(auto getUniform, Number) {
        std::vector<Number> all;
        for (const std::string& location : locations) {
            std::array<Number, 16> held{};
            getUniform(program.name(), program.uniformLocation(location), held.data());
            all.insert(all.end(), held.begin(), held.begin() + static_cast<std::ptrdiff_t>(each));
        }
        return all;
    };
    const auto joined = [](const auto& numbers) {
        std::string text;
        for (const auto number : numbers)
            text += (text.empty() ? "" : " ") + std::to_string(number);
        return text;
    };
    if (type.starts_with('i'))
        return joined(read(glGetUniformiv, GLint{}));
    if (type.starts_with('u'))
        return joined(read(glGetUniformuiv, GLuint{}));
    return Qelt::componentsToText(std::span<const float>(read(glGetUniformfv, GLfloat{})));
}

TEST_F(UniformValuesGLTest, EachComponentOfEveryAlternativeReachesTheProgram) {
    for (const Sample& sample : samples()) {
        const korl::Program program = programWith(sample.glsl_type);
        glUseProgram(program.name());
        korl::uploadUniform(program.uniformLocation("U"), sample.value);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << sample.glsl_type << " = " << sample.text;
        glUseProgram(0);
        const std::string text = sample.text;
        const auto components = static_cast<std::size_t>(std::count(text.begin(), text.end(), ' ')) + 1;
        EXPECT_EQ(heldText(program, sample.glsl_type, components), text)
            << sample.glsl_type << ", alternative " << sample.value.index();
    }
}

TEST_F(UniformValuesGLTest, EmptySequenceSetsNothing) {
    korl::uploadUniform(0, std::vector<FixedArray<float, 3>>{});
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

} // namespace
