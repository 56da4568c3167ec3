#include "tests/support/captured_trace.hpp"
#include "tests/support/computed_value.hpp"

#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/object.hpp>
#include <sorvik/parameter.hpp>
#include <sorvik/value_pool.hpp>

#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using korl::test::traceOf;
using Orvid::rgba_float_t;
using Qelt::ValuePool;
using Qelt::VCreationPreferences;
using Qelt::VParameter;
using Qelt::VValue;
using Qelt::VValueBase;
using Qelt::VValueParameter;
using Tessan::StrongPtr;

std::string localText(const VParameter& parameter, ValuePool& pool) {
    const VValueBase* const value = parameter.getLocalValue(pool);
    return value ? value->Text() : "nothing";
}

TEST(Parameter, HasANameADefaultAndAType) {
    const VValueParameter<double> parameter(0.9, "Intensity");
    EXPECT_EQ(parameter.Name(), "Intensity");
    EXPECT_EQ(parameter.DefaultValue().Text(), "0.9");
    EXPECT_EQ(parameter.type(), typeid(double));
    EXPECT_EQ(parameter.creator(), nullptr);
}

TEST(Parameter, SeesItsObjectGo) {
    VValueParameter<double> parameter(1, "p");
    {
        Qelt::VObject object("o", 0, {});
        parameter.setCreator(&object);
        EXPECT_EQ(parameter.creator(), &object);
    }
    EXPECT_EQ(parameter.creator(), nullptr);
}

TEST(Parameter, NeedsAValue) {
    std::string message;
    try {
        VParameter(StrongPtr<VValueBase>(), "empty");
    } catch (const std::invalid_argument& error) {
        message = error.what();
    }
    EXPECT_EQ(message, "VParameter \"empty\": a parameter needs a value, none was given");
}

TEST(Parameter, StartsAsThePreferencesAsk) {
    VCreationPreferences preferences;
    preferences.prefer("latitude", "52");
    const VValueParameter<double> latitude(45, "latitude", preferences), other(45, "other", preferences);
    EXPECT_EQ(latitude.globalValue().Text(), "52");
    EXPECT_EQ(latitude.DefaultValue().Text(), "45");
    EXPECT_EQ(other.globalValue().Text(), "45");
}

TEST(Parameter, MalformedPreferenceIsReported) {
    VCreationPreferences preferences;
    preferences.prefer("latitude", "north");
    preferences.prefer("color", "red");
    const auto makeParameters = [&] {
        const VValueParameter<double> latitude(45, "latitude", preferences);
        EXPECT_EQ(latitude.globalValue().Text(), "45");
        const VValueParameter<rgba_float_t> color({0.1f, 0.2f, 0.3f, 0.4f}, "color", preferences);
        EXPECT_EQ(color.globalValue().Text(), "0.1 0.2 0.3 0.4");
    };
    EXPECT_EQ(
        traceOf(0, makeParameters),
        "VParameter latitude: \"north\" is not the text of a double; the default \"45\" stays\n"
        "VParameter color: \"red\" is not the text of a Orvid::rgba_float_t; the default \"0.1 0.2 0.3 0.4\" "
        "stays\n");
    EXPECT_EQ(traceOf(-1, makeParameters), "");
}

TEST(CreationPreferences, CombinePutsTheSecondFirst) {
    VCreationPreferences first, second;
    first.prefer("a", "1");
    first.prefer("b", "1");
    second.prefer("b", "2");
    const VCreationPreferences both(first, second);
    EXPECT_EQ(*both.find("a"), "1");
    EXPECT_EQ(*both.find("b"), "2");
    EXPECT_EQ(both.find("c"), nullptr);
    EXPECT_FALSE(both.empty());
    EXPECT_TRUE(VCreationPreferences().empty());
    EXPECT_TRUE(VCreationPreferences(VCreationPreferences(), VCreationPreferences()).empty());
    EXPECT_EQ(*first.find("b"), "1"); // as they were
    EXPECT_EQ(second.find("a"), nullptr);
}

