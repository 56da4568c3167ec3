#include <palune/geometry_traits.hpp>
#include <sorvik/parameter.hpp>
#include <sorvik/state_creator.hpp>
#include <sorvik/value_pool.hpp>

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

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

std::string textIn(const ValueMap& map, const VValueParameter<double>& parameter) {
    const VValueBase* const value = map.getValue(parameter);
    return value ? value->Text() : "nothing";
}

template <class Action>
std::string invalidArgumentOf(Action action) {
    try {
        action();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no invalid argument";
}

TEST(ValueMap, FindsValuesByParameter) {
    const VValueParameter<double> a(1, "same name"), b(2, "same name"), c(3, "same name");
    ValueMap map;
    EXPECT_EQ(textIn(map, a), "nothing");
    map.setValue(a, number(5));
    EXPECT_EQ(textIn(map, a), "5");
    EXPECT_EQ(textIn(map, b), "nothing");
    map.setValue(b, number(6));
    map.setValue(a, number(7)); // in place of the former
    EXPECT_EQ(textIn(map, a), "7");
    EXPECT_EQ(textIn(map, b), "6");
    EXPECT_FALSE(map.removeValue(c));
    EXPECT_TRUE(map.removeValue(a));
    EXPECT_FALSE(map.removeValue(a));
    EXPECT_EQ(textIn(map, a), "nothing");
    EXPECT_EQ(textIn(map, b), "6");
}

TEST(ValuePool, RetrievesFromThePoolBelow) {
    const VValueParameter<double> parameter(1, "p"), other(1, "other");
    const StrongPtr<ValuePool> lowest(new ValuePool), below(new ValuePool(lowest)),
        above(new ValuePool(below));
    EXPECT_EQ(above->retrieveValue(parameter), nullptr);
    lowest->createVariable(parameter, number(2));
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "2");
    EXPECT_EQ(above->retrieveValue(other), nullptr);
    EXPECT_FALSE(above->ownsVariable(parameter));
    EXPECT_TRUE(lowest->ownsVariable(parameter));
    above->createVariable(parameter, number(3));
    EXPECT_TRUE(above->ownsVariable(parameter));
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "3");
    EXPECT_EQ(below->retrieveValue(parameter)->Text(), "2");
    EXPECT_FALSE(below->removeVariable(parameter)); // it has none of its own
    EXPECT_TRUE(above->removeVariable(parameter));
    EXPECT_FALSE(above->removeVariable(parameter));
    EXPECT_EQ(above->retrieveValue(parameter)->Text(), "2");
}

TEST(ValuePool, KeepsItsValuesApart) {
    const VValueParameter<double> a(1, "a"), b(2, "b");
    const StrongPtr<ValuePool> pool(new ValuePool);
    const StrongPtr<VValueBase> first = number(5);
    EXPECT_EQ(&pool->createVariable(a, first), first.get());
    pool->createVariable(b, StrongPtr<VValueBase>(new VValue<Orvid::rgba_float_t>)); // of whatever type
    EXPECT_EQ(pool->retrieveValue(a), first.get());
    EXPECT_EQ(pool->retrieveValue(b)->Text(), "0 0 0 0");
    EXPECT_TRUE(pool->removeVariable(a));
    EXPECT_EQ(pool->retrieveValue(a), nullptr);
    EXPECT_EQ(pool->retrieveValue(b)->Text(), "0 0 0 0");
}

TEST(ValuePool, OwnValueOverAPoolBelowThatHasOne) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> below(new ValuePool), above(new ValuePool(below));
    below->createVariable(parameter, number(2));
    parameter.getLocalValue(*above, "", true)->setValueFromText("4");
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

TEST(ValuePool, VariableMadeOfItsOwnValueStaysAsItIs) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    const StrongPtr<VValueBase> value = number(2);
    VValue<double> follower;
    follower.setSource(value);
    pool->createVariable(parameter, value);
    const auto age = value->age();
    EXPECT_EQ(&pool->createVariable(parameter, value), value.get());
    EXPECT_EQ(value->age(), age);
    EXPECT_EQ(value->notifiers().shadows().size(), 1u);
}

TEST(ValuePool, RefusesAVariableWithoutAValue) {
    const VValueParameter<double> parameter(1, "p");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(invalidArgumentOf([&] { pool->createVariable(parameter, {}); }),
              "ValuePool::createVariable: a variable needs a value, none was given");
    EXPECT_FALSE(pool->ownsVariable(parameter));
}

