#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/value.hpp>

#include <gtest/gtest.h>
#include <memory>

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

TEST(Value, CannotBeReadOnceItsSourceHasGone) {
    VValue<double> follower(9);
    {
        const StrongPtr<VValueBase> source(new VValue<double>(1));
        ASSERT_TRUE(follower.setSource(source));
    }
    double value = 42;
    EXPECT_FALSE(follower.getValue(value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(follower.Text(), "");
    EXPECT_FALSE(VValue<double>().setContainerValue(follower));
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

TEST(Value, AChangeReachesAllShadows) {
    const StrongPtr<VValueBase> source(new VValue<double>);
    const StrongPtr<VValueBase> near(new VValue<double>), far(new VValue<double>);
    near->setSource(source);
    far->setSource(near);
    const auto before = far->age();
    source->touch();
    EXPECT_GT(source->age(), before);
    EXPECT_EQ(near->age(), source->age());
    EXPECT_EQ(far->age(), source->age());
    near->setSource({});
    const auto left = near->age();
    source->touch();
    EXPECT_EQ(near->age(), left);
}

TEST(ValueNotifierList, CopiesTheShadowsOfAnother) {
    VValue<double> first, second, shadow;
    first.notifiers().addShadow(shadow);
    second.notifiers().copyShadows(first.notifiers());
    EXPECT_EQ(second.notifiers().shadows().size(), 1u);
    second.touch();
    EXPECT_EQ(shadow.age(), second.age());
}

TEST(Value, FollowersGoOverToTheValueThatReplacesTheirSource) {
    const StrongPtr<VValueBase> former(new VValue<double>(1)), latter(new VValue<double>(2));
    VValue<double> follower;
    follower.setSource(former);
    latter->replace(*former.get());
    EXPECT_EQ(read(follower), 2);
}

TEST(Value, CopyStandsAlone) {
    const StrongPtr<VValueBase> source(new VValue<double>(1));
    VValue<double> follower(9);
    follower.setSource(source);
    const StrongPtr<VValueBase> copy = follower.clone();
    EXPECT_FALSE(copy->hasSource());
    EXPECT_EQ(copy->Text(), "1"); // what the original reads as
}

} // namespace
