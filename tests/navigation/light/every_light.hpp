#pragma once

// Tests that hold for every light type of the module. The test file of a type runs them with
//
//     INSTANTIATE_TEST_SUITE_P(Sun, EveryLight, testing::Values(sun));
//
// where `sun` says which values the type's parameters get and what it answers to them, all of it written out.

#include "tests/support/module_light.hpp"

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

/// A value for a parameter, and what the light answers otherwise where it cannot read that parameter.
struct ParameterAnswers {
    std::string name;
    std::string value;
    Answers unread;
    bool must_be_held = false; ///< A computed value counts as one that cannot be read.
};

/// What a light answers as the context's third one while all its parameters have their values.
struct LightAnswers {
    std::string type;
    std::vector<ParameterAnswers> parameters;
    Answers
        answers; ///< The uniforms in the order of the map, then the calls in the order in which they come.
};

inline void PrintTo(const LightAnswers& light, std::ostream* stream) {
    *stream << light.type;
}

class EveryLight : public testing::TestWithParam<LightAnswers> {
protected:
    ModuleLight light{GetParam().type};
};

} // namespace korl::test
