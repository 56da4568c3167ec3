#include "tests/support/plain_object.hpp"
#include "tests/support/recorded_reports.hpp"

#include <sorvik/value_pool.hpp>

#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

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
    EXPECT_EQ(object.strength.getValueBase(*pool)->Text(), "0.5");
    object.removeParameter("strength");
    EXPECT_EQ(object.strength.parameter(), nullptr);
    EXPECT_EQ(object.strength.getValueBase(*pool), nullptr);
    EXPECT_FALSE(object.removeParameter("strength"));
}

TEST(TypedSlot, ParameterOfAnotherTypeIsReported) {
    PlainObject object("o");
    korl::test::RecordedReports recorded;
    const TypedSlot<double> clash(&object, "tint", 1.0, 0);
    EXPECT_EQ(clash.parameter(), nullptr);
    EXPECT_THAT(
        recorded.places,
        ElementsAre("TypedSlot(VObject*that, const string&name, const T&initialValue, int expertLevel"));
    EXPECT_THAT(recorded.messages,
                ElementsAre("parameter \"tint\" is not a double but a Orvid::rgba_float_t"));
    EXPECT_EQ(object.findParameter("tint")->type(), typeid(rgba_float_t));
}

TEST(TypedSlot, SharesAParameterOfItsTypeThatIsThere) {
    PlainObject object("o");
    const TypedSlot<double> second(&object, "strength", 9.0, 5);
    EXPECT_EQ(second.parameter(), object.strength.parameter());
    EXPECT_EQ(object.findParameter("strength")->DefaultValue().Text(), "0.5");
    EXPECT_EQ(object.parameters().size(), 4u);
}

TEST(TypedSlot, IsForEveryUserUnlessTold) {
    PlainObject object("o");
    const TypedSlot<double> plain(&object, "plain", 1.0), expert(&object, "expert", 1.0, 7);
    EXPECT_EQ(object.parameters()[4].expert_level, 0);
    EXPECT_EQ(object.parameters()[5].expert_level, 7);
}

std::vector<std::string> slotNames(const PlainObject& object) {
    std::vector<std::string> names;
    for (const Qelt::VSlot* const slot : object.slots())
        names.push_back(slot->name());
    return names;
}

TEST(TypedSlot, MayGoBeforeItsObject) {
    PlainObject object("o");
    std::optional<TypedSlot<double>> first, second, third;
    first.emplace(&object, "first", 1.0);
    second.emplace(&object, "second", 2.0);
    third.emplace(&object, "third", 3.0);
    second.reset();
    EXPECT_THAT(slotNames(object), ElementsAre("strength", "tint", "place", "way", "first", "third"));
    EXPECT_EQ(object.findSlot("second"), nullptr);
    ASSERT_NE(object.findParameter("second"), nullptr); // the object keeps it
    const TypedSlot<double> again(&object, "second", 9.0);
    EXPECT_EQ(again.parameter(), object.findParameter("second"));
    EXPECT_EQ(again.parameter()->DefaultValue().Text(), "2");
    EXPECT_THAT(slotNames(object),
                ElementsAre("strength", "tint", "place", "way", "first", "third", "second"));
    first.reset();
    third.reset();
    EXPECT_THAT(slotNames(object), ElementsAre("strength", "tint", "place", "way", "second"));
}

TEST(TypedSlot, CountsItsEndWhereCreatorsWereRegistered) {
    PlainObject object("o");
    const auto before = TypedSlotCreator::InternalTypeCreatorAccessory.load();
    { const TypedSlot<double> slot(&object, "more", 1.0, 0); }
    EXPECT_EQ(TypedSlotCreator::InternalTypeCreatorAccessory.load(), before + 1);
    {
        const TypedSlot<double> first(&object, "first", 1.0);
        const TypedSlot<rgba_float_t> second(&object, "second", {});
    }
    EXPECT_EQ(TypedSlotCreator::InternalTypeCreatorAccessory.load(), before + 3);
}

