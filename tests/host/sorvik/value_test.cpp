#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/value.hpp>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Orvid::rgba_float_t;
using Qelt::VTypedValueBase;
using Qelt::VValue;
using Qelt::VValueBase;
using Tessan::StrongPtr;

/// A value that is computed, not held.
class Doubled final : public VTypedValueBase<double> {
public:
    explicit Doubled(double half) : my_half(half) {}
    bool getValue(double& value) const override {
        value = 2 * my_half;
        return true;
    }
    StrongPtr<VValueBase> clone() const override { return StrongPtr<VValueBase>(new Doubled(my_half)); }
    bool setValueFromText(const std::string&) override { return false; }
    bool setContainerValue(const VValueBase&) override { return false; }

private:
    double my_half;
};

double read(const VTypedValueBase<double>& value) {
    double result = -1;
    EXPECT_TRUE(value.getValue(result));
    return result;
}

TEST(Value, IsStoredInACountedArray) {
    const std::size_t before = Tessan::ChunkBase::TotalMemsize;
    {
        const VValue<double> number(1.5);
        EXPECT_EQ(Tessan::ChunkBase::TotalMemsize, before + sizeof(double));
        const VValue<rgba_float_t> color;
        EXPECT_EQ(Tessan::ChunkBase::TotalMemsize, before + sizeof(double) + sizeof(rgba_float_t));
    }
    EXPECT_EQ(Tessan::ChunkBase::TotalMemsize, before);
}

TEST(Value, TakesOverValuesOfItsTypeOnly) {
    VValue<double> number(1);
    EXPECT_TRUE(number.setContainerValue(VValue<double>(2)));
    EXPECT_EQ(read(number), 2);
    EXPECT_TRUE(number.setContainerValue(Doubled(4))); // a computed one is as good
    EXPECT_EQ(read(number), 8);
    EXPECT_FALSE(number.setContainerValue(VValue<rgba_float_t>()));
    EXPECT_EQ(read(number), 8);
}

TEST(Value, ComparesByTypeAndValue) {
    EXPECT_TRUE(VValue<double>(2).equals(VValue<double>(2)));
    EXPECT_TRUE(VValue<double>(2).equals(Doubled(1)));
    EXPECT_FALSE(VValue<double>(2).equals(VValue<double>(3)));
    EXPECT_FALSE(VValue<double>(0).equals(VValue<rgba_float_t>()));
}

TEST(Value, OffersItselfAsItsTypedInterface) {
    VValue<double> number(3);
    auto* const typed =
        static_cast<VTypedValueBase<double>*>(number.getInterface(typeid(VTypedValueBase<double>)));
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(read(*typed), 3);
    EXPECT_EQ(number.getInterface(typeid(VTypedValueBase<rgba_float_t>)), nullptr);
    EXPECT_EQ(number.getInterface(typeid(VValue<double>)), nullptr);
    EXPECT_NE(Doubled(1).getInterface(typeid(VTypedValueBase<double>)), nullptr);
}

/// A value of no type that others could ask for.
class OpaqueValue final : public VValueBase {
public:
    const std::type_info& type() const noexcept override { return typeid(OpaqueValue); }
    StrongPtr<VValueBase> clone() const override { return {}; }
    bool equals(const VValueBase&) const override { return false; }
    std::string Text() const override { return {}; }
    bool setValueFromText(const std::string&) override { return false; }
    bool setContainerValue(const VValueBase&) override { return false; }
};

TEST(Value, BaseOffersNoInterfaceAndNoComponents) {
    OpaqueValue value;
    EXPECT_EQ(value.getInterface(typeid(OpaqueValue)), nullptr);
    EXPECT_EQ(value.getInterface(typeid(VTypedValueBase<double>)), nullptr);
    EXPECT_EQ(value.component(""), &value);
    EXPECT_EQ(value.component("x"), nullptr);
}

TEST(Value, StartsAsZeroUnlessTold) {
    EXPECT_EQ(VValue<double>().Text(), "0");
    EXPECT_EQ(VValue<rgba_float_t>().Text(), "0 0 0 0");
    EXPECT_EQ(VValue<rgba_float_t>({0.1f, 0.2f, 0.3f, 0.4f}).Text(), "0.1 0.2 0.3 0.4");
    EXPECT_EQ(VValue<double>().type(), typeid(double));
    EXPECT_EQ(VValue<rgba_float_t>().type(), typeid(rgba_float_t));
}

TEST(Value, IsItsOwnOnlyComponent) {
    VValue<double> number;
    EXPECT_EQ(number.component(""), &number);
    EXPECT_EQ(number.component("x"), nullptr);
}

