#include "shell/gallery/gallery.hpp"

#include "tests/support/gl_test.hpp"
#include "tests/support/module_types.hpp"
#include "tests/support/read_picture.hpp"
#include "tests/support/run_program.hpp"

#include "shell/base/error.hpp"
#include "shell/session/shell.hpp"

#include <gmock/gmock.h>
#include <set>

namespace {

using korl::test::bytesOf;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

class GalleryGLTest : public korl::test::GLTest {
protected:
    std::string page() { return bytesOf(korl::writeGallery(shell, folder / "deep" / "inside")); }

    const std::vector<std::string> types = korl::test::moduleTypes();
    const TemporaryFolder folder;
    korl::Shell shell;
};

std::size_t countOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST_F(GalleryGLTest, ShowsEveryTypeOnBothPaths) {
    shell.plugins().load(korl::test::moduleFile());
    const std::string html = page();
    EXPECT_EQ(countOf("<section ", html), types.size());
    for (const std::string& type : types) {
        EXPECT_EQ(countOf("<section id=\"" + type + "\">", html), 1u) << type;
        for (const char* const path : {"shader path", "fixed-function path"})
            EXPECT_EQ(
                countOf("alt=\"Hilly land, a column and a sphere, lit by " + type + " on the " + path + "\"",
                        html),
                1u)
                << type;
    }
    EXPECT_THAT(html, HasSubstr("<td><code>latitude</code></td><td>double</td><td><code>45</code></td>"
                                "<td>-90 to 90</td><td>degrees</td><td>0</td><td>where on Earth"));
    EXPECT_THAT(html, HasSubstr("<td><code>timeofday</code></td><td>double</td><td><code>12</code></td>"
                                "<td>up to 24</td>"));
    EXPECT_THAT(html, HasSubstr("<td><code>TorchScaleDistance$$</code></td><td><code>1000</code></td>"));
    EXPECT_THAT(html, HasSubstr("#pragma import &quot;getViewDir&quot;"));
    EXPECT_THAT(html, HasSubstr("adds nothing on the fixed-function path"));
    EXPECT_TRUE(shell.scene().objects().empty());
}

TEST_F(GalleryGLTest, TakesNothingFromElsewhere) {
    shell.plugins().load(korl::test::moduleFile());
    const std::string html = page();
    EXPECT_THAT(html, Not(HasSubstr("http")));
    EXPECT_THAT(html, Not(HasSubstr("url(")));
    EXPECT_EQ(countOf(" src=\"", html), countOf(" src=\"data:image/png;base64,", html));
    EXPECT_EQ(countOf(" href=\"", html), countOf(" href=\"#", html));
    EXPECT_EQ(countOf("<img ", html), countOf(" alt=\"", html));
}

TEST_F(GalleryGLTest, TypeThatFailsSaysSoAndTheOthersAreThere) {
    shell.plugins().load(korl::test::moduleFile());
    shell.plugins().load(FAULTY_LIGHT_MODULE);
    const std::string html = page();
    EXPECT_THAT(html, HasSubstr("Not all of it can be shown: the GLSL snippet of the light "
                                "&quot;FaultyLight&quot; does not compile, line 3"));
    EXPECT_THAT(html, HasSubstr("vec3(unheard_of)"));
    EXPECT_EQ(countOf("<section ", html), types.size() + 1);
}

TEST_F(GalleryGLTest, WithoutAnyTypeThereIsNoPage) {
    EXPECT_THROW(page(), korl::Error);
    EXPECT_FALSE(std::filesystem::exists(folder / "deep"));
}

TEST(GalleryInBrowserGLTest, LooksLikeAPage) {
    const std::string browser = "/usr/bin/chromium";
    if (!std::filesystem::exists(browser))
        GTEST_SKIP() << browser << " is not there; the package chromium has it";
    const TemporaryFolder folder;
    const auto made = runProgram(KORL_PROGRAM, {"gallery", "-o", folder.path()});
    ASSERT_EQ(made.exit_code, 0) << made.errors;
    const std::string picture = folder / "page.png";
    const auto shown =
        runProgram(browser, {"--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                             "--window-size=1000,1400", "--force-device-scale-factor=1",
                             "--user-data-dir=" + (folder / "profile").string(), "--screenshot=" + picture,
                             "file://" + (folder / "index.html").string()});
    ASSERT_EQ(shown.exit_code, 0) << shown.errors;
    const korl::Image image = korl::test::readPicture(picture);
    EXPECT_EQ(image.width, 1000);
    EXPECT_EQ(image.height, 1400);
    // Text alone has few colours, a page that could not be found still fewer; the lit scenes have thousands.
    std::set<std::uint32_t> colors;
    for (std::size_t i = 0; i + 3 < image.pixels.size(); i += 4)
        colors.insert(static_cast<std::uint32_t>(image.pixels[i] << 16 | image.pixels[i + 1] << 8 |
                                                 image.pixels[i + 2]));
    EXPECT_GT(colors.size(), 2000u);
}

} // namespace
