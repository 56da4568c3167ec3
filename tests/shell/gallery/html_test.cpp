#include "shell/gallery/html.hpp"

#include "shell/gallery/gallery_page.hpp"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Html, EscapesWhatHasAMeaning) {
    EXPECT_EQ(korl::escapeHtml("if (a < b && c > \"d\" + 'e')"),
              "if (a &lt; b &amp;&amp; c &gt; &quot;d&quot; + &#39;e&#39;)");
}

TEST(Html, Base64IsThatOfTheStandard) {
    // The test vectors of RFC 4648, section 10, and all bits set.
    const std::vector<std::pair<std::string, std::string>> vectors{{"", ""},
                                                                   {"f", "Zg=="},
                                                                   {"fo", "Zm8="},
                                                                   {"foo", "Zm9v"},
                                                                   {"foob", "Zm9vYg=="},
                                                                   {"fooba", "Zm9vYmE="},
                                                                   {"foobar", "Zm9vYmFy"},
                                                                   {"\xff\xff\xff", "////"}};
    for (const auto& [bytes, expected] : vectors)
        EXPECT_EQ(
            korl::toBase64(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size())),
            expected);
}

TEST(Html, ImageHoldsItsPictureAndItsDescription) {
    const std::string html = korl::imageElement({2, 1, std::vector<std::uint8_t>(8)}, "a \"light\"");
    EXPECT_THAT(html, testing::StartsWith("<img src=\"data:image/png;base64,iVBORw0KGgo"));
    EXPECT_THAT(html, testing::EndsWith("width=\"2\" height=\"1\" alt=\"a &quot;light&quot;\">"));
}

TEST(GalleryPage, EscapesAllThatModulesSay) {
    korl::TypeSheet sheet;
    sheet.name = "<name>";
    sheet.category = "<category>";
    sheet.description = "<description>";
    sheet.failure = "<failure>";
    sheet.parameters = {
        {{"<parameter>", "<kind>", "<initial>", "<minimum>", "<maximum>", "<unit>", 0, "<note>"}, "<more>"}};
    sheet.uniforms = {{"<uniform>", "<value>"}};
    sheet.snippets = {"if (1 <2) <snippet>"};
    const std::string page = korl::galleryPage({sheet});
    for (const char* const text :
         {"name", "category", "description", "failure", "parameter", "kind", "initial", "minimum", "maximum",
          "unit", "note", "more", "uniform", "value", "snippet"}) {
        EXPECT_THAT(page, Not(HasSubstr("<" + std::string(text) + ">")));
        EXPECT_THAT(page, HasSubstr("&lt;" + std::string(text) + "&gt;"));
    }
}

} // namespace
