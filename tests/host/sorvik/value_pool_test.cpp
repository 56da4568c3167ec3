#include <palune/geometry_traits.hpp>
#include <sorvik/parameter.hpp>
#include <sorvik/state_creator.hpp>
#include <sorvik/value_pool.hpp>

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace {

using Qelt::ValueMap;
using Qelt::ValuePool;
using Qelt::VStateCreatorBase;
using Qelt::VValue;
using Qelt::VValueBase;
using Qelt::VValueParameter;
using Tessan::StrongPtr;

StrongPtr<VValueBase> number(double value) {
    return StrongPtr<VValueBase>(new VValue<double>(value));
}

TEST(ValueMap, FindsValuesByParameter) {
    const VValueParameter<double> a(1, "same name"), b(2, "same name");
    ValueMap map;
    EXPECT_EQ(map.getValue(a), nullptr);
    map.setValue(a, number(5));
    EXPECT_EQ(map.getValue(a)->Text(), "5");
    EXPECT_EQ(map.getValue(b), nullptr);
    EXPECT_TRUE(map.removeValue(a));
    EXPECT_FALSE(map.removeValue(a));
}

TEST(ValuePool, RetrievesFromThePoolBelow) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> below(new ValuePool), above(new ValuePool(below));
    EXPECT_EQ(above->retrieveValue(parameter), nullptr);
    below->createVariable(parameter, number(2));
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "2");
    above->createVariable(parameter, number(3));
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "3");
    EXPECT_EQ(below->retrieveValue(parameter)->Text(), "2");
}

TEST(ValuePool, OwnValueOverAPoolBelowThatHasOne) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> below(new ValuePool), above(new ValuePool(below));
    below->createVariable(parameter, number(2));
    parameter.getLocalValue(*above.get(), "", true)->setValueFromText("4");
    EXPECT_EQ(below->retrieveValue(parameter)->Text(), "2");
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "4");
}

TEST(ValuePool, NewVariableKeepsTheFollowersOfTheFormer) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    VValue<double> follower;
    const StrongPtr<VValueBase> former = number(2);
    pool->createVariable(parameter, former);
    follower.setSource(former);
    pool->createVariable(parameter, number(3));
    EXPECT_EQ(follower.Text(), "3");
}

TEST(ValuePool, RefusesAVariableWithoutAValue) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_THROW(pool->createVariable(parameter, {}), std::invalid_argument);
}

TEST(ValuePool, ForgetsParametersThatGo) {
    const StrongPtr<ValuePool> pool(new ValuePool);
    const StrongPtr<VValueBase> value = number(2);
    {
        const VValueParameter<double> passing(1, "p");
        pool->createVariable(passing, value);
        EXPECT_EQ(value->controlBlock().strongCount(), 2);
    }
    EXPECT_EQ(value->controlBlock().strongCount(), 1);
}

class CountingStates final : public VStateCreatorBase {
public:
    StrongPtr<State> newState() const override {
        ++made;
        return Tessan::makeStrong<State>();
    }
    mutable int made = 0;
};

TEST(StateCreator, MakesOneStateForEachPool) {
    const CountingStates object;
    const StrongPtr<ValuePool> pool(new ValuePool), other(new ValuePool);
    const auto first = object.myState(*pool.get());
    EXPECT_EQ(object.myState(*pool.get()), first);
    EXPECT_NE(object.myState(*other.get()).get(), first.get());
    EXPECT_EQ(object.made, 2);
}

TEST(StateCreator, BaseMakesAnEmptyState) {
    const VStateCreatorBase object;
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_TRUE(object.myState(*pool.get()));
}

TEST(StateCreator, StateGoesWithTheObject) {
    const StrongPtr<ValuePool> pool(new ValuePool);
    Tessan::WeakPtr<VStateCreatorBase::State> state;
    {
        const CountingStates object;
        state = object.myState(*pool.get());
        EXPECT_TRUE(state);
    }
    EXPECT_FALSE(state);
}

TEST(StateCreator, StateGoesWithThePool) {
    const CountingStates object;
    Tessan::WeakPtr<VStateCreatorBase::State> state;
    {
        const StrongPtr<ValuePool> pool(new ValuePool);
        state = object.myState(*pool.get());
    }
    EXPECT_FALSE(state);
}

TEST(StateCreator, StateMayHoldWhatPoolsForgetInTurn) {
    class Nested final : public VStateCreatorBase {
    public:
        struct Own : State {
            VValueParameter<double> parameter{1.0, "inner"};
            VStateCreatorBase inner;
        };
        StrongPtr<State> newState() const override { return Tessan::makeStrong<Own>(); }
    };
    const StrongPtr<ValuePool> pool(new ValuePool);
    {
        const Nested object;
        auto& own =
            const_cast<Nested::Own&>(static_cast<const Nested::Own&>(*object.myState(*pool.get()).get()));
        own.inner.myState(*pool.get());
        own.parameter.getLocalValue(*pool.get(), "", true);
    }
}

TEST(Request, NeedsAPool) {
    EXPECT_THROW(Qelt::VRequest(StrongPtr<ValuePool>()), std::invalid_argument);
}

} // namespace
