#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/object.hpp>
#include <sorvik/parameter.hpp>
#include <sorvik/value_pool.hpp>
#include <sorvik/vprintf.hpp>

#include <gtest/gtest.h>

namespace {

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
    EXPECT_THROW(VParameter(StrongPtr<VValueBase>(), "empty"), std::invalid_argument);
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
    testing::internal::CaptureStdout();
    const VValueParameter<double> latitude(45, "latitude", preferences);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VParameter latitude: \"north\" is no text of a double, the default \"45\" stays\n");
    EXPECT_EQ(latitude.globalValue().Text(), "45");
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
    EXPECT_TRUE(VCreationPreferences().empty());
}

TEST(Parameter, SettingTheGlobalValueIsTraced) {
    VValueParameter<rgba_float_t> parameter({1, 1, 1, 1}, "Color");
    testing::internal::CaptureStdout();
    Qelt::setVerbosity(50);
    EXPECT_TRUE(parameter.setGlobalValue(VValue<rgba_float_t>({0.5f, 0, 0, 1})));
    EXPECT_FALSE(parameter.setGlobalValue(VValue<double>(3)));
    EXPECT_FALSE(parameter.setGlobalValueFromText("red"));
    Qelt::setVerbosity(49);
    EXPECT_TRUE(parameter.setGlobalValueFromText("0 1 0 1"));
    Qelt::setVerbosity(0);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VParameter::setGlobalValue() got variable with 0.5 0 0 1\n");
    EXPECT_EQ(parameter.globalValue().Text(), "0 1 0 1");
    EXPECT_EQ(parameter.DefaultValue().Text(), "1 1 1 1");
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

TEST(Parameter, PropertyClampsNothing) {
    VValueParameter<double> parameter(0, "elevation");
    parameter.setProperty("max", VValue<double>(1));
    EXPECT_TRUE(parameter.setGlobalValueFromText("5"));
    EXPECT_EQ(parameter.globalValue().Text(), "5");
}

TEST(Parameter, PoolsValueGoesBeforeTheGlobalOne) {
    VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool), other(new ValuePool);
    EXPECT_EQ(localText(parameter, *pool.get()), "1");
    pool->createVariable(parameter, StrongPtr<VValueBase>(new VValue<double>(2)));
    EXPECT_EQ(localText(parameter, *pool.get()), "2");
    EXPECT_EQ(localText(parameter, *other.get()), "1");
    parameter.setGlobalValueFromText("3");
    EXPECT_EQ(localText(parameter, *pool.get()), "2");
    EXPECT_EQ(localText(parameter, *other.get()), "3");
    EXPECT_TRUE(pool->removeVariable(parameter));
    EXPECT_EQ(localText(parameter, *pool.get()), "3");
}

TEST(Parameter, MakesAPoolsOwnValueWhereAskedTo) {
    VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    VValueBase* const own = parameter.getLocalValue(*pool.get(), "", true);
    EXPECT_EQ(own->Text(), "1");
    own->setValueFromText("4");
    EXPECT_EQ(localText(parameter, *pool.get()), "4");
    EXPECT_EQ(parameter.globalValue().Text(), "1");
    EXPECT_EQ(parameter.getLocalValue(*pool.get(), "", true), own); // made once
}

TEST(Parameter, UnknownComponentReadsAsNothing) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(parameter.getLocalValue(*pool.get(), "x"), nullptr);
}

TEST(Parameter, FollowsAnotherContextByContext) {
    VValueParameter<double> follower(1, "follower");
    const StrongPtr<VParameter> source(new VValueParameter<double>(2, "source"));
    const StrongPtr<ValuePool> pool(new ValuePool), other(new ValuePool);
    ASSERT_TRUE(follower.setSource(source));
    source->getLocalValue(*pool.get(), "", true)->setValueFromText("7");
    EXPECT_EQ(localText(follower, *pool.get()), "7");
    EXPECT_EQ(localText(follower, *other.get()), "2");
    follower.getLocalValue(*other.get(), "", true)->setValueFromText("8");
    EXPECT_EQ(localText(follower, *other.get()), "8"); // a value of its own in a pool goes before the source
    ASSERT_TRUE(follower.setSource({}));
    EXPECT_EQ(localText(follower, *pool.get()), "1");
}

TEST(Parameter, CannotBeReadOnceItsSourceHasGone) {
    VValueParameter<double> follower(1, "follower");
    {
        const StrongPtr<VParameter> source(new VValueParameter<double>(2, "source"));
        follower.setSource(source);
    }
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_TRUE(follower.hasSource());
    EXPECT_EQ(follower.getLocalValue(*pool.get()), nullptr);
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
