#include "tests/support/captured_trace.hpp"
#include "tests/support/plain_object.hpp"
#include "tests/support/recorded_reports.hpp"

#include <gmock/gmock.h>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

using korl::test::PlainObject;
using korl::test::traceOf;
using Orvid::PhysicalSpace;
using Qelt::AcceptList;
using Qelt::TypedSlotCreator;
using Qelt::VActionNotifier;
using Qelt::VContext;
using Qelt::VCreationPreferences;
using Qelt::VCreator;
using Qelt::VCreatorBase;
using Qelt::VCreatorProperties;
using Qelt::VObject;
using Tessan::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Property = Qelt::VCreatorPropertyBase;

struct OtherObject : PlainObject {
    using PlainObject::PlainObject;
};

VCreatorProperties someProperties(const std::string& name) {
    return VCreatorProperties(Property(Property::Kind::description, "What it is for.")) +
           Property(Property::Kind::date, "Jan  1 2026") + Property(Property::Kind::name, name) +
           Property(Property::Kind::category, "Things");
}

std::vector<std::string> catalogueNames() {
    std::vector<std::string> names;
    for (const VCreatorBase* const creator : VCreatorBase::catalogue())
        names.push_back(creator->Name() + std::to_string(creator->creatorNumber()));
    return names;
}

TEST(CreatorProperties, KeepTheirOrderAndFormTheKey) {
    const VCreatorProperties record = someProperties("Plain");
    const std::pair<Property::Kind, const char*> expected[] = {
        {Property::Kind::description, "What it is for."},
        {Property::Kind::date, "Jan  1 2026"},
        {Property::Kind::name, "Plain"},
        {Property::Kind::category, "Things"}};
    ASSERT_EQ(record.all().size(), std::size(expected));
    for (std::size_t i = 0; i < record.all().size(); ++i) {
        EXPECT_EQ(record.all()[i].kind(), expected[i].first);
        EXPECT_EQ(record.all()[i].text(), expected[i].second);
        EXPECT_EQ(record.text(expected[i].first), expected[i].second);
    }
    EXPECT_EQ(record.text(Property::Kind::group), "");
    EXPECT_EQ(record.keyname("/"), "Things/Plain"); // whatever the order
    EXPECT_EQ(record.keyname("::"), "Things::Plain");
    EXPECT_EQ(VCreatorProperties().keyname("/"), "");
}

TEST(CreatorProperties, GiveTheFirstTextOfAKind) {
    const auto record = VCreatorProperties(Property(Property::Kind::date, "Jan  1 2026")) +
                        Property(Property::Kind::group, "first") + Property(Property::Kind::group, "second");
    EXPECT_EQ(record.text(Property::Kind::group), "first");
}

TEST(CreatorProperties, PropertyAssignsItselfAndKnowsItsShareOfTheKey) {
    VCreatorProperties record;
    Property(Property::Kind::name, "N").assign(record);
    Property(Property::Kind::group, "G").assign(record);
    ASSERT_EQ(record.all().size(), 2u);
    EXPECT_EQ(record.all()[1].text(), "G");
    EXPECT_EQ(record.keyname("/"), "N");
    EXPECT_EQ(Property(Property::Kind::category, "C").keyname("/"), "C/");
    EXPECT_EQ(Property(Property::Kind::category, "C").keyname("::"), "C::");
    for (const auto kind :
         {Property::Kind::description, Property::Kind::group, Property::Kind::date, Property::Kind::source})
        EXPECT_EQ(Property(kind, "text").keyname("/"), "");
}

TEST(Creator, TracesItsMakingWithKeyAndNumber) {
    const std::string trace = traceOf(100, [] {
        const VCreator<PlainObject, void> creator(someProperties("Plain"), 7);
        const VCreator<PlainObject, void> plain(std::string("Plain"), -3000);
    });
    EXPECT_EQ(trace, "VCreator::VCreator(Things/Plain,7)\nVCreator::VCreator(Plain,-3000)\n");
    EXPECT_EQ(traceOf(99, [] { const VCreator<PlainObject, void> creator(someProperties("Plain"), 7); }), "");
}

