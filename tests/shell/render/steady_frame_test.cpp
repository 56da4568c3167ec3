// A steady frame makes no heap allocation: every operator new of this process is counted while one is drawn.

#include "tests/support/flat_scene.hpp"
#include "tests/support/gl_test.hpp"
#include "tests/support/module_types.hpp"

#include "shell/render/fixed_path.hpp"
#include "shell/render/offscreen_target.hpp"
#include "shell/render/shader_path.hpp"

#include <atomic>
#include <cstdlib>
#include <glm/glm.hpp>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <vector>

namespace {

std::atomic<long> allocations{0};

} // namespace

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
    std::free(memory);
}

__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

class SteadyFrameGLTest : public korl::test::GLTest {
protected:
    template <class Draw>
    long allocationsOfSteadyFrame(Draw draw) {
        for (int i = 0; i < 3; ++i)
            draw();
        const long before = allocations;
        draw();
        return allocations - before;
    }

    SteadyFrameGLTest() {
        target.bind();
        korl::test::makeFlat(scene);
    }

    void addModulesLights(int of_each_type) {
        for (const std::string& type : types)
            for (int i = 0; i < of_each_type; ++i)
                scene.create(type);
    }

    /// Lights of the tests' own beside those of the module, more than OpenGL holds.
    void addTestLights() {
        scene.create("DownwardLight");
        for (int i = 0; i < 12; ++i)
            dynamic_cast<korl::test::SetUpLight&>(scene.create("SetUpLight")).set_up =
                [](Qelt::VRenderContext& frame) {
                    glEnable(GL_LIGHT0 + static_cast<GLenum>(frame.lightNumber() - 1));
                };
    }

    long allocationsOnShaderPath() {
        korl::ShaderPath path;
        return allocationsOfSteadyFrame([&] {
            view.beginFrame(scene, 0);
            path.fillUniforms(view, viewpoint);
            meshes.buffersOf(scene.meshes());
            path.draw(view, viewpoint, meshes, reports);
            view.endFrame();
        });
    }

    long allocationsOnFixedPath() {
        korl::FixedPath path;
        return allocationsOfSteadyFrame([&] {
            view.beginFrame(scene, 0);
            path.setUpLights(view, viewpoint, reports);
            path.draw(viewpoint, meshes.buffersOf(scene.meshes()));
            view.endFrame();
        });
    }

    std::vector<std::string> told;
    korl::Reports reports{[this](const std::string& text) { told.push_back(text); }};
    korl::GLContext& gl_context = context();
    const korl::OffscreenTarget target{16, 16};
    const std::vector<std::string> types = korl::test::moduleTypes();
    const korl::test::LoadedModule module;
    const korl::test::TestLightCreators creators;
    korl::Scene scene;
    korl::View view;
    korl::MeshBufferCache meshes;
    const korl::Viewpoint viewpoint{glm::mat4(1), glm::mat4(1), glm::vec3(0)};
};

TEST_F(SteadyFrameGLTest, CountingWorks) {
    const long before = allocations;
    const std::string long_enough_for_the_heap(100, 'x');
    EXPECT_GT(allocations, before);
}

TEST_F(SteadyFrameGLTest, LightsOfEachTypeAllocateNothingOnEitherPath) {
    for (const std::string& type : types) {
        for (int i = 0; i < 3; ++i)
            scene.create(type, "light" + std::to_string(i));
        EXPECT_EQ(allocationsOnShaderPath(), 0) << type;
        EXPECT_EQ(allocationsOnFixedPath(), 0) << type;
        for (int i = 0; i < 3; ++i)
            scene.remove("light" + std::to_string(i));
    }
    EXPECT_TRUE(told.empty()) << told.front(); // none was left out
}

TEST_F(SteadyFrameGLTest, LightsOfAllTypesAllocateNothingOnEitherPath) {
    addModulesLights(1);
    EXPECT_EQ(allocationsOnShaderPath(), 0);
    EXPECT_EQ(allocationsOnFixedPath(), 0);
}

TEST_F(SteadyFrameGLTest, MoreLightsThanOpenGLHoldsAllocateNothingOnEitherPath) {
    addModulesLights(2);
    addTestLights();
    EXPECT_EQ(allocationsOnShaderPath(), 0);
    EXPECT_EQ(allocationsOnFixedPath(), 0);
    EXPECT_EQ(told.size(), 1u); // those left out, in the first frame
}

} // namespace
