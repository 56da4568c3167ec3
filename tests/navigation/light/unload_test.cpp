// What others still hold of the module's objects when it is unloaded.

#include "tests/support/loaded_module.hpp"
#include "tests/support/recorded_reports.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <sorvik/creator.hpp>

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace {

using korl::test::LoadedModule;
using Qelt::RenderAble;
using Qelt::ValuePool;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VRenderContext;
using Qelt::RenderNamespace::LightSource;
using Tessan::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;

void illuminate(const StrongPtr<VObject>& light, VRenderContext& context) {
    dynamic_cast<RenderAble&>(*light).illuminate(context);
}

TEST(Unload, RenderContextsLetGoOfLightSourcesAndStates) {
    korl::test::RecordedReports recorded;
    VRenderContext context(Tessan::makeStrong<ValuePool>()), other(Tessan::makeStrong<ValuePool>());
    std::vector<StrongPtr<VObject>> lights; // which the module's end deletes
    {
        const LoadedModule module;
        for (VCreatorBase* const creator : VCreatorBase::catalogue()) {
            lights.push_back(creator->create(""));
            illuminate(lights.back(), context);
            illuminate(lights.back(), other);
        }
        EXPECT_EQ(context.enabledLightSources().size(), lights.size());
    }
    EXPECT_FALSE(LoadedModule::isInProcess());
    EXPECT_THAT(context.enabledLightSources(), IsEmpty());
    EXPECT_THAT(other.enabledLightSources(), IsEmpty());
    EXPECT_THAT(recorded.messages, IsEmpty());
}

TEST(Unload, RenderContextsLetGoOfLightSourcesWhoseObjectsWentBefore) {
    for (const char* const type : {"AmbientLight", "Headlight"}) {
        VRenderContext context(Tessan::makeStrong<ValuePool>());
        {
            const LoadedModule module;
            illuminate(VCreatorBase::find(type)->create(""), context);
            ASSERT_EQ(context.enabledLightSources().size(), 1u) << type;
            EXPECT_NE(context.enabledLightSources()[0]->snippet(), "") << type; // kept until then
        }
        EXPECT_THAT(context.enabledLightSources(), IsEmpty()) << type;
    }
}

/// Lets go of what it holds when it is told, while the module is still there.
struct LettingGo : korl::test::RecordedReports {
    void printRS(const std::string& message, const char* place) override {
        RecordedReports::printRS(message, place);
        held.clear();
    }
    std::vector<StrongPtr<LightSource>> held;
};

TEST(Unload, LightSourcesThatAreStillHeldAreReportedByType) {
    LettingGo letting_go;
    std::vector<std::string> expected;
    {
        const LoadedModule module;
        VRenderContext context(Tessan::makeStrong<ValuePool>());
        for (const char* const type : {"AmbientLight", "Headlight", "Torch"})
            illuminate(VCreatorBase::find(type)->create(""), context);
        letting_go.held = context.enabledLightSources();
        for (const std::size_t source : {0u, 1u}) // the torch's is of a class of the host
            expected.push_back(
                "light source " + std::to_string(letting_go.held[source]->serialNumber()) +
                " of type tovek::(anonymous namespace)::" + (source == 0 ? "AmbientLight" : "Headlight") +
                "::MyLightSource is still held, but its module goes: it must be let go of "
                "before the module is unloaded");
    }
    EXPECT_EQ(letting_go.messages, expected);
    EXPECT_THAT(letting_go.places, ElementsAre("LightSource", "LightSource"));
}

TEST(Unload, TypesOfOneNameAreToldApart) { // with Clang, even by name
    const LoadedModule module;
    VCreatorBase &sun = *VCreatorBase::find("Sun"), &directional = *VCreatorBase::find("DirectionalLight");
    const auto at_noon = sun.create("noon"), from_above = directional.create("above");
    EXPECT_EQ(VCreatorBase::deleteAllInstances(directional.type()), 1u);
    EXPECT_FALSE(from_above);
    ASSERT_TRUE(at_noon);
    EXPECT_EQ(VCreatorBase::deleteAllInstances(sun.type()), 1u);
    EXPECT_FALSE(at_noon);
}

} // namespace
