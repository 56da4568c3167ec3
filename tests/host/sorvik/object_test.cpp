#include "tests/support/plain_object.hpp"

#include <sorvik/value_pool.hpp>

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace {

using korl::test::PlainObject;
using Qelt::AcceptList;
using Qelt::TypedSlotCreator;
using Qelt::VCreator;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VRequest;
using Tessan::StrongPtr;
using testing::ElementsAre;

const AcceptList all_inputs{{"strength", "double"},
                            {"tint", "Orvid::rgba_float_t"},
                            {"place", "Orvid::PhysicalSpace::point"},
                            {"way", "Orvid::PhysicalSpace::vector"}};

TEST(Object, BaseHasNoIconsNoHelpAndNoKey) {
    const PlainObject object("o");
    EXPECT_EQ(object.qt_icon(), "");
    EXPECT_EQ(object.xpm_icon(), nullptr);
    EXPECT_EQ(object.gimp_icon(), "");
    EXPECT_EQ(object.help(), "");
    EXPECT_EQ(object.type_key(), "");
    EXPECT_FALSE(object.copy("p"));
}

TEST(Object, KeepsWhatItIsGiven) {
    Qelt::VCreationPreferences preferences;
    preferences.prefer("strength", "0.75");
    VObject object("o", -7, preferences);
    EXPECT_EQ(object.Name(), "o");
    EXPECT_EQ(object.priority(), -7);
    EXPECT_EQ(*object.preferences().find("strength"), "0.75");
    EXPECT_EQ(object.creator().get(), nullptr);
    EXPECT_FALSE(object.processesRequests());
    object.enableRequestProcessing();
    EXPECT_TRUE(object.processesRequests());
    const Qelt::TypedSlot<double> strength(&object, "strength", 0.5);
    EXPECT_EQ(strength.parameter()->globalValue().Text(), "0.75");
    EXPECT_EQ(strength.parameter()->DefaultValue().Text(), "0.5");
}

TEST(Object, NamesItsChildren) {
    const PlainObject object("parent");
    EXPECT_EQ(object.makeChildname("child"), "parent/child");
    EXPECT_EQ(object.createChildname("child"), "parent/child");
    const PlainObject longer("parent/childish"), without_parent("child");
    EXPECT_EQ(object.createChildname("child"), "parent/child");
    const PlainObject child("parent/child"), second("parent/child2");
    EXPECT_EQ(object.createChildname("child"), "parent/child3");
}

TEST(Object, NamesNewParameters) {
    PlainObject object("o");
    EXPECT_EQ(object.CreateParameterName("strength"), "strength2");
    EXPECT_EQ(object.CreateParameterName("weight"), "weight");
    const StrongPtr<Qelt::VParameter> without_slot(new Qelt::VValueParameter<double>(1, "weight"));
    Qelt::VSlotGlobals::addParameter(object, "weight", 0, without_slot);
    EXPECT_EQ(object.CreateParameterName("weight"), "weight2");
}

TEST(Object, AnswersRequestsOnceEnabled) {
    PlainObject object("o");
    VRequest request(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_FALSE(object.request(request, 0));
    object.enableRequestProcessing();
    EXPECT_TRUE(object.request(request, 0));
    EXPECT_EQ(object.updates, 1);
    EXPECT_TRUE(object.unsychronized_update(request, 0));
    EXPECT_EQ(object.updates, 2);
}

TEST(Object, BaseIsAlwaysUpToDateAndAlwaysUpdated) {
    VObject object("o", 0, {});
    VRequest request(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_TRUE(object.update(request, 1.5));
    EXPECT_TRUE(object.must_update(request));
    EXPECT_TRUE(object.unsychronized_update(request, 1.5));
}

/// Writes down how it is asked, and answers as it is told.
struct Recording : VObject {
    Recording() : VObject("o", 0, {}) { enableRequestProcessing(); }
    bool update(VRequest&, double time) override {
        asked.push_back("update at " + std::to_string(time));
        return succeeds;
    }
    bool must_update(const VRequest&) const override { return must; }
    bool must = true, succeeds = true;
    std::vector<std::string> asked;
};

TEST(Object, RequestHandsTimeAndResultOn) {
    Recording object;
    VRequest request(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_TRUE(object.request(request, 1.5));
    object.succeeds = false;
    EXPECT_FALSE(object.request(request, 2.5));
    EXPECT_FALSE(object.unsychronized_update(request, 3.5));
    object.must = false;
    EXPECT_TRUE(object.request(request, 4.5));
    EXPECT_THAT(object.asked, ElementsAre("update at 1.500000", "update at 2.500000", "update at 3.500000"));
}

TEST(Object, RequestUpdatesUnsynchronized) {
    struct Own : Recording {
        bool unsychronized_update(VRequest&, double time) override {
            asked.push_back("own at " + std::to_string(time));
            return true;
        }
    } object;
    VRequest request(Tessan::makeStrong<Qelt::ValuePool>());
    EXPECT_TRUE(object.request(request, 1.5));
    EXPECT_THAT(object.asked, ElementsAre("own at 1.500000"));
}

TEST(Object, IsUpdatedOnlyWhereItMust) {
    struct Settled : PlainObject {
        using PlainObject::PlainObject;
        bool must_update(const VRequest&) const override { return false; }
    };
    Settled object("o");
    VRequest request(Tessan::makeStrong<Qelt::ValuePool>());
    object.enableRequestProcessing();
    EXPECT_TRUE(object.request(request, 0));
    EXPECT_EQ(object.updates, 0);
}

TEST(Object, SaysWhichInputsSuitAnother) {
    const PlainObject object("o"), offered("p");
    EXPECT_EQ(object.getAcceptInfoList(offered), all_inputs);
    EXPECT_EQ(object.accept(offered), all_inputs); // without a creator, its own list is all
}

TEST(Object, OffersItsParametersAsOutputs) {
    const PlainObject object("o");
    std::vector<std::string> names;
    object.iterateOutputs([&](Qelt::VParameter& output) { names.push_back(output.Name()); });
    EXPECT_THAT(names, ElementsAre("strength", "tint", "place", "way"));
    EXPECT_TRUE(object.implements(typeid(double)));
    EXPECT_FALSE(object.implements(typeid(int)));
    EXPECT_EQ(object.getImplementation(typeid(Orvid::PhysicalSpace::point)), object.place.parameter());
    EXPECT_EQ(object.getImplementation(typeid(int)), nullptr);
}

TEST(Object, FirstOutputOfATypeImplementsIt) {
    PlainObject object("o");
    const Qelt::TypedSlot<double> second(&object, "second", 1.0);
    EXPECT_EQ(object.getImplementation(typeid(double)), object.strength.parameter());
}

TEST(Object, SaysNothingOfInputsThatItIgnoresOrThatDoNotFit) {
    struct Picky : PlainObject {
        using PlainObject::PlainObject;
        bool ignoreInput(std::string_view name) const override { return name == "tint"; }
    };
    VObject offered("p", 0, {});
    const Qelt::TypedSlot<Orvid::rgba_float_t> of_another_type(&offered, "strength", {});
    const Qelt::TypedSlot<Orvid::rgba_float_t> ignored(&offered, "tint", {});
    const Qelt::TypedSlot<double> of_another_name(&offered, "weight", 1.0);
    const Picky picky("o");
    EXPECT_THAT(picky.getAcceptInfoList(offered), testing::IsEmpty());
    const PlainObject plain("p");
    EXPECT_EQ(plain.accept(picky), all_inputs);
    AcceptList not_ignored = all_inputs;
    not_ignored.erase(not_ignored.begin() + 1);
    EXPECT_EQ(picky.accept(plain), not_ignored); // the inputs of the one that accepts
}

TEST(Object, GetsInputsByTypeName) {
    const Qelt::TypedSlotCreatorOf<double> creator;
    PlainObject object("o");
    EXPECT_EQ(object.InputCreation("double", "more"), nullptr);
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), creator, "double");
    const Qelt::VSlot* const input = object.InputCreation("double", "strength", 4);
    TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), creator, "double");
    ASSERT_NE(input, nullptr);
    EXPECT_EQ(input->name(), "strength2"); // the name was taken
    EXPECT_EQ(object.parameters().back().expert_level, 4);
    EXPECT_EQ(object.findParameter("strength2")->DefaultValue().Text(), "0");
}

