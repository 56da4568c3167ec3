#pragma once

#include "tests/support/computed_value.hpp"
#include "tests/support/gl_recorder.hpp"
#include "tests/support/module_light.hpp"
#include "tests/support/plain_object.hpp"

#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>

#include <array>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace korl::test {

using FloatColor = Orvid::FixedArray<float, 4>;
using DoubleTriple = Orvid::FixedArray<double, 3>;

/// A row of a light type's table of parameters: name, kind, default, expert level, properties as "min=-90
/// max=90".
struct ParameterRow {
    std::string name;
    const std::type_info& type;
    std::string default_text;
    int expert_level;
    std::string properties;
};

/// A light of the module, with what the tests of every type ask of it.
class LightTest : public testing::Test {
protected:
    explicit LightTest(const std::string& type) : light(type) { acknowledgeSlotCreators(); }

    void set(const std::string& parameter, const std::string& text) {
        ASSERT_TRUE(light.parameter(parameter).setGlobalValueFromText(text)) << parameter << " = " << text;
    }

    /// Gives a parameter a value of any kind in the light's first context.
    template <class Value>
    void put(const std::string& parameter, Value* value) {
        light.pool->createVariable(light.parameter(parameter), Tessan::StrongPtr<Qelt::VValueBase>(value));
    }
    void putNumber(const std::string& parameter) { put(parameter, new Qelt::VValue<double>(7)); }
    void putColor(const std::string& parameter) {
        put(parameter, new Qelt::VValue<Orvid::rgba_float_t>({9, 9, 9, 9}));
    }
    void remove(const std::string& parameter) { ASSERT_TRUE(light.light.removeParameter(parameter)); }

    FloatColor color(const std::string& uniform) { return light.uniform<FloatColor>(uniform); }
    DoubleTriple triple(const std::string& uniform) { return light.uniform<DoubleTriple>(uniform); }

    std::vector<std::string> calls() {
        takeRecordedCalls();
        EXPECT_TRUE(light.light.environment_render(light.context));
        return takeRecordedCalls();
    }
    /// The call that sets one value of the light, such as "DIFFUSE", without what stands before its numbers.
    std::string call(const std::string& name) {
        for (const std::string& made : calls())
            if (const auto at = made.find(" " + name + " "); at != std::string::npos)
                return made.substr(at + name.size() + 2);
        return "no call";
    }

    void expectParameters(const std::vector<ParameterRow>& rows) {
        const auto& parameters = light.light.parameters();
        ASSERT_EQ(parameters.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto& [parameter, expert_level] = parameters[i];
            EXPECT_EQ(parameter->Name(), rows[i].name);
            EXPECT_TRUE(parameter->type() == rows[i].type) << rows[i].name;
            EXPECT_EQ(parameter->DefaultValue().Text(), rows[i].default_text) << rows[i].name;
            EXPECT_EQ(expert_level, rows[i].expert_level) << rows[i].name;
            std::string properties;
            for (const auto& [name, value] : parameter->properties())
                properties += (properties.empty() ? "" : " ") + name + "=" + value->Text();
            EXPECT_EQ(properties, rows[i].properties) << rows[i].name;
        }
    }

    void expectSnippet(const std::vector<std::string>& lines, std::size_t size) {
        std::string expected;
        for (const std::string& line : lines)
            expected += line + "\n";
        EXPECT_EQ(light.source().snippet(), expected);
        EXPECT_EQ(expected.size(), size);
    }

    void expectCreator(const std::string& type, const std::vector<std::string>& texts,
                       const std::type_info* input) {
        const Qelt::VCreatorBase* const creator = Qelt::VCreatorBase::find(type);
        ASSERT_NE(creator, nullptr);
        std::vector<std::string> found;
        for (const auto& property : creator->properties().all())
            found.push_back(property.kind() == Qelt::VCreatorPropertyBase::Kind::date ? "DATE"
                                                                                      : property.text());
        EXPECT_EQ(found, texts);
        EXPECT_EQ(creator->creatorNumber(), 0);
        const auto* const sink = dynamic_cast<const Qelt::VSinkBase*>(creator);
        ASSERT_NE(sink, nullptr);
        if (input)
            EXPECT_TRUE(sink->inputType() && *sink->inputType() == *input);
        else
            EXPECT_EQ(sink->inputType(), nullptr);
    }

    void expectDefaultIcons() {
        EXPECT_EQ(light.light.qt_icon(), "");
        EXPECT_EQ(light.light.xpm_icon(), nullptr);
        EXPECT_EQ(light.light.gimp_icon(), "");
    }

    ModuleLight light;
};

} // namespace korl::test
