#include "tests/support/counted_light.hpp"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using korl::test::CountedLight;
using Qelt::RenderAble;
using Qelt::ShaderLightSource;
using Qelt::ValuePool;
using Qelt::VRenderContext;
using Qelt::VRequest;
using Qelt::RenderNamespace::LightSource;
using Tessan::StrongPtr;

struct PlainSource final : LightSource {
    std::string snippet() const override { return {}; }
};

TEST(LightSource, SerialNumbersCountFromOneAndNeverRepeat) {
    const PlainSource first;
    EXPECT_EQ(first.serialNumber(), 1u); // the first light source of this process
    const PlainSource second;
    EXPECT_EQ(second.serialNumber(), 2u);
}

TEST(LightSource, TakesTheCurrentTimeAsItsAge) {
    Tessan::Ageable clock;
    clock.grow();
    const PlainSource source;
    EXPECT_EQ(source.age(), Tessan::Ageable::GlobalTime.load());
}

TEST(LightSource, KeepsUniformsOfItsOwn) {
    PlainSource first, second;
    Qelt::RenderNamespace::writeUniform(first.uniforms(), "A$$", 1);
    Qelt::RenderNamespace::writeUniform(second.uniforms(), "B$$", 2.5);
    const PlainSource &seen = first, &other = second;
    ASSERT_EQ(seen.uniforms().size(), 1u);
    EXPECT_EQ(std::get<int>(seen.uniforms().at("A$$")), 1);
    ASSERT_EQ(other.uniforms().size(), 1u);
    EXPECT_EQ(std::get<double>(other.uniforms().at("B$$")), 2.5);
}

TEST(LightSource, SerialNumbersAreUniqueAcrossThreads) {
    std::vector<std::uint64_t> numbers[4];
    std::vector<std::thread> threads;
    for (auto& taken : numbers)
        threads.emplace_back([&taken] {
            for (int i = 0; i < 1000; ++i)
                taken.push_back(PlainSource().serialNumber());
        });
    for (std::thread& thread : threads)
        thread.join();
    std::set<std::uint64_t> all;
    for (const auto& taken : numbers)
        all.insert(taken.begin(), taken.end());
    EXPECT_EQ(all.size(), 4000u);
}

TEST(ShaderLightSource, KeepsOneLightSourceForEachContext) {
    const CountedLight light("light");
    VRenderContext first(Tessan::makeStrong<ValuePool>()), second(Tessan::makeStrong<ValuePool>());
    light.illuminate(first);
    light.illuminate(first);
    light.illuminate(second);
    ASSERT_EQ(first.enabledLightSources().size(), 2u);
    EXPECT_EQ(first.enabledLightSources()[0], first.enabledLightSources()[1]);
    EXPECT_FALSE(first.enabledLightSources()[0] == second.enabledLightSources()[0]);
    EXPECT_NE(first.enabledLightSources()[0]->serialNumber(),
              second.enabledLightSources()[0]->serialNumber());
    EXPECT_EQ(light.snippets_fetched, 2); // once for each
    EXPECT_EQ(first.enabledLightSources()[0]->snippet(), light.text);
}

TEST(ShaderLightSource, ContextKeepsALightSourceWhoseLightHasGone) {
    VRenderContext context(Tessan::makeStrong<ValuePool>());
    {
        const CountedLight passing("light", "its text");
        passing.illuminate(context);
    }
    ASSERT_EQ(context.enabledLightSources().size(), 1u);
    const StrongPtr<LightSource> source = context.enabledLightSources()[0];
    EXPECT_EQ(source->snippet(), "its text");
    context.beginRendering();
    EXPECT_EQ(source->controlBlock().strongCount(), 1); // nobody else holds it: its state went with the light
}

/// A light that counts nothing, so that threads may share it.
struct SharedLight final : ShaderLightSource {
    SharedLight() : ShaderLightSource("light", 0, {}) {}
    std::string lightSnippet() const override { return "text"; }
    void fillUniforms(Qelt::RenderNamespace::UniformMap&, VRenderContext&) const override {}
};

