#include "shell/render/uniform_values.hpp"

#include "tests/support/gl_test.hpp"

#include "shell/render/gl_objects.hpp"

#include <array>
#include <gtest/gtest.h>
#include <limits>

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

/// One value of each alternative, the GLSL type that takes it, its text, and the numbers that reach the
/// program.
struct Sample {
    UniformValue value;
    const char* glsl_type;
    const char* text;
};

std::vector<Sample> samples() {
    return {
        {-3, "int", "-3"},
        {0.1f, "float", "0.1"},
        {0.1, "float", "0.1"},
        {3000000000u, "uint", "3000000000"},
        {FixedArray<int, 2>{1, -2}, "ivec2", "1 -2"},
        {FixedArray<float, 2>{0.1f, 2}, "vec2", "0.1 2"},
        {FixedArray<double, 2>{0.1, 2}, "vec2", "0.1 2"},
        {FixedArray<int, 3>{1, 2, 3}, "ivec3", "1 2 3"},
        {FloatPoint{1, 2, 3}, "vec3", "1 2 3"},
        {FixedArray<float, 3>{1, 2, 0.3f}, "vec3", "1 2 0.3"},
        {PhysicalSpace::point{1, 2, 1e-300}, "vec3", "1 2 1e-300"},
        {FixedArray<double, 3>{1, 2, 0.3}, "vec3", "1 2 0.3"},
        {FixedArray<int, 4>{1, 2, 3, 4}, "ivec4", "1 2 3 4"},
        {FixedArray<float, 4>{0.7f, 0.7f, 0.7f, 1}, "vec4", "0.7 0.7 0.7 1"},
        {FixedArray<double, 4>{1, 2, 3, 0.4}, "vec4", "1 2 3 0.4"},
        {Quadratic<2, float>{{1, 2, 3, 4}}, "mat2", "1 2 3 4"},
        {Quadratic<3, float>{{1, 2, 3, 4, 5, 6, 7, 8, 9}}, "mat3", "1 2 3 4 5 6 7 8 9"},
        {Quadratic<4, float>{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}, "mat4",
         "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
        {std::vector<FixedArray<float, 3>>{{1, 2, 3}, {4, 5, 6}}, "vec3[2]", "1 2 3 4 5 6"},
        {std::vector<FloatPoint>{{1, 2, 3}, {4, 5, 6}}, "vec3[2]", "1 2 3 4 5 6"},
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

TEST_F(UniformValuesGLTest, EveryAlternativeReachesItsTypeOfUniform) {
    for (const Sample& sample : samples()) {
        const std::string type(sample.glsl_type);
        const bool is_array = type.ends_with("[2]");
        const std::string element = is_array ? type.substr(0, type.size() - 3) : type;
        const std::string use = is_array                                   ? "U[0].x + U[1].x"
                                : element.find("mat") == 0                 ? "U[0][0]"
                                : element.find("vec") != std::string::npos ? "float(U.x)"
                                                                           : "float(U)";
        korl::Shader vertex(GL_VERTEX_SHADER);
        ASSERT_TRUE(vertex.compile("#version 330\nuniform " + element + " U" + (is_array ? "[2]" : "") +
                                   ";\nvoid main() { gl_Position = vec4(" + use + "); }\n"))
            << vertex.log();
        korl::Program program;
        program.attach(vertex);
        ASSERT_TRUE(program.link()) << program.log();
        glUseProgram(program.name());
        korl::uploadUniform(program.uniformLocation("U"), sample.value);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << type << " = " << sample.text;
        // What the program holds now, against the text: the first number, and the last of the first element.
        if (element.find("mat") == 0 || element.starts_with("vec") || element == "float") {
            std::array<GLfloat, 16> held{};
            glGetUniformfv(program.name(), program.uniformLocation("U"), held.data());
            EXPECT_EQ(held[0], std::strtof(sample.text, nullptr)) << type;
        }
        glUseProgram(0);
    }
}

TEST_F(UniformValuesGLTest, EmptySequenceSetsNothing) {
    korl::uploadUniform(0, std::vector<FixedArray<float, 3>>{});
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

} // namespace