TEST(Creator, StandsInTheCatalogueByNumberWhileItLives) {
    EXPECT_THAT(catalogueNames(), IsEmpty());
    {
        const VCreator<PlainObject, void> late(someProperties("Twin"), 2000), first(someProperties("A"), 0),
            second(someProperties("B"), 0), early(std::string("Twin"), -3000);
        EXPECT_THAT(catalogueNames(), ElementsAre("Twin-3000", "A0", "B0", "Twin2000"));
        EXPECT_EQ(VCreatorBase::find("Twin"), &early); // the first in the catalogue
        EXPECT_EQ(VCreatorBase::find("twin"), nullptr);
    }
    EXPECT_THAT(catalogueNames(), IsEmpty());
    EXPECT_EQ(VCreatorBase::find("Twin"), nullptr);
}

class BareCreator final : public VCreatorBase {
public:
    template <class Identity>
    BareCreator(const Identity& identity, int number, const VCreationPreferences& preferences, bool hidden,
                const char* version_key = "KORL_API_VERSION")
        : VCreatorBase(identity, number, preferences, hidden, version_key) {}
    const std::type_info& type() const noexcept override { return typeid(PlainObject); }
    StrongPtr<VObject> create(const std::string&, VContext*, const VCreationPreferences&) override {
        return {};
    }
};

template <class Identity>
void expectToKeepWhatItIsGiven(const Identity& identity, const char* key) {
    VCreationPreferences preferences;
    preferences.prefer("strength", "0.75");
    const BareCreator creator(identity, -7, preferences, false), hidden(identity, 8, {}, true);
    EXPECT_EQ(creator.Name(), "Bare");
    EXPECT_EQ(creator.keyname("/"), key);
    EXPECT_EQ(creator.creatorNumber(), -7);
    EXPECT_EQ(*creator.preferences().find("strength"), "0.75");
    EXPECT_EQ(hidden.creatorNumber(), 8);
    EXPECT_TRUE(hidden.preferences().empty());
    EXPECT_THAT(VCreatorBase::catalogue(), ElementsAre(&creator));
}

TEST(Creator, KeepsWhatItIsGivenWithARecordAndWithAPlainName) {
    expectToKeepWhatItIsGiven(someProperties("Bare"), "Things/Bare");
    expectToKeepWhatItIsGiven(std::string("Bare"), "Bare");
}

TEST(Creator, HiddenOneIsFoundButNotListed) {
    const BareCreator creator(std::string("Bare"), 0, {}, true);
    EXPECT_THAT(catalogueNames(), IsEmpty());
    EXPECT_EQ(VCreatorBase::find("Bare"), &creator);
}

TEST(Creator, LeavesTheOthersInTheCatalogue) {
    const BareCreator first(std::string("A"), 0, {}, false), last(std::string("C"), 0, {}, false);
    { const BareCreator passing(std::string("B"), 0, {}, false); }
    EXPECT_THAT(catalogueNames(), ElementsAre("A0", "C0"));
    EXPECT_EQ(VCreatorBase::find("C"), &last);
    EXPECT_EQ(VCreatorBase::find("B"), nullptr);
}

TEST(Creator, OneForAnotherInterfaceStaysOut) {
    const auto makeForeignOnes = [] {
        const BareCreator recorded(someProperties("Bare"), 0, {}, false, "OTHER_VERSION"),
            named(std::string("Named"), 0, {}, false, "KORL_API_VERSION2");
        EXPECT_THAT(catalogueNames(), IsEmpty());
        EXPECT_EQ(VCreatorBase::find("Bare"), nullptr);
        EXPECT_EQ(VCreatorBase::find("Named"), nullptr);
    };
    EXPECT_EQ(
        traceOf(0, makeForeignOnes),
        "VCreatorBase: Bare is built for the interface OTHER_VERSION, not for KORL_API_VERSION, and "
        "stays out of the catalogue\n"
        "VCreatorBase: Named is built for the interface KORL_API_VERSION2, not for KORL_API_VERSION, and "
        "stays out of the catalogue\n");
    EXPECT_EQ(traceOf(-1, makeForeignOnes), "");
}

TEST(Creator, CreatesObjectsAndTracesIt) {
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    StrongPtr<VObject> object;
    EXPECT_EQ(traceOf(100, [&] { object = creator.create("mine", nullptr, {}); }),
              "VCreator::create(mine)\nVCreator::create(mine) got derived object\n");
    EXPECT_EQ(object->Name(), "mine");
    EXPECT_EQ(object->creator().get(), &creator);
    EXPECT_TRUE(object->processesRequests());
    EXPECT_EQ(object->help(), "What it is for.");
    EXPECT_EQ(object->type_key(), "Things/Plain");
}

