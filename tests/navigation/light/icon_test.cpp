// The module's icons have the sizes and formats that they must have, and other libraries read them.

#include "tests/support/temporary_folder.hpp"

#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <png.h>
#include <set>
#include <string>
#include <vector>

namespace {

using testing::IsEmpty;

// As the module has them.
#include "navigation/light/Headlight.xpm"
#include "navigation/light/Torch.xpm"

std::string torchPng() {
    return korl::test::bytesOf(PROJECT_SOURCE_DIR "/navigation/light/light/Torch.png");
}

/// A PNG file of 16 bits a channel as libpng reads it. Where it can't, it ends the process.
struct DecodedPng {
    png_uint_32 width, height;
    int bit_depth;
    int color_type;
    std::vector<std::uint16_t> samples;
    std::vector<std::string> warnings;
};

DecodedPng decode(const std::string& file) {
    DecodedPng decoded{};
    const auto on_warning = [](png_structp png, png_const_charp message) {
        static_cast<DecodedPng*>(png_get_error_ptr(png))->warnings.emplace_back(message);
    };
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &decoded, nullptr, on_warning);
    png_infop info = png_create_info_struct(png);
    auto rest = file.data();
    png_set_read_fn(png, &rest, [](png_structp reader, png_bytep bytes, std::size_t count) {
        auto& from = *static_cast<const char**>(png_get_io_ptr(reader));
        std::memcpy(bytes, from, count);
        from += count;
    });
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    decoded.width = png_get_image_width(png, info);
    decoded.height = png_get_image_height(png, info);
    decoded.bit_depth = png_get_bit_depth(png, info);
    decoded.color_type = png_get_color_type(png, info);
    for (png_uint_32 row = 0; row < decoded.height; ++row)
        for (std::size_t byte = 0; byte < png_get_rowbytes(png, info); byte += 2) {
            const png_bytep sample = png_get_rows(png, info)[row] + byte;
            decoded.samples.push_back(static_cast<std::uint16_t>(sample[0] << 8 | sample[1]));
        }
    EXPECT_EQ(rest, file.data() + file.size());
    png_destroy_read_struct(&png, &info, nullptr);
    return decoded;
}

TEST(TorchPng, IsASixteenBitRgbaPictureOfExactly45023Bytes) {
    const std::string file = torchPng();
    EXPECT_EQ(file.size(), 45023u);
    const DecodedPng decoded = decode(file);
    EXPECT_THAT(decoded.warnings, IsEmpty());
    EXPECT_EQ(decoded.bit_depth, 16);
    EXPECT_EQ(decoded.color_type, PNG_COLOR_TYPE_RGB_ALPHA);
    EXPECT_EQ(decoded.width, 64u);
    EXPECT_EQ(decoded.height, 138u);
}

TEST(TorchPng, UsesItsSixteenBitsAndFadesOut) {
    const std::vector<std::uint16_t> samples = decode(torchPng()).samples;
    ASSERT_EQ(samples.size(), 4u * 64 * 138);
    std::set<std::uint16_t> reds, alphas;
    for (std::size_t i = 0; i < samples.size(); i += 4) {
        reds.insert(samples[i]);
        alphas.insert(samples[i + 3]);
    }
    EXPECT_GT(reds.size(), 256u);
    EXPECT_GT(alphas.size(), 256u);
    EXPECT_EQ(samples[3], 0); // the corner is clear
}

/// An XPM image as its definition has it: a header, colours, rows of pixels.
struct ParsedXpm {
    std::string header;
    std::map<std::string, std::string> colors; ///< by code
    std::vector<std::string> rows;
};

template <std::size_t line_count>
ParsedXpm parse(const char* const (&lines)[line_count], std::size_t color_count) {
    ParsedXpm xpm{lines[0], {}, {}};
    for (std::size_t i = 1; i <= color_count; ++i) {
        const std::string line = lines[i];
        EXPECT_EQ(line.substr(2, 3), " c ") << line;
        EXPECT_TRUE(xpm.colors.emplace(line.substr(0, 2), line.substr(5)).second) << line << " stands twice";
    }
    xpm.rows.assign(lines + 1 + color_count, std::end(lines));
    return xpm;
}

/// Every row has its length, every colour is there once and is used, and nothing else is.
void expectWhole(const ParsedXpm& xpm, std::size_t width, std::size_t height) {
    ASSERT_EQ(xpm.rows.size(), height);
    std::set<std::string> used, different;
    for (const std::string& row : xpm.rows) {
        ASSERT_EQ(row.size(), 2 * width);
        for (std::size_t column = 0; column < width; ++column)
            used.insert(row.substr(2 * column, 2));
    }
    for (const auto& [code, color] : xpm.colors) {
        EXPECT_TRUE(used.contains(code)) << color << " is used nowhere";
        EXPECT_TRUE(different.insert(color).second) << color << " stands twice";
        EXPECT_TRUE(color == "None" || (color.size() == 7 && color[0] == '#')) << color;
    }
    EXPECT_EQ(used.size(), xpm.colors.size());
    EXPECT_EQ(xpm.colors.at("  "), "None");
}

TEST(TorchXpm, HasItsHeaderAndUsesItsColors) {
    const ParsedXpm xpm = parse(torch_xpm, 402);
    EXPECT_EQ(xpm.header, "32 86 402 2");
    expectWhole(xpm, 32, 86);
}

TEST(HeadlightXpm, HasItsHeaderAndUsesItsColors) {
    const ParsedXpm xpm = parse(headlight_xpm, 300);
    EXPECT_EQ(xpm.header, "32 32 300 2");
    expectWhole(xpm, 32, 32);
}

} // namespace
