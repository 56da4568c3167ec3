// What every light answers on both paths, parameter by parameter: to a value however it is given, and where
// it cannot be read whyever that is.

#include "every_light.hpp"
#include "tests/support/computed_value.hpp"
#include "tests/support/gl_recorder.hpp"

#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/component_text.hpp>

#include <array>
#include <cstdio>
#include <functional>
#include <gmock/gmock.h>
#include <span>
#include <type_traits>

namespace korl::test {

namespace {

using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;
using Qelt::RenderNamespace::UniformMap;
using Qelt::RenderNamespace::UniformValue;
using Tessan::StrongPtr;

std::string textOf(std::span<const double> numbers) {
    std::string text;
    for (const double number : numbers) {
        std::array<char, 32> digits{};
        std::snprintf(digits.data(), digits.size(), "%.14g", number);
        text += (text.empty() ? "" : " ") + std::string(digits.data());
    }
    return text;
}

std::string textOf(const UniformValue& value) {
    const std::string start = std::to_string(value.index()) + ": ";
    return std::visit(
        [&]<class Alternative>(const Alternative& held) -> std::string {
            if constexpr (std::is_same_v<Alternative, double>)
                return start + textOf(std::array{held});
            else if constexpr (std::is_same_v<Alternative, PhysicalSpace::point>)
                return start + textOf(std::array{held.x, held.y, held.z});
            else if constexpr (std::is_same_v<Alternative, Orvid::FixedArray<double, 3>>)
                return start + textOf(held.components);
            else if constexpr (std::is_same_v<Alternative, Orvid::FixedArray<float, 4>>)
                return start + Qelt::componentsToText(held.components);
            else
                return start + "of no light's kind";
        },
        value);
}

/// A recorded call, its numbers apart.
Answer answerOf(const std::string& call) {
    if (!call.starts_with("glLight"))
        return {call, ""};
    const std::size_t numbers = call.find(' ', call.find(' ', call.find(' ') + 1) + 1);
    return {call.substr(0, numbers), call.substr(numbers + 1)};
}

Answers answersOf(ModuleLight& light, bool in_other_context = false) {
    Qelt::VRenderContext& context = in_other_context ? light.other_context : light.context;
    context.setLightNumber(3);
    takeRecordedCalls();
    EXPECT_TRUE(light.light.environment_render(context)); // where some lights write their uniforms
    const auto calls = takeRecordedCalls();
    Answers answers;
    for (const auto& [name, value] : (in_other_context ? light.otherSource() : light.source()).uniforms())
        answers.emplace_back(name, textOf(value));
    for (const std::string& call : calls)
        answers.push_back(answerOf(call));
    return answers;
}

/// A line for each.
std::string linesOf(const Answers& answers) {
    std::string lines;
    for (const auto& [what, numbers] : answers)
        lines += what + " " + numbers + "\n";
    return lines;
}

/// The answers with other numbers in some of them.
Answers withChanges(Answers answers, const Answers& changes) {
    for (const auto& [what, numbers] : changes) {
        const auto is_same = [&, &name = what](const Answer& answer) { return answer.first == name; };
        const auto found = std::find_if(answers.begin(), answers.end(), is_same);
        if (found == answers.end())
            ADD_FAILURE() << "nothing sets " << what;
        else
            found->second = numbers;
    }
    return answers;
}

/// Calls `action` with a value of the type, for the four types that parameters have.
template <class Action>
void forEachType(Action action) {
    action(double(7));
    action(rgba_float_t{7, 8, 9, 10});
    action(PhysicalSpace::point{7, 8, 9});
    action(PhysicalSpace::vector{7, 8, 9});
}

/// Calls `action` with the value of the type of a parameter that a text stands for.
template <class Action>
void withValue(const Qelt::VParameter& parameter, const std::string& text, Action action) {
    forEachType([&]<class T>(T value) {
        if (parameter.type() == typeid(T)) {
            EXPECT_TRUE(Qelt::VValueTrait<T>::setValueFromText(value, text)) << text;
            action(value);
        }
    });
}

/// A held value of a derived class.
template <class T>
struct DerivedValue final : Qelt::VValue<T> {
    using Qelt::VValue<T>::VValue;
};

/// A computed value that cannot be read now.
template <class T>
struct UnreadableValue final : Qelt::VTypedValueBase<T> {
    bool getValue(T&) const override { return false; }
    StrongPtr<Qelt::VValueBase> clone() const override { return {}; }
    bool setValueFromText(const std::string&) override { return false; }
    bool setContainerValue(const Qelt::VValueBase&) override { return false; }
};

/// Gives a parameter of a light a value in one way.
struct Way {
    std::string name;
    std::function<void(ModuleLight&, Qelt::VParameter&, const std::string& value)> give;
};

template <class Value>
void put(ModuleLight& light, const Qelt::VParameter& parameter, Value* value) {
    light.pool->createVariable(parameter, StrongPtr<Qelt::VValueBase>(value));
}

/// A way that puts a value of one of the class templates above into the context.
template <template <class> class Value>
Way putting(const std::string& name) {
    return {name, [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
                withValue(parameter, text,
                          [&]<class T>(const T& value) { put(light, parameter, new Value<T>(value)); });
            }};
}

const Way computed = putting<ComputedValue>("computed");

std::vector<Way> waysThatAreRead() {
    static std::vector<StrongPtr<Qelt::VParameter>> sources; // which followers do not keep alive
    static std::vector<StrongPtr<Qelt::VValueBase>> source_values;
    return {{"held by the parameter",
             [](ModuleLight&, Qelt::VParameter& parameter, const std::string& text) {
                 EXPECT_TRUE(parameter.setGlobalValueFromText(text));
             }},
            putting<Qelt::VValue>("held by the context"),
            putting<DerivedValue>("held by a value of a derived class"),
            {"followed by the slot",
             [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
                 withValue(parameter, text, [&]<class T>(const T& value) {
                     sources.push_back(Tessan::makeStrong<Qelt::VValueParameter<T>>(value, "source"));
                     EXPECT_TRUE(light.light.findSlot(parameter.Name())->connect(sources.back()));
                 });
             }},
            {"followed by the context's value",
             [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
                 withValue(parameter, text, [&]<class T>(const T& value) {
                     source_values.emplace_back(new Qelt::VValue<T>(value));
                     auto* const follower = new Qelt::VValue<T>;
                     put(light, parameter, follower);
                     EXPECT_TRUE(follower->setSource(source_values.back()));
                 });
             }}};
}

std::vector<Way> waysThatAreNotRead() {
    std::vector<Way> ways{
        {"removed", [](ModuleLight& light, Qelt::VParameter& parameter,
                       const std::string&) { EXPECT_TRUE(light.light.removeParameter(parameter.Name())); }},
        {"following a parameter that has gone",
         [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
             withValue(parameter, text, [&]<class T>(const T& value) {
                 const StrongPtr<Qelt::VParameter> source(new Qelt::VValueParameter<T>(value, "source"));
                 EXPECT_TRUE(light.light.findSlot(parameter.Name())->connect(source));
             });
         }},
        {"following a value that has gone",
         [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
             withValue(parameter, text, [&]<class T>(const T& value) {
                 auto* const follower = new Qelt::VValue<T>(value);
                 put(light, parameter, follower);
                 EXPECT_TRUE(follower->setSource(StrongPtr<Qelt::VValueBase>(new Qelt::VValue<T>(value))));
             });
         }},
        {"computed without a result",
         [](ModuleLight& light, Qelt::VParameter& parameter, const std::string& text) {
             withValue(parameter, text,
                       [&]<class T>(const T&) { put(light, parameter, new UnreadableValue<T>); });
         }}};
    forEachType([&]<class T>(const T& value) {
        const auto of_another_type = [&](const std::string& name, auto make) {
            ways.push_back({name + " of another type, " + Tessan::Typename(typeid(T)),
                            [=](ModuleLight& light, Qelt::VParameter& parameter, const std::string&) {
                                if (parameter.type() != typeid(T))
                                    put(light, parameter, make());
                                else
                                    light.light.removeParameter(parameter.Name());
                            }});
        };
        of_another_type("held", [value] { return new Qelt::VValue<T>(value); });
        of_another_type("computed", [value] { return new ComputedValue<T>(value); });
    });
    return ways;
}

TEST_P(EveryLight, AnswersToItsParameters) {
    setValues(light, GetParam());
    EXPECT_EQ(linesOf(answersOf(light)), linesOf(GetParam().answers));
    EXPECT_EQ(linesOf(answersOf(light, true)), linesOf(GetParam().answers));
}

TEST_P(EveryLight, HasAllItsParametersInTheTest) {
    std::vector<std::string> named, found;
    for (const ParameterAnswers& parameter : GetParam().parameters)
        named.push_back(parameter.name);
    for (const auto& entry : light.light.parameters())
        found.push_back(entry.parameter->Name());
    EXPECT_EQ(named, found);
}

TEST_P(EveryLight, TakesValuesHoweverTheyAreGiven) {
    for (const ParameterAnswers& expected : GetParam().parameters) {
        std::vector<Way> ways = waysThatAreRead();
        if (!expected.must_be_held)
            ways.push_back(computed);
        for (const Way& way : ways) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, expected.name + " " + way.name);
            ModuleLight one(GetParam().type);
            setValues(one, GetParam(), expected.name); // which is still the default
            way.give(one, one.parameter(expected.name), expected.value);
            EXPECT_EQ(linesOf(answersOf(one)), linesOf(GetParam().answers));
        }
    }
}

