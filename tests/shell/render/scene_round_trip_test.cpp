// A scene that was saved and loaded shows the same pixels: every type of the module, with values at the
// extremes.

#include "tests/support/flat_scene.hpp"
#include "tests/support/gl_test.hpp"

#include "shell/plugins/plugin_library.hpp"
#include "shell/render/renderer.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Scene;

class SceneRoundTripGLTest : public korl::test::GLTest {
protected:
    std::vector<std::uint8_t> pixels(const Scene& scene, const std::string& view_name) {
        korl::View view = view_name.empty() ? korl::View() : korl::View(scene.view(view_name));
        return renderer.render(scene, view, {16, 16, korl::RenderPath::both}).pixels;
    }

    void expectSame(const Scene& scene) {
        const std::string text = korl::sceneText(scene, "/scenes");
        Scene loaded;
        korl::readSceneText(text, "/scenes/scene.json", loaded);
        EXPECT_EQ(korl::sceneText(loaded, "/scenes"), text);
        for (const char* const view : {"", "left"})
            EXPECT_EQ(pixels(loaded, view), pixels(scene, view)) << "view \"" << view << "\" of " << text;
    }

    const korl::PluginLibrary module = korl::PluginLibrary::load(TOVEK_LIGHT_MODULE);
    korl::Renderer renderer{context(), [](const std::string&) {}};
};

/// A text of as many numbers as a parameter takes.
std::string textFor(const Qelt::VParameter& parameter, const std::string& number) {
    const std::string text = parameter.DefaultValue().Text();
    std::string filled = number;
    for (const char letter : text)
        if (letter == ' ')
            filled += " " + number;
    return filled;
}

TEST_F(SceneRoundTripGLTest, EveryTypeWithValuesAtTheExtremes) {
    EXPECT_FALSE(Qelt::VCreatorBase::catalogue().empty());
    for (const Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
        SCOPED_TRACE(creator->Name());
        Scene scene;
        korl::test::makeFlat(scene);
        const Qelt::VObject& light = scene.create(creator->Name(), "light");
        scene.addView("left");
        expectSame(scene);
        for (const auto& [parameter, ignored] : light.parameters()) {
            SCOPED_TRACE(parameter->Name());
            const bool is_color = parameter->type() == typeid(Orvid::rgba_float_t);
            for (const char* const number : {is_color ? "1e-37" : "1e-300", is_color ? "1e37" : "1e300", "-0",
                                             is_color ? "1e-45" : "5e-324", "0.3"}) {
                scene.setParameterText("light", parameter->Name(), textFor(*parameter, number));
                scene.setParameterText("light", parameter->Name(), textFor(*parameter, "0.7"), "left");
                expectSame(scene);
            }
            scene.resetParameter("light", parameter->Name());
            scene.resetParameter("light", parameter->Name(), "left");
        }
    }
}

TEST_F(SceneRoundTripGLTest, TheModuleIsNamed) {
    Scene scene;
    scene.create("Sun");
    EXPECT_THAT(korl::sceneText(scene, "/scenes"), testing::HasSubstr(R"("plugins": ["tovek_light"],)"));
}

} // namespace
