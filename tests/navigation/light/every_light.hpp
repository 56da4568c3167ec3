#pragma once

// Tests that hold for every light type of the module, on both paths. The test file of a type declares what
// they have to know of it, all of it written out:
//
//     const DeclaredLight sun({.type = "Sun", ...});
//
// A type of the module that nobody declares fails EveryType.IsDeclared.

#include "tests/support/module_light.hpp"

#include <functional>
#include <glm/glm.hpp>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace korl::test {

/// What a light sets, and to which numbers: {"SunIntensity$$", "13: 0.3 0.3 0.3 0.3"} for a uniform of
/// alternative 13, {"glLightfv LIGHT2 DIFFUSE", "0.3 0.3 0.3 1"} for a call. Single precision is written to
/// the bit, double precision with 14 digits.
using Answer = std::pair<std::string, std::string>;
using Answers = std::vector<Answer>;

/// Parameters and their values.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// A value for a parameter, and what the light answers otherwise where it cannot read that parameter.
struct ParameterAnswers {
    std::string name;
    std::string value;
    Answers unread;
    bool must_be_held = false; ///< A computed value counts as one that cannot be read.
};

/// What a lighting function gives for a vertex.
struct Lighting {
    glm::dvec3 incidence, intensity, specular;
};

/// What a lighting function should give, by a formula of the test's own.
using LightingFormula = std::function<Lighting(const glm::dvec3& vertex)>;

/// Where the viewer stands when lighting functions are evaluated.
constexpr glm::dvec3 eye(1, 2, 3);

/// Settings with which both paths show the same, and by how much the pictures differ at most, in units of
/// 1/255.
struct Agreement {
    Settings settings;
    double max_difference;
};

struct LightDeclaration {
    std::string type;

    std::vector<ParameterAnswers> parameters; ///< All of them, in order.
    /// What the light answers as the context's third one while all its parameters have these values: the
    /// uniforms in the order of the map, then the calls in the order in which they come.
    Answers answers;
    /// What its snippet gives with these values,
    LightingFormula formula;
    /// and before any uniform has been set.
    LightingFormula formula_as_declared;

    /// Settings with which it lights the built-in scene well.
    Settings lighting;
    /// Empty for a type whose paths differ on purpose.
    std::vector<Agreement> agreements;

    /// One light source serves all contexts.
    bool has_one_source = false;

    /// Whether it sets up an OpenGL light.
    bool hasOpenGLLight() const {
        for (const Answer& answer : answers)
            if (answer.first == "glEnable LIGHT2")
                return true;
        return false;
    }
};

inline void PrintTo(const LightDeclaration& light, std::ostream* stream) {
    *stream << light.type;
}

/// All that have been declared. Tests of lights may lie in a library of their own, so that this is shown to
/// it.
[[gnu::visibility("default")]] std::vector<LightDeclaration>& declaredLights();

struct DeclaredLight {
    explicit DeclaredLight(LightDeclaration light) { declaredLights().push_back(std::move(light)); }
};

/// Gives a light the values that its answers are for.
void setValues(ModuleLight& light, const LightDeclaration& declared, const std::string& except = "");

class EveryLight : public testing::TestWithParam<LightDeclaration> {
protected:
    ModuleLight light{GetParam().type};
};

/// Runs the tests of a suite for every type that is declared.
#define FOR_EVERY_LIGHT(SUITE)                                                                               \
    INSTANTIATE_TEST_SUITE_P(Module, SUITE, testing::ValuesIn(korl::test::declaredLights()),                 \
                             [](const auto& light) { return light.param.type; })

} // namespace korl::test
