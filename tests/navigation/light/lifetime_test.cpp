// The light sources of all types: how they are numbered, who keeps them, and what happens to those that still
// live when the process ends.

#include "every_light.hpp"
#include "tests/support/loaded_module.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <sorvik/creator.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

using korl::test::LoadedModule;
using Qelt::RenderAble;
using Qelt::ValuePool;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VRenderContext;
using Tessan::StrongPtr;

/// An object from every creator of the module.
std::vector<StrongPtr<VObject>> allLights() {
    std::vector<StrongPtr<VObject>> lights;
    for (VCreatorBase* const creator : VCreatorBase::catalogue())
        lights.push_back(creator->create(""));
    return lights;
}

void illuminate(const std::vector<StrongPtr<VObject>>& lights, const VRenderContext& context) {
    for (const StrongPtr<VObject>& light : lights)
        dynamic_cast<const RenderAble&>(*light).illuminate(context);
}

/// The contexts that lights are looked at in; each has a pool of its own.
std::vector<std::unique_ptr<VRenderContext>> someContexts(std::size_t count) {
    std::vector<std::unique_ptr<VRenderContext>> contexts(count);
    for (auto& context : contexts)
        context = std::make_unique<VRenderContext>(Tessan::makeStrong<ValuePool>());
    return contexts;
}

/// Whether the light sources of some contexts have serial numbers of their own, from 1 on without a gap.
bool areNumberedFromOne(const std::vector<std::unique_ptr<VRenderContext>>& contexts) {
    std::set<const void*> sources; // the headlight's is in all of them
    std::set<std::uint64_t> serials;
    for (const auto& context : contexts)
        for (const auto& source : context->enabledLightSources()) {
            sources.insert(source.get());
            serials.insert(source->serialNumber());
        }
    return !serials.empty() && serials.size() == sources.size() && *serials.begin() == 1 &&
           *serials.rbegin() == serials.size();
}

/// Makes light sources of all types in some contexts, from one thread or from two, and ends the process: with
/// 0 if their serial numbers are as they should be.
[[noreturn]] void numberLightSources(bool from_two_threads) {
    const LoadedModule module;
    const auto contexts = someContexts(400);
    const auto lights = allLights();
    const auto illuminate_every_second = [&](std::size_t first) {
        for (std::size_t i = first; i < contexts.size(); i += 2)
            illuminate(lights, *contexts[i]);
    };
    if (from_two_threads) {
        std::thread other(illuminate_every_second, 1);
        illuminate_every_second(0);
        other.join();
    } else {
        illuminate_every_second(0);
        illuminate_every_second(1);
    }
    std::_Exit(areNumberedFromOne(contexts) ? 0 : 1);
}

// The numbers go on as long as a process lives, so each of these tests has a fresh one.

TEST(LightSourceDeathTest, SerialNumbersGoFromOneThroughAllTypes) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(numberLightSources(false), testing::ExitedWithCode(0), "");
}

TEST(LightSourceDeathTest, SerialNumbersAreDistinctWhereTwoThreadsMakeStates) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(numberLightSources(true), testing::ExitedWithCode(0), "");
}

TEST(LightSource, IsKeptByTheContextWhenItsObjectHasGone) {
    const LoadedModule module;
    for (VCreatorBase* const creator : VCreatorBase::catalogue()) {
        VRenderContext context(Tessan::makeStrong<ValuePool>());
        auto light = creator->create("");
        dynamic_cast<const RenderAble&>(*light).illuminate(context);
        const Tessan::WeakPtr<Qelt::RenderNamespace::LightSource> source(
            context.enabledLightSources()[0].get());
        const std::uint64_t serial = source->serialNumber();
        source->uniforms()["Strength$$"] = 7.0;

        light = {};
        EXPECT_TRUE(VObject::members().empty());
        ASSERT_TRUE(source) << creator->keyname("/");
        EXPECT_EQ(source->serialNumber(), serial);
        EXPECT_THAT(source->snippet(), testing::HasSubstr("void\tgetLight_$$("));
        EXPECT_EQ(std::get<double>(source->uniforms().at("Strength$$")), 7);

        context.beginRendering();
        EXPECT_FALSE(source) << creator->keyname("/");
    }
}

bool hasOneSource(const std::string& type) {
    const auto& lights = korl::test::declaredLights();
    return std::any_of(lights.begin(), lights.end(), [&](const korl::test::LightDeclaration& light) {
        return light.type == type && light.has_one_source;
    });
}

TEST(LightSource, OfAContextGoesWithTheObjectOrThePool) {
    const LoadedModule module;
    for (VCreatorBase* const creator : VCreatorBase::catalogue()) {
        if (hasOneSource(creator->Name()))
            continue; // it goes with the object alone
        auto light = creator->create("");
        const auto sourceIn = [&](const StrongPtr<ValuePool>& pool) {
            const VRenderContext context(pool);
            dynamic_cast<const RenderAble&>(*light).illuminate(context);
            return Tessan::WeakPtr<Qelt::RenderNamespace::LightSource>(
                context.enabledLightSources()[0].get());
        };
        auto pool = Tessan::makeStrong<ValuePool>(), other_pool = Tessan::makeStrong<ValuePool>();
        const auto source = sourceIn(pool), other = sourceIn(other_pool);
        EXPECT_TRUE(source && other);
        pool = {};
        EXPECT_FALSE(source) << creator->Name();
        EXPECT_TRUE(other) << creator->Name();
        light = {};
        EXPECT_FALSE(other) << creator->Name();
    }
}

/// Ends the process while lights live. Of the globals that hold them some go before the module, some after
/// it.
[[noreturn]] void exitWithLivingLights() {
    std::atexit([] {
        std::fprintf(stderr, "%zu objects, %zu creators, %zu modules", VObject::members().size(),
                     VCreatorBase::catalogue().size(), VInitialization::plugins().size());
    });
    static std::vector<StrongPtr<VObject>> lights;
    static const auto contexts = someContexts(2);
    dlopen(korl::test::moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL); // which stays loaded
    lights = allLights();
    static const auto late_contexts = someContexts(1);
    static const auto late_lights = allLights();
    for (const auto* const some : {&contexts, &late_contexts})
        for (const auto& context : *some) {
            illuminate(lights, *context);
            illuminate(late_lights, *context);
        }
    std::exit(0);
}

TEST(ProcessDeathTest, EndsWellWhileLightsLive) {
    EXPECT_EXIT(exitWithLivingLights(), testing::ExitedWithCode(0),
                testing::Eq("0 objects, 0 creators, 0 modules"));
}

} // namespace