TEST(ValuePool, EachOneForgetsParametersThatGo) {
    const StrongPtr<ValuePool> pools[] = {StrongPtr<ValuePool>(new ValuePool),
                                          StrongPtr<ValuePool>(new ValuePool),
                                          StrongPtr<ValuePool>(new ValuePool)};
    const VValueParameter<double> lasting(1, "lasting");
    const StrongPtr<VValueBase> values[] = {number(2), number(3), number(4)};
    {
        const VValueParameter<double> passing(1, "p");
        for (int i = 0; i < 3; ++i) {
            pools[i]->createVariable(lasting, number(i));
            pools[i]->createVariable(passing, values[i]);
            EXPECT_EQ(values[i]->controlBlock().strongCount(), 2);
        }
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(values[i]->controlBlock().strongCount(), 1) << i;
        EXPECT_EQ(pools[i]->retrieveValue(lasting)->Text(), std::to_string(i));
    }
}

TEST(ValuePool, ValueMayHoldWhatPoolsForgetInTurn) {
    struct Holding : VValue<double> {
        VValueParameter<double> inner{2, "inner"};
    };
    const StrongPtr<ValuePool> pool(new ValuePool);
    const StrongPtr<VValueBase> inner_value = number(3);
    {
        const VValueParameter<double> passing(1, "p");
        auto* const holding = new Holding;
        pool->createVariable(passing, StrongPtr<VValueBase>(holding));
        pool->createVariable(holding->inner, inner_value);
    }
    EXPECT_EQ(inner_value->controlBlock().strongCount(), 1);
}

TEST(ValuePool, MayGoBeforeTheParameter) {
    const StrongPtr<VValueBase> value = number(2);
    const VValueParameter<double> parameter(1, "p");
    {
        const StrongPtr<ValuePool> pool(new ValuePool);
        pool->createVariable(parameter, value);
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
    const auto first = object.myState(*pool);
    EXPECT_EQ(object.myState(*pool), first);
    EXPECT_NE(object.myState(*other).get(), first.get());
    EXPECT_EQ(object.made, 2);
}

TEST(StateCreator, BaseMakesAnEmptyState) {
    const VStateCreatorBase object;
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_TRUE(object.myState(*pool));
}

TEST(ValuePool, KeepsTheStatesOfObjectsApart) {
    const CountingStates first, second, third;
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(pool->findState(first), nullptr);
    const auto of_first = first.myState(*pool), of_second = second.myState(*pool);
    EXPECT_FALSE(of_first == of_second);
    EXPECT_EQ(first.myState(*pool), of_first);
    EXPECT_EQ(second.myState(*pool), of_second);
    ASSERT_NE(pool->findState(second), nullptr);
    EXPECT_EQ(*pool->findState(second), of_second);
    EXPECT_EQ(pool->findState(third), nullptr);
    const auto other = Tessan::makeStrong<VStateCreatorBase::State>();
    EXPECT_EQ(pool->keepState(first, other), other); // in place of the former
    EXPECT_EQ(first.myState(*pool), other);
    EXPECT_EQ(second.myState(*pool), of_second);
}

TEST(StateCreator, StatesGoWithTheObject) {
    const StrongPtr<ValuePool> pools[] = {StrongPtr<ValuePool>(new ValuePool),
                                          StrongPtr<ValuePool>(new ValuePool),
                                          StrongPtr<ValuePool>(new ValuePool)};
    const CountingStates lasting;
    std::vector<Tessan::WeakPtr<VStateCreatorBase::State>> states, lasting_states;
    {
        const CountingStates object;
        for (const auto& pool : pools) {
            states.emplace_back(object.myState(*pool));
            lasting_states.emplace_back(lasting.myState(*pool));
            EXPECT_TRUE(states.back());
        }
    }
    for (const auto& state : states)
        EXPECT_FALSE(state);
    for (const auto& state : lasting_states)
        EXPECT_TRUE(state);
}

TEST(StateCreator, StateGoesWithThePool) {
    const CountingStates object;
    Tessan::WeakPtr<VStateCreatorBase::State> state;
    {
        const StrongPtr<ValuePool> pool(new ValuePool);
        state = object.myState(*pool);
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
        auto& own = const_cast<Nested::Own&>(static_cast<const Nested::Own&>(*object.myState(*pool)));
        own.inner.myState(*pool);
        own.parameter.getLocalValue(*pool, "", true);
    }
}

TEST(Request, NeedsAPool) {
    EXPECT_EQ(invalidArgumentOf([] { Qelt::VRequest(StrongPtr<ValuePool>{}); }),
              "VRequest: a request needs the value pool of its context, none was given");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(&Qelt::VRequest(pool).pool(), pool.get());
}

} // namespace
