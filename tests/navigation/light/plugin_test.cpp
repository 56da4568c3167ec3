#include "load_order.hpp"
#include "tests/support/captured_trace.hpp"
#include "tests/support/loaded_module.hpp"
#include "tests/support/recorded_reports.hpp"

#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>
#include <sorvik/slot_creator.hpp>
#include <sorvik/value_creator.hpp>
#include <tessan/typename.hpp>

#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <memory>

namespace {

using korl::test::LoadedModule;
using korl::test::traceOf;
using Qelt::TypedSlotCreator;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VValueCreator;
using Tessan::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* entry_point = "KORL_API_2026_JAN_22__tovek_light";

std::vector<std::string> announced() {
    std::vector<std::string> names;
    for (const auto& plugin : VInitialization::plugins())
        names.push_back(plugin.name + " " + plugin.version_key);
    return names;
}

TEST(Module, ExportsItsEntryPointAlone) {
    const std::string command =
        std::string(NM_PROGRAM) + " -D --defined-only --format=posix " + korl::test::moduleFile();
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    ASSERT_TRUE(output);
    std::vector<std::string> names;
    char name[256];
    while (std::fscanf(output.get(), "%255s %*[^\n]", name) == 1)
        names.emplace_back(name);
    EXPECT_THAT(names, ElementsAre(entry_point));
}

TEST(Module, EntryPointReturnsTheShellsAnswer) {
    struct Shell : VInitialization {
        bool IsCompatible(const char* version_key) const override {
            asked = version_key;
            return answer;
        }
        bool answer = true;
        mutable std::string asked;
    };
    const LoadedModule module;
    auto* const entry = reinterpret_cast<VInitialization::EntryPoint>(module.symbol(entry_point));
    ASSERT_NE(entry, nullptr);
    Shell shell;
    EXPECT_TRUE(entry(&shell));
    EXPECT_EQ(shell.asked, "KORL_API_VERSION");
    shell.answer = false;
    EXPECT_FALSE(entry(&shell)); // a shell of another version: the module hands its refusal on
    EXPECT_FALSE(VCreatorBase::catalogue().empty()); // and refuses nothing itself
}

TEST(Module, AnnouncesItself) {
    EXPECT_THAT(announced(), IsEmpty());
    {
        const LoadedModule module;
        EXPECT_THAT(announced(), ElementsAre("tovek_light KORL_API_VERSION"));
    }
    EXPECT_THAT(announced(), IsEmpty());
}

TEST(Module, TracesItsCreatorsAtLoad) {
    std::string expected;
    {
        const LoadedModule module;
        for (const VCreatorBase* const creator : korl::test::creatorsInLoadOrder())
            expected += korl::test::traceOfMaking(*creator);
    }
    EXPECT_THAT(expected, testing::HasSubstr("VCreator::VCreator(Headlight,-3000)\n"
                                             "VCreator::VCreator(Scenery/Headlight,2000)\n"
                                             "VCreator::VCreator(Scenery/Torch,0)\n"));
    EXPECT_EQ(traceOf(100, [] { const LoadedModule module; }), expected);
    EXPECT_EQ(traceOf(99, [] { const LoadedModule module; }), "");
}

TEST(Module, RegistersCreatorsOfItsValueTypesOnceAndWithdrawsThem) {
    using Orvid::PhysicalSpace;
    const std::type_info* const types[] = {&typeid(double), &typeid(Orvid::rgba_float_t),
                                           &typeid(PhysicalSpace::point), &typeid(PhysicalSpace::vector)};
    {
        const LoadedModule module;
        for (const std::type_info* const type : types) {
            EXPECT_EQ(TypedSlotCreator::count(*type), 1u) << Tessan::Typename(*type);
            EXPECT_NE(TypedSlotCreator::find(Tessan::Typename(*type)), nullptr);
        }
        EXPECT_EQ(VValueCreator::count("Orvid::rgba_float_t"), 1u);
        EXPECT_EQ(VValueCreator::count("double"), 1u);
    }
    for (const std::type_info* const type : types)
        EXPECT_EQ(TypedSlotCreator::count(*type), 0u);
    EXPECT_EQ(VValueCreator::count("Orvid::rgba_float_t"), 0u);
    EXPECT_EQ(VValueCreator::count("double"), 0u);
}

TEST(Module, EveryCreatorCreatesWithTheTrace) {
    const LoadedModule module;
    const auto catalogue = VCreatorBase::catalogue();
    for (VCreatorBase* const creator : catalogue) {
        StrongPtr<VObject> object;
        EXPECT_EQ(traceOf(100, [&] { object = creator->create("lamp"); }),
                  "VCreator::create(lamp)\nVCreator::create(lamp) got derived object\n");
        EXPECT_EQ(object->Name(), "lamp");
        EXPECT_TRUE(object->processesRequests());
        EXPECT_EQ(traceOf(99, [&] { creator->create("lamp"); }), "");
        EXPECT_EQ(object->type_key(), creator->keyname("/"));
    }
}

TEST(Module, CatalogueGoesByNumberAndThenInTheOrderOfLoading) {
    const LoadedModule module;
    auto creators = korl::test::creatorsInLoadOrder();
    std::stable_sort(creators.begin(), creators.end(),
                     [](const VCreatorBase* one, const VCreatorBase* other) {
                         return one->creatorNumber() < other->creatorNumber();
                     });
    EXPECT_EQ(VCreatorBase::catalogue(), creators);
}

TEST(Module, EmptyNameBecomesTheCreatorsNameButNotInTheTrace) {
    const LoadedModule module;
    for (VCreatorBase* const creator : VCreatorBase::catalogue()) {
        StrongPtr<VObject> object;
        EXPECT_EQ(traceOf(100, [&] { object = creator->create(""); }),
                  "VCreator::create()\nVCreator::create() got derived object\n");
        EXPECT_EQ(object->Name(), creator->Name());
        EXPECT_FALSE(object->Name().empty());
    }
}

TEST(Module, UnloadingDeletesItsObjectsAndLeavesNoTrace) {
    korl::test::RecordedReports recorded;
    std::vector<StrongPtr<VObject>> survivors;
    {
        const LoadedModule module;
        for (VCreatorBase* const creator : VCreatorBase::catalogue())
            survivors.push_back(creator->create("lamp"));
        EXPECT_TRUE(LoadedModule::isInProcess());
        EXPECT_EQ(VObject::members().size(), survivors.size());
    }
    EXPECT_FALSE(LoadedModule::isInProcess());
    EXPECT_TRUE(VObject::members().empty());
    EXPECT_TRUE(VCreatorBase::catalogue().empty());
    for (const auto& survivor : survivors)
        EXPECT_FALSE(survivor);
    EXPECT_THAT(recorded.places, IsEmpty());
    EXPECT_EQ(survivors[0].operator->(), nullptr); // using it is reported, not undefined
    EXPECT_THAT(recorded.places, ElementsAre("DynPtrInvalid"));
}

TEST(Module, SlotsTornDownDuringUnloadGiveNoWarning) {
    const std::string trace = traceOf(0, [] {
        const LoadedModule module;
        VCreatorBase::find("AmbientLight")->create("released at once");
        static StrongPtr<VObject> kept;
        kept = VCreatorBase::find("AmbientLight")->create("deleted at unload");
    });
    EXPECT_EQ(trace, "");
}

} // namespace
