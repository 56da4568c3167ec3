// What each parameter falls back to, one by one, while all the others are read: the same as if it held the
// fallback. Every parameter of the module has its row.

#include "tests/support/gl_recorder.hpp"
#include "tests/support/module_light.hpp"

#include <gmock/gmock.h>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using korl::test::ModuleLight;

/// A parameter, a text of its own for it that no fallback has, and what the two paths fall back to.
struct Row {
    std::string type, parameter, odd, in_shader, in_opengl;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.type << "." << row.parameter;
}

const std::vector<Row> rows{
    {"AmbientLight", "Color", "0.1 0.2 0.3 0.4", "0.5 0.5 0.5 1", "0.5 0.5 0.5 1"},

    {"DirectionalLight", "Intensity", "0.25", "1", "1"},
    {"DirectionalLight", "Specular", "0.375", "1", "1"},
    {"DirectionalLight", "direction", "1 2 3", "0 0 -1", "0 0 -1"},
    {"DirectionalLight", "color", "0.1 0.2 0.3 0.4", "0.7 0.7 0.7 1", "0.7 0.7 0.7 1"},

    {"DistanceLight", "Intensity", "0.25", "1", "1"},
    {"DistanceLight", "Specular", "0.375", "1", "1"},
    {"DistanceLight", "lightposition", "3 -4 5", "0 0 10", "0 0 1"},
    {"DistanceLight", "shineat", "7 6 -8", "0 0 0", "0 0 0"},
    {"DistanceLight", "color", "0.1 0.2 0.3 0.4", "1 1 1 1", "1 1 1 1"},

    {"Sun", "Intensity", "0.25", "1", "1"},
    {"Sun", "Specular", "0.375", "1", "1"},
    {"Sun", "latitude", "-20", "45", "45"},
    {"Sun", "timeofday", "7", "12", "12"},

    {"Torch", "intensity", "0.25", "1", "1"},
    {"Torch", "specular", "0.375", "1", "1"},
    {"Torch", "elevation", "7", "100", "100"},
    {"Torch", "scaleDistance", "20", "1000", "1000"},
    {"Torch", "up", "1 0 0", "0 0 1", "0 0 1"},
    {"Torch", "location", "3 -4 5", "0 0 0", "0 0 0"},

    {"Headlight", "intensity", "0.25", "1", "1"},
    {"Headlight", "specular", "0.375", "1", "1"},
    {"Headlight", "positionmv", "3 -4 5", "0 0 1", "0 0 1"},
};

/// A light that has the odd text in each of its parameters.
class OddLight : public ModuleLight {
public:
    explicit OddLight(const std::string& type) : ModuleLight(type) {
        for (const Row& row : rows)
            if (row.type == type)
                set(row.parameter, row.odd);
    }

    void set(const std::string& name, const std::string& text) {
        EXPECT_TRUE(parameter(name).setGlobalValueFromText(text)) << name << " = " << text;
    }

    auto uniforms() {
        light.environment_render(context); // where some lights write them
        return source().uniforms();
    }

    auto openGLCalls() {
        korl::test::takeRecordedCalls();
        light.environment_render(context);
        return korl::test::takeRecordedCalls();
    }
};

class Fallback : public testing::TestWithParam<Row> {};

TEST_P(Fallback, HoldsAloneOnBothPaths) {
    const Row& row = GetParam();
    OddLight unread(row.type), in_shader(row.type), in_opengl(row.type);
    ASSERT_TRUE(unread.light.removeParameter(row.parameter));
    in_shader.set(row.parameter, row.in_shader);
    in_opengl.set(row.parameter, row.in_opengl);
    EXPECT_EQ(unread.uniforms(), in_shader.uniforms());
    EXPECT_EQ(unread.openGLCalls(), in_opengl.openGLCalls());
}

INSTANTIATE_TEST_SUITE_P(TovekLight, Fallback, testing::ValuesIn(rows),
                         [](const auto& row) { return row.param.type + "_" + row.param.parameter; });

TEST(Fallbacks, AreListedForEveryParameter) {
    std::map<std::string, std::vector<std::string>> listed;
    for (const Row& row : rows)
        listed[row.type].push_back(row.parameter);
    EXPECT_EQ(listed.size(), 6u);
    for (const auto& [type, parameters] : listed) {
        const ModuleLight light(type);
        std::vector<std::string> found;
        for (const auto& entry : light.light.parameters())
            found.push_back(entry.parameter->Name());
        EXPECT_EQ(found, parameters) << type;
    }
}

} // namespace