TEST(Creator, EmptyNameBecomesTheCreatorsOwn) {
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    StrongPtr<VObject> object;
    EXPECT_EQ(traceOf(100, [&] { object = creator.create("", nullptr, {}); }),
              "VCreator::create()\nVCreator::create() got derived object\n"); // as it was asked for
    EXPECT_EQ(object->Name(), "Plain");
}

TEST(Creator, CallersPreferencesReachTheObject) {
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    VCreationPreferences preferences;
    preferences.prefer("strength", "0.75");
    const auto object = creator.create("o", nullptr, preferences);
    EXPECT_EQ(object->findParameter("strength")->globalValue().Text(), "0.75");
}

TEST(Creator, ChildNamesAreNumberedWhereTaken) {
    const VCreator<PlainObject, void> creator(someProperties("Torch"), 0);
    EXPECT_EQ(creator.createChildname([](const std::string&) { return false; }), "Torch");
    EXPECT_EQ(creator.createChildname([](const std::string& name) { return name == "Torch"; }), "Torch2");
    EXPECT_EQ(creator.createChildname([](const std::string& name) { return name != "Torch4"; }), "Torch4");
}

TEST(Creator, GoesOnCountingChildNamesWhereItIsTold) {
    const VCreator<PlainObject, void> creator(someProperties("Torch"), 0);
    std::vector<std::string> asked;
    unsigned long number = 7;
    const auto taken = [&](const std::string& name) {
        asked.push_back(name);
        return name != "Torch9";
    };
    EXPECT_EQ(creator.createChildname(taken, number), "Torch9");
    EXPECT_EQ(number, 9u);
    EXPECT_THAT(asked, ElementsAre("Torch", "Torch8", "Torch9"));
    number = 0;
    EXPECT_EQ(creator.createChildname([](const std::string&) { return false; }, number), "Torch");
    EXPECT_EQ(number, 0u);
}

TEST(Creator, ObjectsCanBeCopied) {
    const Qelt::TypedSlotCreatorOf<double> slot_creator;
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), slot_creator, "double");
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    const auto object = creator.create("a", nullptr, {});
    object->InputCreation("double", "more"); // not copied
    TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), slot_creator, "double");
    const std::pair<const char*, const char*> values[]{
        {"strength", "0.25"}, {"tint", "0.4 0.3 0.2 0.1"}, {"place", "7 8 9"}, {"way", "1 2 4"}};
    for (const auto& [name, text] : values)
        EXPECT_TRUE(object->findParameter(name)->setGlobalValueFromText(text));
    const auto copy = object->copy("b");
    EXPECT_EQ(copy->Name(), "b");
    EXPECT_EQ(copy->creator().get(), &creator);
    for (const auto& [name, text] : values)
        EXPECT_EQ(copy->findParameter(name)->globalValue().Text(), text);
    EXPECT_EQ(copy->findParameter("more"), nullptr);
    EXPECT_EQ(copy->findParameter("strength")->DefaultValue().Text(), "0.5");
}

TEST(Creator, ObjectsThatOutliveItHaveNeitherHelpNorKey) {
    PlainObject object("o");
    {
        BareCreator passing(someProperties("Bare"), 0, {}, false);
        object.setCreator(Tessan::WeakPtr<VCreatorBase>(&passing));
        EXPECT_EQ(object.help(), "What it is for.");
        EXPECT_EQ(object.type_key(), "Things/Bare");
    }
    EXPECT_EQ(object.creator().get(), nullptr);
    EXPECT_EQ(object.help(), "");
    EXPECT_EQ(object.type_key(), "");
    EXPECT_FALSE(object.copy("p"));
}

TEST(ActionNotifier, IsToldOfNewObjectsAndOfWhoAsked) {
    struct Listener : VActionNotifier {
        void objectCreated(const StrongPtr<VObject>& object, VContext* context,
                           VCreatorBase& creator) override {
            heard.emplace_back(object->Name() + " by " + creator.Name(), context);
        }
        std::vector<std::pair<std::string, VContext*>> heard;
    };
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    VContext context;
    Listener listener;
    {
        const Listener passing;
        creator.create("a", &context, {});
    }
    creator.create("b", nullptr, {});
    ASSERT_EQ(listener.heard.size(), 2u);
    EXPECT_EQ(listener.heard[0], (std::pair<std::string, VContext*>("a by Plain", &context)));
    EXPECT_EQ(listener.heard[1], (std::pair<std::string, VContext*>("b by Plain", nullptr)));
}

