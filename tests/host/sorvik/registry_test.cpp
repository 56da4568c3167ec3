#include "tests/support/plain_object.hpp"

#include <sorvik/managed_object.hpp>
#include <sorvik/value_creator.hpp>

#include <gtest/gtest.h>
#include <iterator>
#include <memory>

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

/// Enters a slot creator as long as it lives.
class Entry {
public:
    Entry(const std::type_info& type, const TypedSlotCreator& creator, const char* name)
        : my_type(type), my_creator(creator), my_name(name) {
        TypedSlotCreator::registerTypedSlotCreator(type, creator, name);
    }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;
    ~Entry() { EXPECT_TRUE(TypedSlotCreator::unregisterTypedSlotCreator(my_type, my_creator, my_name)); }

private:
    const std::type_info& my_type;
    const TypedSlotCreator& my_creator;
    const char* my_name;
};

TEST(SlotCreators, AreFoundByTypeAndByName) {
    const TypedSlotCreatorOf<double> of_double, of_another_name;
    const TypedSlotCreatorOf<Orvid::rgba_float_t> of_color;
    {
        const Entry number(typeid(double), of_double, "number"),
            color(typeid(Orvid::rgba_float_t), of_color, "color"),
            figure(typeid(double), of_another_name, "figure");
        EXPECT_EQ(TypedSlotCreator::find("number"), &of_double);
        EXPECT_EQ(TypedSlotCreator::find("figure"), &of_another_name); // as long as "number"
        EXPECT_EQ(TypedSlotCreator::find("color"), &of_color);
        EXPECT_EQ(TypedSlotCreator::find(""), nullptr);
        EXPECT_EQ(TypedSlotCreator::find(typeid(double)), &of_double);
        EXPECT_EQ(TypedSlotCreator::find(typeid(Orvid::rgba_float_t)), &of_color);
        EXPECT_EQ(TypedSlotCreator::find(typeid(int)), nullptr);
        EXPECT_EQ(TypedSlotCreator::count(typeid(double)), 2u);
        EXPECT_EQ(TypedSlotCreator::count(typeid(Orvid::rgba_float_t)), 1u);
        EXPECT_EQ(TypedSlotCreator::count(typeid(int)), 0u);
    }
    EXPECT_EQ(TypedSlotCreator::count(typeid(double)), 0u);
}

TEST(SlotCreators, OnlyAnEntryThatIsAlikeInAllThreeIsWithdrawn) {
    const TypedSlotCreatorOf<double> first, second, other;
    const Entry entry(typeid(double), first, "double"), later(typeid(double), second, "double");
    EXPECT_FALSE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(float), first, "double"));
    EXPECT_FALSE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), other, "double"));
    EXPECT_FALSE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), first, "Double"));
    EXPECT_TRUE(TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), second, "double"));
    EXPECT_EQ(TypedSlotCreator::find("double"), &first); // which stays
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), second, "double");
}

TEST(ValueCreators, GoWithAllTheirNamesAndLeaveTheOthers) {
    const VValueCreatorOf<double> lasting;
    VValueCreator::registerCreator(lasting, "second");
    {
        const VValueCreatorOf<Orvid::rgba_float_t> passing;
        VValueCreator::registerCreator(passing, "first");
        VValueCreator::registerCreator(passing, "second");
        VValueCreator::registerCreator(lasting, "third");
        EXPECT_EQ(VValueCreator::find("first"), &passing);
        EXPECT_EQ(VValueCreator::find("third"), &lasting);  // as long a name
        EXPECT_EQ(VValueCreator::find("second"), &lasting); // the first under the name
        EXPECT_EQ(VValueCreator::count("second"), 2u);
        EXPECT_EQ(VValueCreator::count("first"), 1u);
    }
    EXPECT_EQ(VValueCreator::find("first"), nullptr);
    EXPECT_EQ(VValueCreator::count("second"), 1u);
    EXPECT_EQ(VValueCreator::find("third"), &lasting);
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

TEST(ManagedObjects, AreNumberedWithoutGapsAcrossKinds) {
    const Qelt::VManagedObject first("first");
    const korl::test::PlainObject second("second");
    const Qelt::VManagedObject third("first");
    EXPECT_EQ(second.number(), first.number() + 1);
    EXPECT_EQ(third.number(), first.number() + 2);
}

TEST(ManagedObjects, LeaveTheirListFromItsMiddle) {
    const korl::test::PlainObject first("first");
    auto second = std::make_unique<korl::test::PlainObject>("second");
    const korl::test::PlainObject third("third");
    second.reset();
    const auto& members = Qelt::VObject::members();
    ASSERT_GE(members.size(), 2u);
    EXPECT_EQ(members.back(), &third);
    EXPECT_EQ(*std::prev(members.end(), 2), &first);
}

} // namespace
