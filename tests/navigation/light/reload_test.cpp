#include "tests/support/loaded_module.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <sorvik/creator.hpp>

#include <fstream>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

namespace {

using korl::test::LoadedModule;
using Qelt::VCreatorBase;

/// The memory of this process that is in use, in bytes: what the allocator has handed out, and what is
/// resident.
struct MemoryInUse {
    std::size_t allocated = mallinfo2().uordblks;
    std::size_t resident = [] {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    }();
};

/// One life of the module: loaded, used in a render context, unloaded with a living object.
void useModuleOnce() {
    const LoadedModule module;
    Qelt::VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
    const auto light = VCreatorBase::find("AmbientLight")->create("lamp");
    dynamic_cast<Qelt::RenderAble&>(*light).illuminate(context);
    context.beginRendering();
}

TEST(Reload, ProcessDoesNotGrow) {
#ifdef KORL_SANITIZED
    GTEST_SKIP() << "sanitizers grow by themselves";
#endif
    for (int i = 0; i < 100; ++i)
        useModuleOnce();
    MemoryInUse(); // what measuring itself takes is not counted
    const MemoryInUse settled;
    for (int i = 100; i < 1000; ++i)
        useModuleOnce();
    const MemoryInUse end;
    // What the allocator keeps at hand counts as allocated and varies a little with the addresses. The
    // smallest thing lost each time would make 900 blocks of 32 bytes.
    EXPECT_LT(end.allocated, settled.allocated + 900 * 32 / 2);
    EXPECT_LE(end.resident, settled.resident + 4 * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
    EXPECT_FALSE(LoadedModule::isInProcess());
}

TEST(Reload, SerialNumbersOfLightSourcesGoOn) {
    std::uint64_t latest = 0;
    for (int i = 0; i < 3; ++i) {
        const LoadedModule module;
        Qelt::VRenderContext context(Tessan::makeStrong<Qelt::ValuePool>());
        const auto light = VCreatorBase::find("AmbientLight")->create("lamp");
        dynamic_cast<Qelt::RenderAble&>(*light).illuminate(context);
        EXPECT_GT(context.enabledLightSources()[0]->serialNumber(), latest);
        latest = context.enabledLightSources()[0]->serialNumber();
        context.beginRendering();
    }
}

} // namespace
