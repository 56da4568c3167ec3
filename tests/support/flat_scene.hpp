#pragma once

#include "tests/support/counted_light.hpp"
#include "tests/support/plain_object.hpp"

#include "shell/scene/scene.hpp"

#include <sorvik/creator.hpp>

#include <functional>
#include <string>

namespace korl::test {

/// A scene of one white square in the plane z = 0 that fills a picture taken from straight above.
inline void makeFlat(Scene& scene) {
    Mesh square;
    square.name = "square";
    square.positions = {{-9, -9, 0}, {9, -9, 0}, {9, 9, 0}, {-9, 9, 0}};
    square.normals.assign(4, {0, 0, 1});
    square.triangles = {0, 1, 2, 0, 2, 3};
    scene.addMesh(square);
    Camera camera;
    camera.position = {0, 0, 5};
    camera.target = {0, 0, 0};
    camera.up = {0, 1, 0};
    scene.camera = camera;
    acknowledgeSlotCreators();
}

/// GLSL of a light that shines straight down with the strength of its uniform.
inline const std::string downward_snippet = "uniform float Strength$$ = 1.0;\n"
                                            "void getLight_$$(in vec3 vertex, out vec3 incidence, out vec3 "
                                            "intensity, out vec3 specular)\n"
                                            "{\n"
                                            "\tincidence = vec3(0, 0, -1);\n"
                                            "\tintensity = vec3(Strength$$);\n"
                                            "\tspecular = vec3(0);\n"
                                            "}\n";

/// A light whose fixed-function set-up is given by a test. It has no snippet.
class SetUpLight : public Qelt::VLightSource {
public:
    using SetUp = std::function<void(Qelt::VRenderContext&)>;

    SetUpLight(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VLightSource(name, 0, preferences) {}

    bool environment_render(Qelt::VRenderContext& context) const override {
        if (set_up)
            set_up(context);
        return true;
    }
    using VLightSource::environment_render;

    SetUp set_up;
};

/// A shader light that shines straight down.
class DownwardLight : public CountedLight {
public:
    DownwardLight(const std::string& name, const Qelt::VCreationPreferences&)
        : CountedLight(name, downward_snippet) {}
};

/// Creators of these lights, as a module would register them.
struct TestLightCreators {
    TestLightCreators() : set_up(std::string("SetUpLight"), 0), downward(std::string("DownwardLight"), 0) {}

    Qelt::VCreator<SetUpLight, void> set_up;
    Qelt::VCreator<DownwardLight, void> downward;
};

} // namespace korl::test