TEST_P(EveryLight, FallsBackWhyeverAValueCannotBeRead) {
    for (const ParameterAnswers& expected : GetParam().parameters) {
        std::vector<Way> ways = waysThatAreNotRead();
        if (expected.must_be_held)
            ways.push_back(computed);
        for (const Way& way : ways) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, expected.name + " " + way.name);
            ModuleLight one(GetParam().type);
            setValues(one, GetParam());
            EXPECT_EQ(linesOf(answersOf(one)), linesOf(GetParam().answers)); // what is read now must not stay
            way.give(one, one.parameter(expected.name), expected.value);
            EXPECT_EQ(linesOf(answersOf(one)), linesOf(withChanges(GetParam().answers, expected.unread)));
        }
    }
}

TEST_P(EveryLight, ReadsTheValuesOfTheContext) {
    for (const ParameterAnswers& expected : GetParam().parameters) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, expected.name);
        ModuleLight one(GetParam().type);
        setValues(one, GetParam());
        withValue(one.parameter(expected.name), expected.value, [&]<class T>(const T&) {
            one.other_pool->createVariable(one.parameter(expected.name),
                                           StrongPtr<Qelt::VValueBase>(new UnreadableValue<T>));
        });
        EXPECT_EQ(linesOf(answersOf(one, true)), linesOf(withChanges(GetParam().answers, expected.unread)));
        EXPECT_EQ(linesOf(answersOf(one)), linesOf(GetParam().answers));
    }
}

