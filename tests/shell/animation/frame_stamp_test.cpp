#include "shell/animation/frame_stamp.hpp"

#include "tests/support/flat_scene.hpp"
#include "tests/support/temporary_folder.hpp"

#include "shell/image/png.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace korl {
namespace {

TEST(FrameStampTest, IsReadFromTheFile) {
    const test::TemporaryFolder folder;
    const auto png = encodePng({1, 1, {1, 2, 3, 4}},
                               std::vector<std::pair<std::string, std::string>>{
                                   {"Comment", "6 h"}, {frame_stamp_keyword, "0123"}, {"Korl", "x"}});
    EXPECT_EQ(frameStamp(folder.write("f.png", {png.begin(), png.end()})), "0123");
    EXPECT_EQ(frameStamp(folder.write("g.png", {png.begin(), png.end() - 1})), "");
    EXPECT_EQ(frameStamp(folder.write("h.png", "")), "");
    EXPECT_EQ(frameStamp(folder / "nowhere.png"), "");
    EXPECT_EQ(frameStamp(folder.path()), "");
}

TEST(ChecksumTest, IsTheOneOfEveryOtherProgram) {
    EXPECT_EQ(checksum(""), 0u);
    EXPECT_EQ(checksum("123456789"), 0xcbf43926u); // the check value by which the algorithm is known
}

struct PlainType : test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

class SceneChecksumTest : public testing::Test {
protected:
    std::uint32_t checksumAfter(const std::function<void(Scene&)>& change) const {
        Scene scene;
        test::makeFlat(scene);
        scene.create("Plain", "p");
        scene.create("Plain", "q");
        scene.create("DownwardLight", "light");
        scene.addView("left");
        change(scene);
        return checksum(scene, sceneText(scene, "/"));
    }

    static Mesh model() {
        Mesh mesh;
        mesh.name = "model";
        mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        mesh.normals.assign(3, {0, 0, 1});
        mesh.colors.assign(3, {1, 1, 1});
        mesh.triangles = {0, 1, 2};
        mesh.source = ModelSource{"/models/model.obj", UpAxis::z};
        return mesh;
    }

    static Mesh changedModel(const std::function<void(Mesh&)>& change) {
        Mesh mesh = model();
        change(mesh);
        return mesh;
    }

    const test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
};

TEST_F(SceneChecksumTest, IsTheSameForTheSameScene) {
    const auto addModel = [](Scene& scene) { scene.addMesh(model()); };
    EXPECT_EQ(checksumAfter(addModel), checksumAfter(addModel));
}

TEST_F(SceneChecksumTest, DiffersWithWhateverPicturesDependOn) {
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
        [](Scene& scene) { scene.addMesh(*scene.meshes()[0]); },
        [](Scene& scene) { scene.addMesh(model()); },
        [](Scene& scene) { scene.addMesh(changedModel([](Mesh& mesh) { mesh.positions[1].z = 1; })); },
        [](Scene& scene) {
            scene.addMesh(changedModel([](Mesh& mesh) { mesh.normals[2] = {0, 1, 0}; }));
        },
        [](Scene& scene) { scene.addMesh(changedModel([](Mesh& mesh) { mesh.colors[0].r = 0; })); },
        [](Scene& scene) {
            scene.addMesh(changedModel([](Mesh& mesh) { mesh.triangles = {0, 2, 1}; }));
        },
        [](Scene& scene) { scene.addMesh(changedModel([](Mesh& mesh) { mesh.colors = {}; })); },
        [](Scene& scene) {
            scene.addMesh(changedModel([](Mesh& mesh) {
                mesh.colors = {};
                mesh.positions[1].z = 1;
            }));
        }};
    std::set<std::uint32_t> found;
    for (const auto& change : changes)
        found.insert(checksumAfter(change));
    EXPECT_EQ(found.size(), changes.size());
}

} // namespace
} // namespace korl
