#include "tests/support/captured_trace.hpp"
#include "tests/support/heard_reports.hpp"
#include "tests/support/plain_object.hpp"

#include <gmock/gmock.h>
#include <utility>

namespace {

using korl::test::PlainObject;
using korl::test::traceOf;
using Orvid::PhysicalSpace;
using Qelt::AcceptList;
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
    ASSERT_EQ(record.all().size(), 4u);
    EXPECT_EQ(record.all()[1].text(), "Jan  1 2026");
    EXPECT_EQ(record.all()[1].kind(), Property::Kind::date);
    EXPECT_EQ(record.keyname("/"), "Things/Plain");
    EXPECT_EQ(record.keyname("::"), "Things::Plain");
    EXPECT_EQ(record.text(Property::Kind::description), "What it is for.");
    EXPECT_EQ(record.text(Property::Kind::group), "");
}

TEST(CreatorProperties, PropertyAssignsItselfAndKnowsItsShareOfTheKey) {
    VCreatorProperties record;
    Property(Property::Kind::name, "N").assign(record);
    EXPECT_EQ(record.keyname("/"), "N");
    EXPECT_EQ(Property(Property::Kind::category, "C").keyname("/"), "C/");
    EXPECT_EQ(Property(Property::Kind::description, "D").keyname("/"), "");
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
    BareCreator(bool hidden, const char* version_key)
        : VCreatorBase("Bare", 0, VCreationPreferences(), hidden, version_key) {}
    const std::type_info& type() const noexcept override { return typeid(PlainObject); }
    StrongPtr<VObject> create(const std::string&, VContext*, const VCreationPreferences&) override {
        return {};
    }
};

TEST(Creator, HiddenOneIsFoundButNotListed) {
    const BareCreator creator(true, "KORL_API_VERSION");
    EXPECT_THAT(catalogueNames(), IsEmpty());
    EXPECT_EQ(VCreatorBase::find("Bare"), &creator);
}

TEST(Creator, OneForAnotherInterfaceStaysOut) {
    EXPECT_EQ(traceOf(0,
                      [] {
                          const BareCreator creator(false, "OTHER_VERSION");
                          EXPECT_EQ(VCreatorBase::find("Bare"), nullptr);
                      }),
              "VCreatorBase: Bare is built for the interface OTHER_VERSION, not for KORL_API_VERSION, and "
              "stays out "
              "of the catalogue\n");
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

TEST(Creator, ObjectsCanBeCopied) {
    VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    const auto object = creator.create("a", nullptr, {});
    object->findParameter("way")->setGlobalValueFromText("1 0 0");
    const auto copy = object->copy("b");
    EXPECT_EQ(copy->Name(), "b");
    EXPECT_EQ(copy->saveText(), object->saveText());
}

TEST(ActionNotifier, HearsOfNewObjectsAndOfWhoAsked) {
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
    korl::test::HeardReports heard;
    StrongPtr<VObject> mine, other;
    VCreator<OtherObject, void> other_creator(someProperties("Other"), 0);
    {
        VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
        mine = creator.create("mine", nullptr, {});
        other = other_creator.create("other", nullptr, {});
    }
    EXPECT_FALSE(mine);
    EXPECT_TRUE(other); // of a derived type, so none of the creator's
    EXPECT_THAT(heard.places, IsEmpty());
    EXPECT_EQ(mine.operator->(), nullptr);
    EXPECT_THAT(heard.places, ElementsAre("DynPtrInvalid"));
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
    EXPECT_EQ(object->accept(offered),
              (AcceptList{{"strength", "double"}, {"place", "Orvid::PhysicalSpace::point"}}));
}

TEST(Sink, MergesWithoutRepeating) {
    VCreator<PlainObject, PhysicalSpace::point> creator(someProperties("Plain"), 0);
    const auto object = creator.create("o", nullptr, {});
    EXPECT_EQ(object->accept(*object.get()), object->getAcceptInfoList(*object.get()));
}

TEST(Sink, OfATypeMadeFromNothingAddsNone) {
    const VCreator<PlainObject, void> creator(someProperties("Plain"), 0);
    EXPECT_EQ(creator.inputType(), nullptr);
    const PlainObject object("o"), offered("p");
    EXPECT_THAT(creator.acceptedInputs(object, offered), IsEmpty());
}

} // namespace
