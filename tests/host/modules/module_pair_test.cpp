// Two modules side by side, with classes of the same name, and what the host keeps apart.

#include "tests/support/recorded_reports.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <sorvik/creator.hpp>
#include <tessan/typename.hpp>

#include <cstdio>
#include <dlfcn.h>
#include <functional>
#include <gmock/gmock.h>
#include <string>

namespace {

using Qelt::RenderAble;
using Qelt::ValuePool;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VRenderContext;
using Qelt::VSlotGlobals;
using Qelt::RenderNamespace::LightSource;
using Tessan::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;

/// A module, loaded as long as this lives or until it is unloaded.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const char* file) : my_handle(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(my_handle, nullptr) << dlerror();
    }
    ~LoadedLibrary() { unload(); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void unload() {
        if (my_handle)
            dlclose(my_handle);
        my_handle = nullptr;
    }

private:
    void* my_handle;
};

class ModulePair : public testing::Test {
protected:
    static VCreatorBase& creator(const std::string& name) { return *VCreatorBase::find(name); }
    static RenderAble& light(const StrongPtr<VObject>& object) { return dynamic_cast<RenderAble&>(*object); }

    korl::test::RecordedReports recorded;
    LoadedLibrary one{TWIN_ONE}, two{TWIN_TWO};
};

TEST_F(ModulePair, BringsTwoTypesOfOneName) {
    const std::type_info &first = creator("twin_one").type(), &second = creator("twin_two").type();
    EXPECT_STREQ(first.name(), second.name());
    EXPECT_EQ(Tessan::Typename(first), "twin::Lamp");
    EXPECT_TRUE(Tessan::libraryOf(first) == Tessan::libraryOf(creator("twin_one_again").type()));
    EXPECT_FALSE(Tessan::libraryOf(first) == Tessan::libraryOf(second));
    EXPECT_EQ(Tessan::libraryOf(second).file, TWIN_TWO);
}

TEST_F(ModulePair, DeletesTheInstancesOfOneTypeAlone) {
    const auto first = creator("twin_one").create("a"), second = creator("twin_two").create("b");
    EXPECT_EQ(VCreatorBase::deleteAllInstances(creator("twin_one").type()), 1u);
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
}

TEST_F(ModulePair, UnloadingOneSparesTheObjectsOfTheOther) {
    const auto first = creator("twin_one").create("a"), second = creator("twin_two").create("b");
    one.unload();
    EXPECT_FALSE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->Name(), "b");
    EXPECT_EQ(second->findParameter("strength")->globalValue().Text(), "1");
}

TEST_F(ModulePair, ContextsLetGoOfLightSourcesBeforeTheirModuleGoes) {
    VRenderContext context(Tessan::makeStrong<ValuePool>()), other(Tessan::makeStrong<ValuePool>());
    {
        const auto first = creator("twin_one").create("a"), second = creator("twin_two").create("b");
        light(first).illuminate(context);
        light(first).illuminate(other);
        light(second).illuminate(other);
        EXPECT_EQ(other.enabledLightSources().size(), 2u);
    }
    // The objects went before the module, the contexts have their light sources.
    EXPECT_EQ(context.enabledLightSources().size(), 1u);
    one.unload();
    EXPECT_THAT(context.enabledLightSources(), IsEmpty());
    EXPECT_THAT(other.enabledLightSources(),
                IsEmpty()); // those of the other module are collected anew as well
    two.unload();
    EXPECT_THAT(recorded.messages, IsEmpty());
}

/// Gets one report, and lets go of a light source at that moment: its creators have gone, while its module
/// is still there.
struct LettingGo : korl::test::RecordedReports {
    void printRS(const std::string& message, const char* place) override {
        RecordedReports::printRS(message, place);
        EXPECT_THAT(VCreatorBase::catalogue(), IsEmpty());
        held = nullptr;
    }
    StrongPtr<LightSource> held;
};

TEST_F(ModulePair, LightSourceThatOutlivesTheLastCreatorOfItsModuleIsReported) {
    LettingGo letting_go;
    VRenderContext context(Tessan::makeStrong<ValuePool>());
    const auto first = creator("twin_one").create("a");
    light(first).illuminate(context);
    letting_go.held = context.enabledLightSources()[0];
    const std::string number = std::to_string(letting_go.held->serialNumber());
    two.unload(); // whose light source has the same name
    EXPECT_THAT(letting_go.messages, IsEmpty());
    EXPECT_TRUE(letting_go.held);
    one.unload(); // two creators, one report
    EXPECT_FALSE(letting_go.held);
    EXPECT_THAT(letting_go.places, ElementsAre("LightSource"));
    EXPECT_THAT(
        letting_go.messages,
        ElementsAre("light source " + number +
                    " of type twin::Lamp::Source is still held, but its module goes: it must be let go "
                    "of before the module is unloaded"));
}

TEST_F(ModulePair, LightSourceThatOutlivesItsModuleIsReportedOnce) {
    // Never let go of: its destructor goes with the module.
    static auto& kept = *new StrongPtr<LightSource>;
    VRenderContext context(Tessan::makeStrong<ValuePool>());
    const auto first = creator("twin_one").create("a");
    light(first).illuminate(context);
    kept = context.enabledLightSources()[0];
    one.unload();
    EXPECT_THAT(recorded.places, ElementsAre("LightSource"));
    two.unload(); // which looks among the light sources for its own
    EXPECT_THAT(recorded.places, ElementsAre("LightSource"));
}

std::string outputOf(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST_F(ModulePair, MissingSlotCreatorsAreFoundInTheModuleThatMissesThem) {
    EXPECT_EQ(outputOf([&] { creator("twin_one").create("a"); }), "");
    EXPECT_THAT(recorded.messages, IsEmpty());
    const LoadedLibrary forgetful(TWIN_FORGETFUL);
    EXPECT_EQ(outputOf([&] { creator("twin_forgetful").create("b"); }),
              "Typeslot has a problem, its creators were not registered!?\n");
    EXPECT_THAT(recorded.places, ElementsAre("~TypedSlot()"));
    EXPECT_THAT(
        recorded.messages,
        ElementsAre("slot \"place\" of twin::Lamp takes a Orvid::PhysicalSpace::point, whose slot creator " +
                    std::string(TWIN_FORGETFUL) + " has not registered"));
}

/// A value that claims to be of a type.
class ClaimedValue final : public Qelt::VValueBase {
public:
    explicit ClaimedValue(const std::type_info& type) : my_type(type) {}
    const std::type_info& type() const noexcept override { return my_type; }
    StrongPtr<VValueBase> clone() const override { return StrongPtr<VValueBase>(new ClaimedValue(my_type)); }
    bool equals(const VValueBase&) const override { return false; }
    std::string Text() const override { return {}; }
    bool setValueFromText(const std::string&) override { return false; }
    bool setContainerValue(const VValueBase&) override { return false; }

private:
    const std::type_info& my_type;
};

TEST_F(ModulePair, ParameterOfTheOthersTypeIsToldApart) {
    const std::type_info &first = creator("twin_one").type(), &second = creator("twin_two").type();
    const Qelt::VParameter held(StrongPtr<Qelt::VValueBase>(new ClaimedValue(first)), "lamp");
    EXPECT_EQ(VSlotGlobals::conversionFailure(held, second, typeid(held)),
              "parameter \"lamp\" is a twin::Lamp of " TWIN_ONE ", not the one of " TWIN_TWO);
}

} // namespace
