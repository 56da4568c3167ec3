#include "shell/animation/scene_fingerprint.hpp"

#include "tests/support/flat_scene.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace korl {
namespace {

struct PlainType : test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

class SceneFingerprintTest : public testing::Test {
protected:
    std::uint64_t fingerprintAfter(const std::function<void(Scene&)>& change) const {
        Scene scene;
        test::makeFlat(scene);
        scene.create("Plain", "p");
        scene.create("Plain", "q");
        scene.create("DownwardLight", "light");
        scene.addView("left");
        change(scene);
        return fingerprintOf(scene);
    }

    const test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
};

TEST_F(SceneFingerprintTest, IsTheSameForTheSameScene) {
    EXPECT_EQ(fingerprintAfter([](Scene&) {}), fingerprintAfter([](Scene&) {}));
}

TEST_F(SceneFingerprintTest, DiffersWithWhateverPicturesDependOn) {
    const std::vector<std::function<void(Scene&)>> changes{
        [](Scene&) {},
        [](Scene& scene) { scene.setParameterText("p", "strength", "0.25"); },
        [](Scene& scene) { scene.setParameterText("q", "strength", "0.25"); },
        [](Scene& scene) { scene.setParameterText("p", "strength", "0.25", "left"); },
        [](Scene& scene) { scene.connect("p", "strength", "q", "strength"); },
        [](Scene& scene) { scene.setMuted("p", true); },
        [](Scene& scene) { scene.setMuted("light", true); },
        [](Scene& scene) { scene.create("Plain", "r"); },
        [](Scene& scene) { scene.remove("q"); },
        [](Scene& scene) { scene.camera.reset(); },
        [](Scene& scene) { scene.camera->position.x = 1; },
        [](Scene& scene) { scene.camera->fov_degrees = 31; },
        [](Scene& scene) { scene.background.g = 1; },
        [](Scene& scene) {
            Mesh mesh = *scene.meshes()[0];
            mesh.positions[0].x = -8.5f;
            scene.addMesh(mesh);
        },
        [](Scene& scene) { scene.addMesh(*scene.meshes()[0]); }};
    std::set<std::uint64_t> found;
    for (const auto& change : changes)
        found.insert(fingerprintAfter(change));
    EXPECT_EQ(found.size(), changes.size());
}

TEST_F(SceneFingerprintTest, IsTheUsualSum) {
    Fingerprint sum; // test vectors that the algorithm's authors give
    EXPECT_EQ(sum.value(), 0xcbf29ce484222325u);
    sum.addBytes("foobar", 6);
    EXPECT_EQ(sum.value(), 0x85944171f73967e8u);
}

} // namespace
} // namespace korl
