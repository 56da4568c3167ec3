#pragma once

#include "tests/support/computed_value.hpp"
#include "tests/support/gl_recorder.hpp"
#include "tests/support/module_light.hpp"
#include "tests/support/plain_object.hpp"

#include <orvid/fixed_array.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>

#include <algorithm>
#include <array>
#include <ctime>
#include <gmock/gmock.h>
#include <ostream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace korl::test {

using Qelt::RenderNamespace::FloatColor;
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

/// A row of the table of creators: number, declared type of input, properties as "name: Sun".
struct CreatorRow {
    CreatorRow(int its_number, const std::type_info* its_input, std::vector<std::string> its_properties = {})
        : number(its_number), input(its_input ? its_input->name() : ""),
          properties(std::move(its_properties)) {}

    int number;
    std::string input; ///< Empty where it is made from nothing.
    std::vector<std::string> properties;

    bool operator==(const CreatorRow&) const = default;
};

inline void PrintTo(const CreatorRow& row, std::ostream* stream) {
    *stream << row.number << " from \"" << row.input << "\" " << testing::PrintToString(row.properties);
}

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

    /// Compares the creators of the light's type, in the order of the catalogue, with rows of a table.
    void expectCreators(const std::vector<CreatorRow>& rows) {
        static constexpr std::array kinds{"description", "group", "date", "name", "source", "category"};
        std::vector<CreatorRow> found;
        for (const Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
            if (creator->Name() != light.type)
                continue;
            const auto* const sink = dynamic_cast<const Qelt::VSinkBase*>(creator);
            ASSERT_NE(sink, nullptr);
            CreatorRow& row = found.emplace_back(creator->creatorNumber(), sink->inputType());
            for (const auto& property : creator->properties().all()) {
                const std::string kind = kinds.at(static_cast<std::size_t>(property.kind()));
                const bool is_date = kind == "date" && isDate(property.text());
                std::string text = is_date ? "of the build" : property.text();
                if (kind == "source") // what comes before the project's own folders is the build's affair
                    text.erase(0, std::min(text.size(), text.rfind("navigation/light/")));
                row.properties.push_back(kind + ": " + text);
            }
            EXPECT_TRUE(creator->preferences().empty());
            EXPECT_TRUE(creator->type() == typeid(light.light));
        }
        EXPECT_EQ(found, rows);
    }

    /// Whether it is a date as compilers write it.
    static bool isDate(const std::string& text) {
        std::tm date{};
        const char* const end = strptime(text.c_str(), "%b %d %Y", &date);
        return end && *end == '\0' && text.size() == 11;
    }

    void expectDefaultIcons() {
        EXPECT_EQ(light.light.qt_icon(), "");
        EXPECT_EQ(light.light.xpm_icon(), nullptr);
        EXPECT_EQ(light.light.gimp_icon(), "");
    }

    ModuleLight light;
};

} // namespace korl::test