TEST(CreationPreferences, LastTextForANameIsTaken) {
    VCreationPreferences preferences;
    preferences.prefer("a", "1");
    preferences.prefer("a", "2");
    EXPECT_EQ(*preferences.find("a"), "2");
}

TEST(Parameter, SettingTheGlobalValueIsTraced) {
    VValueParameter<rgba_float_t> parameter({1, 1, 1, 1}, "Color");
    EXPECT_EQ(traceOf(50,
                      [&] {
                          EXPECT_TRUE(parameter.setGlobalValue(VValue<rgba_float_t>({0.5f, 0.4f, 0.3f, 1})));
                          EXPECT_FALSE(parameter.setGlobalValue(VValue<double>(3)));
                          EXPECT_FALSE(parameter.setGlobalValueFromText("red"));
                      }),
              "VParameter::setGlobalValue() got variable with 0.5 0.4 0.3 1\n");
    EXPECT_EQ(parameter.globalValue().Text(), "0.5 0.4 0.3 1");
    EXPECT_EQ(traceOf(50, [&] { EXPECT_TRUE(parameter.setGlobalValueFromText("0.1 0.2 0.3 0.4")); }),
              "VParameter::setGlobalValue() got variable with 0.1 0.2 0.3 0.4\n");
    EXPECT_EQ(traceOf(49, [&] { EXPECT_TRUE(parameter.setGlobalValueFromText("0 1 0 1")); }), "");
    EXPECT_EQ(parameter.globalValue().Text(), "0 1 0 1");
    EXPECT_EQ(parameter.DefaultValue().Text(), "1 1 1 1");
}

/// A value whose whole is another one.
struct Wrapped : VValue<double> {
    VValueBase* component(std::string_view name) override { return name.empty() ? &whole : nullptr; }
    bool getValue(double& value) const override { return whole.getValue(value); }
    VValue<double> whole{1};
};

TEST(Parameter, GlobalValueIsStoredInTheComponent) {
    VParameter parameter(StrongPtr<VValueBase>(new Wrapped), "wrapped");
    EXPECT_EQ(traceOf(50, [&] { EXPECT_TRUE(parameter.setGlobalValue(VValue<double>(2))); }),
              "VParameter::setGlobalValue() got variable with 2\n");
    EXPECT_EQ(static_cast<const Wrapped&>(parameter.globalValue()).whole.Text(), "2");
}

TEST(Parameter, GlobalValueIsTakenFromComputedValuesAndFromNoneThatCannotBeRead) {
    VValueParameter<double> parameter(1, "p");
    EXPECT_TRUE(parameter.setGlobalValue(korl::test::ComputedValue<double>(2)));
    EXPECT_EQ(parameter.globalValue().Text(), "2");
    VValue<double> detached(3);
    detached.setSource(StrongPtr<VValueBase>(new VValue<double>(4)));
    EXPECT_EQ(traceOf(50, [&] { EXPECT_FALSE(parameter.setGlobalValue(detached)); }), "");
    EXPECT_EQ(parameter.globalValue().Text(), "2");
}

TEST(Parameter, PropertyIsWrittenOnlyWhereItChanges) {
    VValueParameter<double> parameter(0, "elevation");
    EXPECT_EQ(parameter.property("max"), nullptr);
    EXPECT_TRUE(parameter.setProperty("max", VValue<double>(1000)));
    const VValueBase* const written = parameter.property("max");
    EXPECT_FALSE(parameter.setProperty("max", VValue<double>(1000)));
    EXPECT_EQ(parameter.property("max"), written); // not even replaced by an equal one
    EXPECT_TRUE(parameter.setProperty("max", VValue<double>(2000)));
    EXPECT_EQ(parameter.property("max")->Text(), "2000");
    EXPECT_EQ(parameter.properties().size(), 1u);
}

