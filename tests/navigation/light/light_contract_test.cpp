// What every light type of the module has in common. A new type only needs its name in the list.

#include "tests/support/gl_recorder.hpp"
#include "tests/support/module_light.hpp"

#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <tessan/ageable.hpp>

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

using korl::test::ModuleLight;

class EveryLight : public testing::TestWithParam<const char*> {
protected:
    ModuleLight light{GetParam()};
};

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

TEST_P(EveryLight, SnippetDefinesOneLightingFunction) {
    const std::string snippet = light.source().snippet();
    EXPECT_EQ(occurrences(snippet, "getLight_$$"), 1u);
    EXPECT_EQ(occurrences(snippet, "void\tgetLight_$$("), 1u);
    EXPECT_EQ(light.source().snippet(), snippet);
}

TEST_P(EveryLight, UniformsAreSpeltAsInTheSnippet) {
    light.light.environment_render(light.context); // where some lights write them
    const auto& source = light.source();
    EXPECT_FALSE(source.uniforms().empty());
    for (const auto& [name, value] : source.uniforms()) {
        EXPECT_TRUE(name.ends_with("$$")) << name;
        std::size_t declarations = 0;
        for (const char* const type : {"vec4", "vec3", "float"})
            declarations += occurrences(source.snippet(), std::string("uniform ") + type + " " + name + " ");
        EXPECT_EQ(declarations, 1u) << name;
    }
}

TEST_P(EveryLight, UniformsOfOtherAlternativesAreReplaced) {
    using Qelt::RenderNamespace::UniformMap;
    using Value = UniformMap::mapped_type;
    const auto filled = [this]() -> UniformMap& {
        light.light.environment_render(light.context); // where some lights write them
        return light.source().uniforms();
    };
    const UniformMap expected = filled();
    ASSERT_FALSE(expected.empty());
    for (const auto& [name, value] : expected)
        for (const Value& other : {Value(7), Value(7.0f), Value(7.0), Value(Orvid::FixedArray<double, 3>{}),
                                   Value(Orvid::FixedArray<float, 4>{}), Value(Orvid::PhysicalSpace::point{}),
                                   Value(std::vector<Orvid::FixedArray<float, 3>>(2))}) {
            light.source().uniforms().insert_or_assign(name, other);
            EXPECT_EQ(filled(), expected) << name << " held alternative " << other.index();
        }
}

TEST_P(EveryLight, LightSourceTakesTheTimeOfItsMaking) {
    Tessan::Ageable clock;
    clock.grow();
    ModuleLight young(GetParam());
    EXPECT_EQ(young.source().age(), Tessan::Ageable::GlobalTime.load());
}

TEST_P(EveryLight, UsesTheOpenGLLightOfTheContextsNumber) {
    korl::test::takeRecordedCalls();
    light.context.setLightNumber(3);
    EXPECT_TRUE(light.light.environment_render(light.context));
    const auto calls = korl::test::takeRecordedCalls();
    EXPECT_EQ(calls.empty(), std::string(GetParam()) == "Torch"); // which has no fixed-function light
    for (const std::string& call : calls)
        if (call.starts_with("glLight")) {
            EXPECT_NE(call.find(" LIGHT2 "), std::string::npos) << call;
        } else if (call.starts_with("glEnable") && call.find("LIGHTING") == std::string::npos) {
            EXPECT_TRUE(call.ends_with(" LIGHT2")) << call;
        }
}

TEST_P(EveryLight, FallsBackAlikeWhyeverAParameterCannotBeRead) {
    // Removed, of another type in the context, or following a source that has gone: the same on both paths.
    const auto answersOf = [](ModuleLight& one) {
        korl::test::takeRecordedCalls();
        one.light.environment_render(one.context);
        return std::pair(one.source().uniforms(), korl::test::takeRecordedCalls());
    };
    std::vector<std::string> names;
    for (const auto& entry : light.light.parameters())
        names.push_back(entry.parameter->Name());
    for (const std::string& name : names) {
        ModuleLight removed(GetParam()), mistyped(GetParam()), orphaned(GetParam());
        const Qelt::VParameter& parameter = mistyped.parameter(name);
        Qelt::VValueBase* const other =
            parameter.type() == typeid(double)
                ? static_cast<Qelt::VValueBase*>(new Qelt::VValue<Orvid::rgba_float_t>)
                : new Qelt::VValue<double>;
        mistyped.pool->createVariable(parameter, Tessan::StrongPtr<Qelt::VValueBase>(other));
        {
            const auto source =
                Tessan::makeStrong<Qelt::VParameter>(parameter.DefaultValue().clone(), std::string("source"));
            ASSERT_TRUE(orphaned.light.findSlot(name)->connect(source));
        }
        ASSERT_TRUE(removed.light.removeParameter(name));
        const auto expected = answersOf(removed);
        EXPECT_EQ(answersOf(mistyped), expected) << name;
        EXPECT_EQ(answersOf(orphaned), expected) << name;
    }
}

TEST_P(EveryLight, EachContextHasItsOwnLightSourceButForTheHeadlight) {
    auto& source = light.source();
    auto& other = light.otherSource();
    if (std::string(GetParam()) == "Headlight") {
        EXPECT_EQ(&source, &other);
        return;
    }
    EXPECT_NE(source.serialNumber(), other.serialNumber());
    EXPECT_NE(&source.uniforms(), &other.uniforms());
    EXPECT_EQ(source.uniforms(), other.uniforms());
}

TEST_P(EveryLight, AnswersTheSameForAnInterval) {
    EXPECT_TRUE(light.light.environment_render(light.context));
    const auto calls = korl::test::takeRecordedCalls();
    EXPECT_TRUE(light.light.environment_render(light.context, 0, 1));
    EXPECT_EQ(korl::test::takeRecordedCalls(), calls);
}

INSTANTIATE_TEST_SUITE_P(TovekLight, EveryLight,
                         testing::Values("AmbientLight", "DirectionalLight", "DistanceLight", "Sun", "Torch",
                                         "Headlight"),
                         [](const auto& type) { return std::string(type.param); });

} // namespace
