#include "tests/support/plain_object.hpp"

#include <sorvik/managed_object.hpp>
#include <sorvik/value_creator.hpp>

#include <gtest/gtest.h>

namespace {

using Qelt::TypedSlotCreator;
using Qelt::TypedSlotCreatorOf;
using Qelt::VValueCreator;
using Qelt::VValueCreatorOf;

TEST(SlotCreators, SeveralMayServeATypeAndExactlyTheGivenOneGoes) {
    const TypedSlotCreatorOf<double> first, second;
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), first, "double");
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), second, "double");
    EXPECT_EQ(TypedSlotCreator::count(typeid(double)), 2u);
    EXPECT_EQ(TypedSlotCreator::find("double"), &first);
    EXPECT_TRUE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), first, "double"));
    EXPECT_EQ(TypedSlotCreator::find(typeid(double)), &second);
    EXPECT_FALSE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), first, "double"));
    EXPECT_FALSE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), second, "other name"));
    EXPECT_TRUE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), second, "double"));
    EXPECT_EQ(TypedSlotCreator::find("double"), nullptr);
}

TEST(ValueCreators, MakeValuesByTypeNameUntilTheyGo) {
    {
        const VValueCreatorOf<double> first;
        const VValueCreatorOf<Orvid::rgba_float_t> second;
        VValueCreator::registerCreator(first, "double");
        VValueCreator::registerCreator(second, "Orvid::rgba_float_t");
        EXPECT_EQ(VValueCreator::find("double")->newValue()->Text(), "0");
        EXPECT_EQ(VValueCreator::find("Orvid::rgba_float_t")->newValue()->Text(), "0 0 0 0");
        EXPECT_EQ(VValueCreator::count("double"), 1u);
        EXPECT_EQ(VValueCreator::find("int"), nullptr);
    }
    EXPECT_EQ(VValueCreator::find("double"), nullptr);
    EXPECT_EQ(VValueCreator::count("double"), 0u);
}

TEST(ManagedObjects, AreNumberedAndListedByDomain) {
    const auto listed = Qelt::VObject::members().size();
    {
        const korl::test::PlainObject first("first"), second("second");
        EXPECT_LT(first.number(), second.number());
        ASSERT_EQ(Qelt::VObject::members().size(), listed + 2);
        EXPECT_EQ(Qelt::VObject::members().back()->Name(), "second");
    }
    EXPECT_EQ(Qelt::VObject::members().size(), listed);
}

} // namespace