TEST(TypedSlot, WarnsOnStandardOutputWhereNoneWere) {
    PlainObject object("o");
    korl::test::RecordedReports recorded;
    testing::internal::CaptureStdout();
    Qelt::slot_creators_registered<double> = false;
    { const TypedSlot<double> slot(&object, "more", 1.0, 0); }
    Qelt::slot_creators_registered<double> = true;
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Typeslot has a problem, its creators were not registered!?\n");
    EXPECT_THAT(recorded.places, ElementsAre("~TypedSlot()"));
    EXPECT_THAT(recorded.messages,
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
    EXPECT_EQ(lenient.parameters()[0].parameter, other);
    EXPECT_EQ(lenient.parameters()[0].expert_level, 3);
    EXPECT_EQ(lenient.parameters().size(), 4u);
    const StrongPtr<VParameter> latest(new VValueParameter<double>(8, "strength"));
    EXPECT_EQ(VSlotGlobals::addParameter(lenient, "strength", 4, latest), other); // stays unless told
    const StrongPtr<VParameter> tint(new VValueParameter<rgba_float_t>({}, "tint"));
    EXPECT_NE(VSlotGlobals::addParameter(lenient, "tint", 0, tint, true), tint);
}

TEST(SlotGlobals, AddsParametersInTheOrderOfTheirMaking) {
    Qelt::VObject object("o", 0, {});
    for (const char* const name : {"c", "a", "b"}) {
        const StrongPtr<VParameter> parameter(new VValueParameter<double>(1, name));
        EXPECT_EQ(VSlotGlobals::addParameter(object, name, name[0] - 'a', parameter), parameter);
    }
    std::vector<std::string> names;
    for (const auto& [parameter, expert_level] : object.parameters())
        names.push_back(parameter->Name() + std::to_string(expert_level));
    EXPECT_THAT(names, ElementsAre("c2", "a0", "b1"));
}

TEST(SlotGlobals, AssertionGoesToThePointerDiagnostics) {
    korl::test::RecordedReports recorded;
    VSlotGlobals::assertionFail("expectation", "place");
    EXPECT_THAT(recorded.messages, ElementsAre("expectation"));
    EXPECT_THAT(recorded.places, ElementsAre("place"));
}

TEST(Slot, ConnectsToAnotherObjectsParameter) {
    PlainObject from("from"), to("to");
    const StrongPtr<ValuePool> pool(new ValuePool);
    EXPECT_FALSE(to.strength.connect(from.parameters()[1].parameter)); // a colour
    ASSERT_TRUE(to.strength.connect(from.parameters()[0].parameter));
    from.findParameter("strength")->setGlobalValueFromText("0.25");
    EXPECT_EQ(to.strength.getValueBase(*pool)->Text(), "0.25");
    from.removeParameter("strength");
    EXPECT_EQ(to.strength.getValueBase(*pool), nullptr);
    EXPECT_EQ(to.adjustConnections(), 1u); // lets go of what has gone
    EXPECT_EQ(to.strength.getValueBase(*pool)->Text(), "0.5");
    EXPECT_EQ(to.adjustConnections(), 0u);
    EXPECT_TRUE(to.tint.connect(from.parameters()[0].parameter)); // the colour has moved up
    EXPECT_TRUE(to.tint.connect({}));
    EXPECT_FALSE(to.tint.parameter()->hasSource());
    to.removeParameter("way");
    EXPECT_FALSE(to.way.connect(from.parameters()[2].parameter)); // it holds nothing to connect
}

TEST(SlotContainer, LetsGoOfEveryConnectionWhoseSourceHasGone) {
    PlainObject from("from"), to("to");
    EXPECT_EQ(to.connectSlots(from), 4u);
    EXPECT_EQ(to.adjustConnections(), 0u);
    for (const char* const name : {"strength", "place", "way"})
        from.removeParameter(name);
    EXPECT_EQ(to.adjustConnections(), 3u);
    EXPECT_FALSE(to.strength.parameter()->hasSource());
    EXPECT_EQ(to.tint.parameter()->source(), from.tint.parameter());
}

TEST(SlotContainer, FindsAndRemovesByName) {
    PlainObject object("o");
    for (const auto& [parameter, expert_level] : object.parameters())
        EXPECT_EQ(object.findParameter(parameter->Name()), parameter.get());
    EXPECT_EQ(object.findSlot("way"), &object.way);
    EXPECT_EQ(object.findSlot("nothing"), nullptr);
    EXPECT_FALSE(object.removeParameter("nothing"));
    EXPECT_TRUE(object.removeParameter("place"));
    EXPECT_EQ(object.findParameter("place"), nullptr);
    EXPECT_EQ(object.parameters().size(), 3u);
    EXPECT_EQ(object.slots().size(), 4u); // the slot stays and holds none
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

TEST(SlotContainer, PassesOverOutputsThatDoNotFit) {
    Qelt::VObject from("from", 0, {});
    const TypedSlot<rgba_float_t> of_another_type(&from, "strength", {});
    const TypedSlot<double> of_another_name(&from, "weight", 1.0);
    const TypedSlot<rgba_float_t> fitting(&from, "tint", {});
    PlainObject to("to");
    EXPECT_EQ(to.connectSlots(from), 1u);
    EXPECT_FALSE(to.strength.parameter()->hasSource());
    EXPECT_EQ(to.tint.parameter()->source(), fitting.parameter());
}

TEST(SlotContainer, BaseReplacesAndIgnoresNothing) {
    const PlainObject object("o");
    EXPECT_FALSE(object.allowParameterReplacement("strength"));
    EXPECT_FALSE(object.ignoreInput("strength"));
}

} // namespace