TEST(Value, FollowsASource) {
    const StrongPtr<VValue<double>> source(new VValue<double>(1));
    VValue<double> follower(9);
    ASSERT_TRUE(follower.setSource(source));
    EXPECT_EQ(read(follower), 1);
    source->setValue(5);
    EXPECT_EQ(read(follower), 5);
    EXPECT_EQ(follower.Text(), "5");
    ASSERT_TRUE(follower.setSource({}));
    EXPECT_EQ(read(follower), 9);
}

/// A value whose source has gone. Its own content is `content`.
struct Detached : VValue<double> {
    explicit Detached(double content) : VValue(content) {
        const StrongPtr<VValueBase> source(new VValue<double>(1));
        EXPECT_TRUE(setSource(source));
    }
};

TEST(Value, CannotBeReadOnceItsSourceHasGone) {
    Detached follower(9);
    EXPECT_TRUE(follower.hasSource());
    EXPECT_EQ(follower.source(), nullptr);
    double value = 42;
    EXPECT_FALSE(follower.getValue(value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(follower.Text(), "");
    VValue<double> other(3);
    EXPECT_FALSE(other.setContainerValue(follower));
    EXPECT_EQ(read(other), 3);
    ASSERT_TRUE(follower.setSource({}));
    EXPECT_EQ(read(follower), 9);
}

TEST(Value, EqualsNothingThatCannotBeRead) {
    for (const double content : {0.0, 9.0}) {
        const Detached detached(content);
        EXPECT_FALSE(detached.equals(VValue<double>(content)));
        EXPECT_FALSE(VValue<double>(content).equals(detached));
        EXPECT_FALSE(detached.equals(VValue<double>(0)));
        EXPECT_FALSE(VValue<double>(0).equals(detached));
        EXPECT_FALSE(detached.equals(Detached(content)));
    }
}

TEST(Value, CloneOfOneWhoseSourceHasGoneHoldsItsContent) {
    const StrongPtr<VValueBase> clone = Detached(9).clone();
    EXPECT_FALSE(clone->hasSource());
    EXPECT_EQ(clone->Text(), "9");
}

TEST(Value, GoesOverToANewSource) {
    const StrongPtr<VValue<double>> first(new VValue<double>(1)), second(new VValue<double>(2));
    VValue<double> follower(9);
    ASSERT_TRUE(follower.setSource(first));
    ASSERT_TRUE(follower.setSource(second));
    EXPECT_EQ(read(follower), 2);
    EXPECT_EQ(follower.source(), second.get());
    EXPECT_TRUE(first->notifiers().shadows().empty());
    ASSERT_EQ(second->notifiers().shadows().size(), 1u);
    EXPECT_EQ(second->notifiers().shadows()[0].get(), &follower);
}

TEST(Value, FollowsComputedValues) {
    VValue<double> follower(9);
    const StrongPtr<VValueBase> source(new Doubled(4));
    ASSERT_TRUE(follower.setSource(source));
    EXPECT_EQ(read(follower), 8);
}

TEST(Value, RefusesSourcesOfAnotherTypeAndCircles) {
    const StrongPtr<VValueBase> a(new VValue<double>), b(new VValue<double>), c(new VValue<double>);
    EXPECT_FALSE(a->setSource(StrongPtr<VValueBase>(new VValue<rgba_float_t>)));
    EXPECT_FALSE(a->setSource(a));
    EXPECT_TRUE(a->setSource(b));
    EXPECT_TRUE(b->setSource(c));
    EXPECT_FALSE(c->setSource(a));
    EXPECT_EQ(c->source(), nullptr);
}

TEST(Value, EveryChangeIsOneTickOfTheClock) {
    const StrongPtr<VValue<double>> source(new VValue<double>(1));
    VValue<double> value(2);
    auto now = Tessan::Ageable::GlobalTime.load();
    const auto expectTick = [&](const VValueBase& changed) {
        EXPECT_EQ(changed.age(), ++now);
        EXPECT_EQ(Tessan::Ageable::GlobalTime.load(), now);
    };
    value.setValue(3);
    expectTick(value);
    EXPECT_TRUE(value.setValueFromText("4"));
    expectTick(value);
    EXPECT_TRUE(value.setContainerValue(*source));
    expectTick(value);
    EXPECT_TRUE(value.setSource(source));
    expectTick(value);
    EXPECT_TRUE(value.setSource({}));
    expectTick(value);
    EXPECT_FALSE(value.setValueFromText("four"));
    EXPECT_FALSE(value.setContainerValue(VValue<rgba_float_t>()));
    EXPECT_FALSE(value.setSource(StrongPtr<VValueBase>(new VValue<rgba_float_t>)));
    EXPECT_EQ(value.age(), now); // what was refused has changed nothing
}

TEST(Value, AChangeReachesAllShadows) {
    const StrongPtr<VValueBase> source(new VValue<double>);
    const StrongPtr<VValueBase> near(new VValue<double>), beside(new VValue<double>), far(new VValue<double>);
    near->setSource(source);
    beside->setSource(source);
    far->setSource(near);
    const auto before = Tessan::Ageable::GlobalTime.load();
    source->touch();
    EXPECT_EQ(Tessan::Ageable::GlobalTime.load(), before + 1);
    for (const auto* const value : {&source, &near, &beside, &far})
        EXPECT_EQ((*value)->age(), before + 1);
    near->setSource({}); // changes both itself and what follows it
    EXPECT_EQ(far->age(), before + 2);
    source->touch();
    EXPECT_EQ(near->age(), before + 2);
    EXPECT_EQ(far->age(), before + 2);
    EXPECT_EQ(beside->age(), before + 3);
}

std::vector<const VValueBase*> shadowsOf(VValueBase& value) {
    std::vector<const VValueBase*> shadows;
    for (const auto& shadow : value.notifiers().shadows())
        shadows.push_back(shadow.get());
    return shadows;
}

using Shadows = std::vector<const VValueBase*>;

TEST(ValueNotifierList, AddsAndRemovesShadows) {
    VValue<double> value, first, second, third;
    for (VValue<double>* const shadow : {&first, &second, &third})
        value.notifiers().addShadow(*shadow);
    EXPECT_EQ(shadowsOf(value), (Shadows{&first, &second, &third}));
    value.notifiers().removeShadow(second);
    EXPECT_EQ(shadowsOf(value), (Shadows{&first, &third}));
    value.notifiers().removeShadow(second); // not there any more
    EXPECT_EQ(shadowsOf(value), (Shadows{&first, &third}));
}

TEST(ValueNotifierList, DropsShadowsThatHaveGone) {
    VValue<double> value, lasting;
    value.notifiers().addShadow(lasting);
    for (int i = 0; i < 1000; ++i) {
        VValue<double> passing;
        value.notifiers().addShadow(passing);
    }
    EXPECT_LT(value.notifiers().shadows().size(), 20u);
    value.touch();
    EXPECT_EQ(lasting.age(), value.age());
    {
        VValue<double> passing;
        value.notifiers().addShadow(passing);
    }
    value.notifiers().removeShadow(VValue<double>());
    EXPECT_EQ(shadowsOf(value), (Shadows{&lasting}));
}

TEST(ValueNotifierList, CopiesTheLivingShadowsOfAnother) {
    VValue<double> first, second, own, shadow, other_shadow;
    first.notifiers().addShadow(shadow);
    {
        VValue<double> passing;
        first.notifiers().addShadow(passing);
    }
    first.notifiers().addShadow(other_shadow);
    second.notifiers().addShadow(own);
    second.notifiers().copyShadows(first.notifiers());
    EXPECT_EQ(shadowsOf(second), (Shadows{&own, &shadow, &other_shadow}));
    second.touch();
    EXPECT_EQ(shadow.age(), second.age());
}

TEST(Value, FollowersGoOverToTheValueThatReplacesTheirSource) {
    const StrongPtr<VValueBase> former(new VValue<double>(1)), latter(new VValue<double>(2)),
        other(new VValue<double>(3));
    VValue<double> follower, second_follower, follower_of_another;
    follower.setSource(former);
    second_follower.setSource(former);
    follower_of_another.setSource(other);
    latter->notifiers().addShadow(follower_of_another); // is told, but follows another value
    const auto before = Tessan::Ageable::GlobalTime.load();
    latter->replace(*former);
    EXPECT_EQ(read(follower), 2);
    EXPECT_EQ(read(second_follower), 2);
    EXPECT_EQ(read(follower_of_another), 3);
    EXPECT_EQ(latter->age(), before + 1);
    EXPECT_EQ(follower.age(), before + 1);
}

TEST(Value, CopyStandsAlone) {
    const StrongPtr<VValueBase> source(new VValue<double>(1));
    VValue<double> follower(9);
    follower.setSource(source);
    const StrongPtr<VValueBase> copy = follower.clone();
    EXPECT_FALSE(copy->hasSource());
    EXPECT_EQ(copy->Text(), "1"); // what the original reads as
}

TEST(Value, CopyOfAComputedOneStandsAloneToo) {
    const StrongPtr<VValueBase> source(new Doubled(1));
    Doubled original(2);
    VValue<double> shadow;
    original.setSource(source);
    original.notifiers().addShadow(shadow);
    Doubled copy(original);
    EXPECT_FALSE(copy.hasSource());
    EXPECT_EQ(copy.source(), nullptr);
    EXPECT_TRUE(copy.notifiers().shadows().empty());
    EXPECT_EQ(read(copy), 4);
}

} // namespace