TEST(Parameter, KeepsItsPropertiesApart) {
    VValueParameter<double> parameter(0, "elevation");
    VValue<double> max(1000);
    EXPECT_TRUE(parameter.setProperty("min", VValue<double>(-5)));
    EXPECT_TRUE(parameter.setProperty("max", max));
    EXPECT_TRUE(parameter.setProperty("tint", VValue<rgba_float_t>({0.1f, 0.2f, 0.3f, 0.4f})));
    max.setValue(7); // what was given is copied
    EXPECT_TRUE(parameter.setProperty("tint", VValue<double>(3)));
    EXPECT_FALSE(parameter.setProperty("max", VValue<double>(1000)));
    std::vector<std::string> lines;
    for (const auto& [name, value] : parameter.properties()) {
        lines.push_back(name + " " + value->Text());
        EXPECT_EQ(parameter.property(name), value.get());
    }
    EXPECT_THAT(lines, testing::ElementsAre("min -5", "max 1000", "tint 3"));
    EXPECT_EQ(parameter.property("mid"), nullptr);
}

TEST(Parameter, PropertyClampsNothing) {
    VValueParameter<double> parameter(0, "elevation");
    parameter.setProperty("max", VValue<double>(1));
    EXPECT_TRUE(parameter.setGlobalValueFromText("5"));
    EXPECT_EQ(parameter.globalValue().Text(), "5");
}

TEST(Parameter, PoolsValueGoesBeforeTheGlobalOne) {
    VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool), other(new ValuePool);
    EXPECT_EQ(localText(parameter, *pool), "1");
    pool->createVariable(parameter, StrongPtr<VValueBase>(new VValue<double>(2)));
    EXPECT_EQ(localText(parameter, *pool), "2");
    EXPECT_EQ(localText(parameter, *other), "1");
    parameter.setGlobalValueFromText("3");
    EXPECT_EQ(localText(parameter, *pool), "2");
    EXPECT_EQ(localText(parameter, *other), "3");
    EXPECT_TRUE(pool->removeVariable(parameter));
    EXPECT_EQ(localText(parameter, *pool), "3");
}

TEST(Parameter, MakesAPoolsOwnValueWhereAskedTo) {
    VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    VValueBase* const own = parameter.getLocalValue(*pool, "", true);
    EXPECT_EQ(own->Text(), "1");
    own->setValueFromText("4");
    EXPECT_EQ(localText(parameter, *pool), "4");
    EXPECT_EQ(parameter.globalValue().Text(), "1");
    EXPECT_EQ(parameter.getLocalValue(*pool, "", true), own); // made once
}

TEST(Parameter, UnknownComponentReadsAsNothing) {
    const StrongPtr<VParameter> parameter(new VValueParameter<double>(1, "p"));
    VValueParameter<double> follower(2, "follower");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(parameter->getLocalValue(*pool, "x"), nullptr);
    ASSERT_TRUE(follower.setSource(parameter));
    EXPECT_EQ(follower.getLocalValue(*pool, "x"), nullptr);
    pool->createVariable(follower, StrongPtr<VValueBase>(new VValue<double>(2)));
    EXPECT_EQ(follower.getLocalValue(*pool, "x"), nullptr);
}

TEST(Parameter, ReadsAPartOfItsValue) {
    struct TwoParts : VValue<double> {
        VValueBase* component(std::string_view name) override { return name == "part" ? &part : this; }
        VValue<double> part{7};
    };
    const StrongPtr<VParameter> parameter(new VParameter(StrongPtr<VValueBase>(new TwoParts), "p"));
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(parameter->getLocalValue(*pool, "part")->Text(), "7");
    EXPECT_EQ(parameter->getLocalValue(*pool)->Text(), "0");
    VValueParameter<double> follower(2, "follower");
    ASSERT_TRUE(follower.setSource(parameter));
    EXPECT_EQ(follower.getLocalValue(*pool, "part")->Text(), "7");
}