TEST(ShaderLightSource, StatesMayBeMadeOnSeveralThreads) {
    const SharedLight light;
    std::vector<std::uint64_t> numbers[4];
    std::vector<std::thread> threads;
    for (auto& taken : numbers)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                const auto pool = Tessan::makeStrong<ValuePool>(); // of this thread's own context
                const auto& state = light.myState(*pool);
                taken.push_back(
                    static_cast<const SharedLight::LightState&>(*state).lightSource()->serialNumber());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    std::set<std::uint64_t> all;
    for (const auto& taken : numbers)
        all.insert(taken.begin(), taken.end());
    EXPECT_EQ(all.size(), 2000u);
}

TEST(ShaderLightSource, BaseUpdatesAndSetsUpNothingAndSucceeds) {
    CountedLight light("light");
    const auto pool = Tessan::makeStrong<ValuePool>();
    VRequest request(pool);
    VRenderContext context(pool);
    EXPECT_TRUE(light.update(request, 0));
    EXPECT_TRUE(light.environment_render(context));
    EXPECT_EQ(light.fills, 0);
}

TEST(ShaderLightSource, FillsTheUniformsAtRendering) {
    const CountedLight light("light");
    VRenderContext context(Tessan::makeStrong<ValuePool>());
    Qelt::RenderNamespace::UniformMap uniforms;
    light.updateLightAtRendering(uniforms, context);
    EXPECT_EQ(std::get<float>(uniforms.at("Strength$$")), 1);
    EXPECT_EQ(light.fills, 1);
}

TEST(ShaderLightSource, KeepsWhatItIsGiven) {
    const CountedLight light("light", "text", -200010);
    EXPECT_EQ(light.Name(), "light");
    EXPECT_EQ(light.priority(), -200010);
    const StrongPtr<LightSource> source(new PlainSource);
    EXPECT_EQ(ShaderLightSource::LightState(source).lightSource(), source);
}

/// The place of a virtual operation in the virtual table, as the Itanium C++ ABI (2.3) writes it into a
/// pointer to a virtual member: one plus its offset in bytes.
template <class Member>
std::ptrdiff_t placeOf(Member member) {
    std::ptrdiff_t place = 0;
    std::memcpy(&place, &member, sizeof place);
    return place;
}

TEST(ShaderLightSource, VirtualOperationsStandInTheirOrder) {
    const std::ptrdiff_t update = placeOf(&ShaderLightSource::update);
    const std::ptrdiff_t illuminate = placeOf(&RenderAble::illuminate);
    const std::ptrdiff_t environment_render =
        placeOf(static_cast<bool (RenderAble::*)(VRenderContext&) const>(&RenderAble::environment_render));
    const std::ptrdiff_t new_state = placeOf(&ShaderLightSource::newState);
    const std::ptrdiff_t snippet = placeOf(&ShaderLightSource::lightSnippet);
    const std::ptrdiff_t fill = placeOf(&ShaderLightSource::fillUniforms);
    const std::ptrdiff_t at_rendering = placeOf(&ShaderLightSource::updateLightAtRendering);
    EXPECT_LT(update, illuminate);
    EXPECT_LT(illuminate, environment_render);
    EXPECT_LT(environment_render, new_state);
    EXPECT_EQ(snippet, new_state + static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(fill, snippet + static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(at_rendering, fill + static_cast<std::ptrdiff_t>(sizeof(void*)));
}

TEST(RenderContext, BeginsEachRenderingAnew) {
    const auto pool = Tessan::makeStrong<ValuePool>();
    VRenderContext context(pool);
    EXPECT_EQ(&context.pool(), pool.get());
    EXPECT_EQ(context.lightNumber(), 1);
    EXPECT_TRUE(context.enabledLightSources().empty());
    const StrongPtr<LightSource> first(new PlainSource), second(new PlainSource), third(new PlainSource);
    for (const auto& source : {first, second, third, first})
        context.enableLightSource(source);
    EXPECT_EQ(context.enabledLightSources(), (VRenderContext::LightSources{first, second, third, first}));
    context.setLightNumber(5);
    EXPECT_EQ(context.lightNumber(), 5);
    context.beginRendering();
    EXPECT_EQ(context.lightNumber(), 1);
    EXPECT_TRUE(context.enabledLightSources().empty());
    EXPECT_EQ(first->controlBlock().strongCount(), 1);
}

TEST(RenderContext, NeedsAPool) {
    std::string message;
    try {
        VRenderContext(StrongPtr<ValuePool>{});
    } catch (const std::invalid_argument& error) {
        message = error.what();
    }
    EXPECT_EQ(message, "VRenderContext: a render context needs a value pool, none was given");
}

} // namespace
