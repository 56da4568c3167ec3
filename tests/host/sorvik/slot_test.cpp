#include "tests/support/heard_reports.hpp"
#include "tests/support/plain_object.hpp"

#include <sorvik/value_pool.hpp>

#include <gmock/gmock.h>

namespace {

using korl::test::PlainObject;
using Orvid::rgba_float_t;
using Qelt::TypedSlot;
using Qelt::TypedSlotCreator;
using Qelt::ValuePool;
using Qelt::VParameter;
using Qelt::VSlotGlobals;
using Qelt::VValueParameter;
using Tessan::StrongPtr;
using testing::ElementsAre;

TEST(TypedSlot, GivesTheObjectAParameter) {
    const PlainObject object("o");
    ASSERT_EQ(object.parameters().size(), 4u);
    const auto& [parameter, expert_level] = object.parameters()[1];
    EXPECT_EQ(parameter->Name(), "tint");
    EXPECT_EQ(parameter->type(), typeid(rgba_float_t));
    EXPECT_EQ(parameter->DefaultValue().Text(), "0.1 0.2 0.3 1");
    EXPECT_EQ(parameter->creator(), &object);
    EXPECT_EQ(expert_level, 1);
    EXPECT_EQ(object.tint.parameter(), parameter.get());
    EXPECT_EQ(object.findParameter("nothing"), nullptr);
    EXPECT_EQ(object.findSlot("tint"), &object.tint);
}

TEST(TypedSlot, ReadsItsValueInAPool) {
    PlainObject object("o");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_EQ(object.strength.getValueBase(*pool.get())->Text(), "0.5");
    object.removeParameter("strength");
    EXPECT_EQ(object.strength.parameter(), nullptr);
    EXPECT_EQ(object.strength.getValueBase(*pool.get()), nullptr);
    EXPECT_FALSE(object.removeParameter("strength"));
}

TEST(TypedSlot, ParameterOfAnotherTypeIsReported) {
    PlainObject object("o");
    korl::test::HeardReports heard;
    const TypedSlot<double> clash(&object, "tint", 1.0, 0);
    EXPECT_EQ(clash.parameter(), nullptr);
    EXPECT_THAT(
        heard.places,
        ElementsAre("TypedSlot(VObject*that, const string&name, const T&initialValue, int expertLevel"));
    EXPECT_THAT(heard.messages, ElementsAre("parameter \"tint\" is no double but a Orvid::rgba_float_t"));
    EXPECT_EQ(object.findParameter("tint")->type(), typeid(rgba_float_t));
}

TEST(TypedSlot, SharesAParameterOfItsTypeThatIsThere) {
    PlainObject object("o");
    const TypedSlot<double> second(&object, "strength", 9.0, 5);
    EXPECT_EQ(second.parameter(), object.strength.parameter());
    EXPECT_EQ(object.findParameter("strength")->DefaultValue().Text(), "0.5");
    EXPECT_EQ(object.parameters().size(), 4u);
}

TEST(TypedSlot, CountsItsEndWhereCreatorsWereRegistered) {
    PlainObject object("o");
    const auto before = TypedSlotCreator::InternalTypeCreatorAccessory.load();
    { const TypedSlot<double> slot(&object, "more", 1.0, 0); }
    EXPECT_EQ(TypedSlotCreator::InternalTypeCreatorAccessory.load(), before + 1);
}

TEST(TypedSlot, WarnsOnStandardOutputWhereNoneWere) {
    PlainObject object("o");
    korl::test::HeardReports heard;
    testing::internal::CaptureStdout();
    Qelt::slot_creators_registered<double> = false;
    { const TypedSlot<double> slot(&object, "more", 1.0, 0); }
    Qelt::slot_creators_registered<double> = true;
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Typeslot has a problem, its creators were not registered!?\n");
    EXPECT_THAT(heard.places, ElementsAre("~TypedSlot()"));
    EXPECT_THAT(heard.messages,
                ElementsAre("slot \"more\" of korl::test::PlainObject takes a double, whose slot creator " +
                            Tessan::libraryOf(typeid(PlainObject)).file + " has not registered"));
}

TEST(SlotGlobals, ReplacesAParameterOnlyWhereTheObjectAllows) {
    struct Lenient : PlainObject {
        using PlainObject::PlainObject;
        bool allowParameterReplacement(std::string_view name) const override { return name == "strength"; }
    };
    PlainObject strict("strict");
    Lenient lenient("lenient");
    const StrongPtr<VParameter> other(new VValueParameter<double>(7, "strength"));
    EXPECT_NE(VSlotGlobals::addParameter(strict, "strength", 0, other, true), other);
    EXPECT_NE(VSlotGlobals::addParameter(lenient, "strength", 0, other, false), other);
    EXPECT_EQ(VSlotGlobals::addParameter(lenient, "strength", 3, other, true), other);
    EXPECT_EQ(lenient.parameters()[0].expert_level, 3);
}

TEST(SlotGlobals, AssertionGoesToThePointerDiagnostics) {
    korl::test::HeardReports heard;
    VSlotGlobals::assertionFail("expectation", "place");
    EXPECT_THAT(heard.messages, ElementsAre("expectation"));
    EXPECT_THAT(heard.places, ElementsAre("place"));
}

TEST(Slot, ConnectsToAnotherObjectsParameter) {
    PlainObject from("from"), to("to");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_FALSE(to.strength.connect(from.parameters()[1].parameter)); // a colour
    ASSERT_TRUE(to.strength.connect(from.parameters()[0].parameter));
    from.findParameter("strength")->setGlobalValueFromText("0.25");
    EXPECT_EQ(to.strength.getValueBase(*pool.get())->Text(), "0.25");
    from.removeParameter("strength");
    EXPECT_EQ(to.strength.getValueBase(*pool.get()), nullptr);
    EXPECT_EQ(to.adjustConnections(), 1u); // lets go of what has gone
    EXPECT_EQ(to.strength.getValueBase(*pool.get())->Text(), "0.5");
    EXPECT_EQ(to.adjustConnections(), 0u);
}

TEST(SlotContainer, ConnectsWhatHasTheSameNameAndType) {
    struct Picky : PlainObject {
        using PlainObject::PlainObject;
        bool ignoreInput(std::string_view name) const override { return name == "way"; }
    };
    PlainObject from("from");
    Picky to("to");
    EXPECT_EQ(to.connectSlots(from), 3u);
    EXPECT_EQ(to.tint.parameter()->source(), from.tint.parameter());
    EXPECT_EQ(to.way.parameter()->source(), nullptr);
}

} // namespace