TEST_P(EveryLight, ReplacesUniformsOfOtherAlternatives) {
    setValues(light, GetParam());
    answersOf(light);
    const UniformMap written = light.source().uniforms();
    ASSERT_FALSE(written.empty());
    for (const auto& [name, value] : written)
        for (const UniformValue& other :
             {UniformValue(7), UniformValue(7.0f), UniformValue(7.0), UniformValue(7u),
              UniformValue(Orvid::FixedArray<double, 3>{}), UniformValue(Orvid::FixedArray<float, 4>{}),
              UniformValue(PhysicalSpace::point{}),
              UniformValue(std::vector<Orvid::FixedArray<float, 3>>(2))}) {
            light.source().uniforms().insert_or_assign(name, other);
            EXPECT_EQ(linesOf(answersOf(light)), linesOf(GetParam().answers))
                << name << " held alternative " << other.index();
        }
}

TEST_P(EveryLight, AnswersTheSameForAnInterval) {
    setValues(light, GetParam());
    light.context.setLightNumber(3);
    takeRecordedCalls();
    EXPECT_TRUE(light.light.environment_render(light.context, 0, 1));
    Answers calls;
    for (const std::string& call : takeRecordedCalls())
        calls.push_back(answerOf(call));
    Answers expected;
    for (const Answer& answer : GetParam().answers)
        if (answer.first.starts_with("gl"))
            expected.push_back(answer);
    EXPECT_EQ(linesOf(calls), linesOf(expected));
}

} // namespace

} // namespace korl::test