TEST(Creator, TakesItsObjectsAlongInSpiteOfPointersToThem) {
    korl::test::RecordedReports recorded;
    StrongPtr<VObject> mine, other;
    VCreator<OtherObject, void> other_creator(someProperties("Other"), 0);
    {
        VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
        mine = creator.create("mine", nullptr, {});
        other = other_creator.create("other", nullptr, {});
    }
    EXPECT_FALSE(mine);
    EXPECT_TRUE(other); // of a derived type, so none of the creator's
    EXPECT_THAT(recorded.places, IsEmpty());
    EXPECT_EQ(mine.operator->(), nullptr);
    EXPECT_THAT(recorded.places, ElementsAre("DynPtrInvalid"));
}

TEST(Creator, DeletesAllInstancesOfExactlyAType) {
    const StrongPtr<VObject> a(new PlainObject("a")), b(new OtherObject("b")), c(new PlainObject("c"));
    EXPECT_EQ(VCreatorBase::deleteAllInstances(typeid(PlainObject)), 2u);
    EXPECT_FALSE(a);
    EXPECT_TRUE(b);
    EXPECT_FALSE(c);
    EXPECT_EQ(VCreatorBase::deleteAllInstances(typeid(PlainObject)), 0u);
}

TEST(Creator, PointersToItNeverDeleteIt) {
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    { const auto strong = Tessan::WeakPtr<VCreatorBase>(&creator).lock(); }
    EXPECT_EQ(VCreatorBase::find("Plain"), &creator);
}

TEST(Sink, AddsTheInputsOfTheDeclaredType) {
    VCreator<PlainObject, PhysicalSpace::point> creator(someProperties("Plain"), 0);
    struct Pointer : VObject {
        Pointer() : VObject("pointer", 0, {}) {}
        Qelt::TypedSlot<PhysicalSpace::point> target{this, "target", {}, 0};
        Qelt::TypedSlot<double> strength{this, "strength", 1.0, 0};
    };
    const Pointer offered;
    const auto object = creator.create("o", nullptr, {});
    EXPECT_EQ(creator.acceptedInputs(offered, *object).size(), 1u); // the other way round
    EXPECT_EQ(object->accept(offered),
              (AcceptList{{"strength", "double"}, {"place", "Orvid::PhysicalSpace::point"}}));
}

TEST(Sink, PassesOverWhatIsIgnoredAndWhatIsNotOffered) {
    struct Picky : VObject {
        Picky() : VObject("picky", 0, {}) {}
        bool ignoreInput(std::string_view name) const override { return name == "ignored"; }
        Qelt::TypedSlot<PhysicalSpace::point> ignored{this, "ignored", {}}, first{this, "first", {}};
        Qelt::TypedSlot<double> number{this, "number", 0.0};
        Qelt::TypedSlot<PhysicalSpace::point> second{this, "second", {}};
    };
    const VCreator<PlainObject, PhysicalSpace::point> creator(someProperties("Plain"), 0);
    const Picky picky;
    std::vector<std::string> inputs;
    for (const auto& accepted : creator.acceptedInputs(picky, PlainObject("offered")))
        inputs.push_back(accepted.input);
    EXPECT_THAT(inputs, ElementsAre("first", "second"));
    EXPECT_THAT(creator.acceptedInputs(picky, VObject("empty", 0, {})), IsEmpty());
}

TEST(AcceptList, EntriesDifferInInputOrType) {
    AcceptList list{{"a", "double"}};
    Qelt::mergeAcceptList(list, {{"a", "double"}, {"a", "int"}, {"b", "double"}, {"a", "int"}});
    EXPECT_EQ(list, (AcceptList{{"a", "double"}, {"a", "int"}, {"b", "double"}}));
}

TEST(Sink, MergesWithoutRepeating) {
    VCreator<PlainObject, PhysicalSpace::point> creator(someProperties("Plain"), 0);
    const auto object = creator.create("o", nullptr, {});
    EXPECT_EQ(object->accept(*object), object->getAcceptInfoList(*object));
}

TEST(Sink, OfATypeMadeFromNothingAddsNone) {
    const VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    EXPECT_EQ(creator.inputType(), nullptr);
    const PlainObject object("o"), offered("p");
    EXPECT_THAT(creator.acceptedInputs(object, offered), IsEmpty());
}

} // namespace