TEST(Parameter, OwnValueStartsAsWhatTheContextReads) {
    const StrongPtr<VParameter> source(new VValueParameter<double>(2, "source"));
    VValueParameter<double> follower(1, "follower");
    follower.setGlobalValueFromText("3");
    const StrongPtr<ValuePool> below(new ValuePool), above(new ValuePool(below)), beside(new ValuePool);
    EXPECT_EQ(follower.getLocalValue(*beside, "", true)->Text(),
              "3"); // the global value, not the default
    ASSERT_TRUE(follower.setSource(source));
    EXPECT_EQ(follower.getLocalValue(*below, "", true)->Text(), "2");
    below->retrieveValue(follower)->setValueFromText("5");
    EXPECT_EQ(follower.getLocalValue(*above)->Text(), "5");
    EXPECT_FALSE(above->ownsVariable(follower)); // not asked for
    VValueBase* const own = follower.getLocalValue(*above, "", true);
    EXPECT_EQ(own->Text(), "5");
    EXPECT_TRUE(above->ownsVariable(follower));
    EXPECT_NE(own, below->retrieveValue(follower));
}

TEST(Parameter, FollowsAnotherContextByContext) {
    VValueParameter<double> follower(1, "follower");
    const StrongPtr<VParameter> source(new VValueParameter<double>(2, "source"));
    const StrongPtr<ValuePool> pool(new ValuePool), other(new ValuePool);
    ASSERT_TRUE(follower.setSource(source));
    source->getLocalValue(*pool, "", true)->setValueFromText("7");
    EXPECT_EQ(localText(follower, *pool), "7");
    EXPECT_EQ(localText(follower, *other), "2");
    follower.getLocalValue(*other, "", true)->setValueFromText("8");
    EXPECT_EQ(localText(follower, *other), "8"); // a value of its own in a pool goes before the source
    ASSERT_TRUE(follower.setSource({}));
    EXPECT_EQ(localText(follower, *pool), "1");
}

TEST(Parameter, CannotBeReadOnceItsSourceHasGone) {
    VValueParameter<double> follower(1, "follower");
    {
        const StrongPtr<VParameter> source(new VValueParameter<double>(2, "source"));
        follower.setSource(source);
    }
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_TRUE(follower.hasSource());
    EXPECT_EQ(follower.source(), nullptr);
    EXPECT_EQ(follower.getLocalValue(*pool), nullptr);
    EXPECT_EQ(follower.getLocalValue(*pool, "", true), nullptr);
    EXPECT_FALSE(pool->ownsVariable(follower));
    ASSERT_TRUE(follower.setSource({}));
    EXPECT_FALSE(follower.hasSource());
    EXPECT_EQ(localText(follower, *pool), "1");
}

TEST(Parameter, FollowsAChainAndGoesOverToANewSource) {
    const StrongPtr<VParameter> first(new VValueParameter<double>(1, "first")),
        second(new VValueParameter<double>(2, "second")), third(new VValueParameter<double>(3, "third"));
    const StrongPtr<ValuePool> pool(new ValuePool);
    ASSERT_TRUE(first->setSource(second));
    ASSERT_TRUE(second->setSource(third));
    EXPECT_EQ(localText(*first, *pool), "3");
    EXPECT_FALSE(third->setSource(first)); // a circle of three
    EXPECT_EQ(third->source(), nullptr);
    ASSERT_TRUE(first->setSource(third));
    EXPECT_EQ(first->source(), third.get());
    EXPECT_TRUE(second->setSource(first)); // no circle any more
}

TEST(Parameter, RefusesSourcesOfAnotherTypeAndCircles) {
    const StrongPtr<VParameter> a(new VValueParameter<double>(1, "a")),
        b(new VValueParameter<double>(2, "b"));
    EXPECT_FALSE(a->setSource(StrongPtr<VParameter>(new VValueParameter<rgba_float_t>({}, "color"))));
    EXPECT_FALSE(a->setSource(a));
    EXPECT_TRUE(a->setSource(b));
    EXPECT_FALSE(b->setSource(a));
    EXPECT_FALSE(b->hasSource());
}

} // namespace