TEST(Object, GetsAsManyInputsAsAreAskedFor) {
    const Qelt::TypedSlotCreatorOf<double> numbers;
    const Qelt::TypedSlotCreatorOf<Orvid::rgba_float_t> colors;
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), numbers, "double");
    TypedSlotCreator::registerTypedSlotCreator(typeid(Orvid::rgba_float_t), colors, "color");
    PlainObject object("o");
    const Qelt::VSlot* const first = object.InputCreation("double", "more");
    const Qelt::VSlot* const second = object.InputCreation("color", "more", 7);
    EXPECT_EQ(object.InputCreation("colour", "more"), nullptr);
    TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), numbers, "double");
    TypedSlotCreator::unregisterTypedSlotCreator(typeid(Orvid::rgba_float_t), colors, "color");
    EXPECT_EQ(first, object.findSlot("more"));
    EXPECT_EQ(second, object.findSlot("more2"));
    ASSERT_EQ(object.parameters().size(), 6u);
    EXPECT_EQ(object.parameters()[4].expert_level, 0);
    EXPECT_EQ(object.parameters()[5].expert_level, 7);
    EXPECT_EQ(second->type(), typeid(Orvid::rgba_float_t));
    EXPECT_EQ(second->parameter()->globalValue().Text(), "0 0 0 0");
    EXPECT_EQ(second->parameter()->creator(), &object);
}

