#include "tests/support/rendered_scene.hpp"

#include <algorithm>
#include <cmath>

namespace {

using korl::Image;
using korl::RenderPath;
using korl::test::Pixel;
using korl::test::pixel;
using Color = Orvid::rgba_float_t;

constexpr int size = 64;

/// A sphere and a slanted square on a background, so that many pixels are at an edge.
class SeeThroughGLTest : public korl::test::RenderedScene {
protected:
    SeeThroughGLTest() {
        scene.camera->position = {3, -20, 21}; // sees the square slanted, and past all of its edges
        scene.camera->target = {0, 0, 0};
        scene.camera->up = {0, 0, 1};
        scene.create("AmbientLight", "a");
        scene.setParameterText("a", "Color", "0.9 0.4 0.1 1");
    }

    Image draw(RenderPath path, const Color& background) {
        scene.background = background;
        return renderer.render(scene, view, {size, size, path});
    }
};

/// One colour over another, as pictures with straight alpha are put over others.
Color over(const Color& front, float behind) {
    const auto mixed = [&](float value) { return front.a * value + (1 - front.a) * behind; };
    return {mixed(front.r), mixed(front.g), mixed(front.b), 1};
}

/// How far the picture, put over a grey, is at most from one that was drawn on it.
double furthest(const Image& picture, const Image& drawn, float behind) {
    double largest = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const Pixel front = pixel(picture, x, y), wanted = pixel(drawn, x, y);
            const double alpha = front[3] / 255.0;
            for (std::size_t i = 0; i < 3; ++i)
                largest =
                    std::max(largest, std::abs(alpha * front[i] + (1 - alpha) * 255.0 * behind - wanted[i]));
        }
    return largest;
}

int countAtEdges(const Image& picture, const Color& background) {
    int count = 0;
    const int alpha = static_cast<int>(std::lround(background.a * 255));
    for (std::size_t at = 3; at < picture.pixels.size(); at += 4)
        count += picture.pixels[at] < 255 && std::abs(picture.pixels[at] - alpha) > 1 ? 1 : 0;
    return count;
}

TEST_F(SeeThroughGLTest, OverWhiteAndOverBlackItIsThePictureDrawnOnTheseColors) {
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed, RenderPath::both})
        for (const float alpha : {0.0f, 0.01f, 0.1f, 0.25f, 0.5f, 0.77f, 0.99f})
            for (const Color& color :
                 {Color{1, 1, 1, alpha}, Color{0.2f, 0.7f, 0.4f, alpha}, Color{0, 0, 0, alpha}}) {
                const Image picture = draw(path, color);
                EXPECT_GT(countAtEdges(picture, color), alpha < 0.9f ? 20 : -1) << "the test sees no edge";
                for (const float behind : {0.0f, 0.5f, 1.0f})
                    EXPECT_LE(furthest(picture, draw(path, over(color, behind)), behind), 2)
                        << "alpha " << alpha << ", red " << color.r << ", over " << behind;
            }
}

TEST_F(SeeThroughGLTest, ColorsAreThoseOfTheMeshAndTheBackgroundWhateverTheirAlpha) {
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
        const Image picture = draw(path, {1, 0.5f, 0, 0.4f});
        EXPECT_EQ(pixel(picture, 0, 0), (Pixel{255, 128, 0, 102}));
        EXPECT_EQ(pixel(picture, size / 2, size / 2), (Pixel{230, 102, 26, 255}));
        EXPECT_EQ(pixel(draw(path, {0.2f, 0.6f, 0.8f, 0}), 0, 0), (Pixel{0, 0, 0, 0}));
    }
}

TEST_F(SeeThroughGLTest, BackgroundBeyondItsRangeIsClampedBeforeItIsSeenThrough) {
    EXPECT_EQ(pixel(draw(RenderPath::shader, {2, -1, 0.4f, 0.5f}), 0, 0), (Pixel{255, 0, 102, 128}));
    EXPECT_EQ(pixel(draw(RenderPath::shader, {2, -1, 0.4f, 7}), 0, 0), (Pixel{255, 0, 102, 255}));
}

} // namespace