TEST(Object, IsSetUpOnceItsCreatorIsKnown) {
    struct Counting : PlainObject {
        using PlainObject::PlainObject;
        void setup() override { creators_at_setup.push_back(creator()->Name()); }
        std::vector<std::string> creators_at_setup;
    };
    VCreator<PlainObject, void> first(std::string("First"), 0), second(std::string("Second"), 0);
    Counting object("o");
    object.setCreator({});
    EXPECT_THAT(object.creators_at_setup, testing::IsEmpty());
    object.setCreator(Tessan::WeakPtr<VCreatorBase>(&first));
    object.setCreator(Tessan::WeakPtr<VCreatorBase>(&first));
    object.setCreator(Tessan::WeakPtr<VCreatorBase>(&second));
    EXPECT_EQ(object.creator().get(), &second);
    EXPECT_THAT(object.creators_at_setup, ElementsAre("First"));
}

TEST(Object, IsToldOfConnectionsThroughItsAcceptList) {
    struct Listening : PlainObject {
        using PlainObject::PlainObject;
        void CreatedFilteredConnection(Qelt::VSlot& input, Qelt::VParameter& source) override {
            heard.push_back(input.name() + " from " + source.Name());
        }
        bool ignoreInput(std::string_view name) const override { return name == "way"; }
        std::vector<std::string> heard;
    };
    Listening object("o");
    const PlainObject source("p");
    EXPECT_TRUE(object.connectInput("strength", *source.findParameter("strength")));
    EXPECT_FALSE(object.connectInput("strength", *source.findParameter("tint"))); // of another type
    EXPECT_FALSE(object.connectInput("way", *source.findParameter("way")));       // ignored
    EXPECT_FALSE(object.connectInput("width", *source.findParameter("strength")));
    EXPECT_EQ(object.way.parameter()->source(), nullptr);
    EXPECT_THAT(object.heard, ElementsAre("strength from strength"));
    EXPECT_EQ(object.strength.parameter()->source(), source.findParameter("strength"));
}

} // namespace
