// The committed icons are what the drawing gives, and other libraries read them as they were drawn.

#include "deflate.hpp"
#include "files.hpp"
#include "icons.hpp"
#include "png_file.hpp"
#include "tests/support/run_program.hpp"
#include "tests/support/temporary_folder.hpp"
#include "xpm_file.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <numeric>
#include <png.h>
#include <set>
#include <stdexcept>
#include <string_view>
#include <zlib.h>

namespace {

using artwork::Picture;
using artwork::readFile;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

// As the module has them.
#include "navigation/light/Headlight.xpm"
#include "navigation/light/Torch.xpm"

const std::filesystem::path module_folder = PROJECT_SOURCE_DIR "/navigation/light";

std::string textOf(const std::filesystem::path& file) {
    const Bytes bytes = readFile(file);
    return {bytes.begin(), bytes.end()};
}

/// A PNG file as libpng reads it. Where it can't, it ends the process.
struct DecodedPng {
    Picture picture;
    int bit_depth;
    int color_type;
    std::vector<std::string> warnings;
};

DecodedPng decode(const Bytes& file) {
    DecodedPng decoded{};
    const auto on_warning = [](png_structp png, png_const_charp message) {
        static_cast<DecodedPng*>(png_get_error_ptr(png))->warnings.emplace_back(message);
    };
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &decoded, nullptr, on_warning);
    png_infop info = png_create_info_struct(png);
    auto rest = file.data();
    png_set_read_fn(png, &rest, [](png_structp reader, png_bytep bytes, std::size_t count) {
        auto& from = *static_cast<const std::uint8_t**>(png_get_io_ptr(reader));
        std::memcpy(bytes, from, count);
        from += count;
    });
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    decoded.bit_depth = png_get_bit_depth(png, info);
    decoded.color_type = png_get_color_type(png, info);
    Picture& picture = decoded.picture;
    picture.width = static_cast<int>(png_get_image_width(png, info));
    picture.height = static_cast<int>(png_get_image_height(png, info));
    for (int row = 0; row < picture.height; ++row)
        for (std::size_t byte = 0; byte < png_get_rowbytes(png, info); byte += 2) {
            const png_bytep sample = png_get_rows(png, info)[row] + byte;
            picture.samples.push_back(static_cast<std::uint16_t>(sample[0] << 8 | sample[1]));
        }
    EXPECT_EQ(rest, file.data() + file.size());
    png_destroy_read_struct(&png, &info, nullptr);
    return decoded;
}

TEST(DrawnIcons, AreTheCommittedFilesByteForByte) {
    EXPECT_EQ(artwork::torchPng(), readFile(module_folder / "light/Torch.png"));
    EXPECT_EQ(artwork::torchXpm(), textOf(module_folder / "Torch.xpm"));
    EXPECT_EQ(artwork::headlightXpm(), textOf(module_folder / "Headlight.xpm"));
}

TEST(DrawnIcons, AreWrittenByTheProgram) {
    const korl::test::TemporaryFolder folder;
    const auto result = korl::test::runProgram(DRAW_ICONS, {folder.path().string()});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    for (const char* const name : {"light/Torch.png", "Torch.xpm", "Headlight.xpm"})
        EXPECT_EQ(readFile(folder / name), readFile(module_folder / name)) << name;
}

TEST(DrawnIcons, ProgramRefusesWhatItCannotDo) {
    EXPECT_EQ(korl::test::runProgram(DRAW_ICONS, {}).errors, "usage: draw_icons FOLDER\n");
    const korl::test::TemporaryFolder folder;
    const std::string file = folder.write("file", "").string();
    const auto result = korl::test::runProgram(DRAW_ICONS, {file});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors,
              "draw_icons: the file " + file +
                  "/light/Torch.png can't be written; see that its folder can be and that there "
                  "is room\n");
}

TEST(TorchPng, IsASixteenBitRgbaPictureOfExactly45023Bytes) {
    const Bytes file = readFile(module_folder / "light/Torch.png");
    EXPECT_EQ(file.size(), 45023u);
    // Signature; length and kind of the first chunk; width, height; depth, RGBA, deflate, filters, not
    // interlaced.
    const Bytes start{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n', 0,   0,  0, 13, 'I', 'H', 'D',
                      'R',  0,   0,   0,   64,   0,    0,    0,    138, 16, 6, 0,  0,   0};
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 29), start);
}

TEST(TorchPng, DecodesToThePictureThatWasDrawn) {
    const DecodedPng decoded = decode(readFile(module_folder / "light/Torch.png"));
    EXPECT_THAT(decoded.warnings, IsEmpty());
    EXPECT_EQ(decoded.bit_depth, 16);
    EXPECT_EQ(decoded.color_type, PNG_COLOR_TYPE_RGB_ALPHA);
    EXPECT_EQ(decoded.picture.width, 64);
    EXPECT_EQ(decoded.picture.height, 138);
    EXPECT_EQ(decoded.picture.samples, artwork::drawTorch(64, 138).samples);
}

TEST(TorchPng, UsesItsSixteenBitsAndFadesOut) {
    const Picture picture = artwork::drawTorch(64, 138);
    std::set<std::uint16_t> reds, alphas;
    for (std::size_t i = 0; i < picture.samples.size(); i += 4) {
        reds.insert(picture.samples[i]);
        alphas.insert(picture.samples[i + 3]);
    }
    EXPECT_GT(reds.size(), 256u);
    EXPECT_GT(alphas.size(), 256u);
    EXPECT_EQ(picture.samples[3], 0); // the corner is clear
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

/// The greatest difference between a channel of an opaque pixel and what was drawn there, of 255; and each
/// pixel is clear where less than half of it is covered.
int greatestDifference(const ParsedXpm& xpm, const Picture& drawn) {
    int greatest = 0;
    for (std::size_t i = 0; i < drawn.samples.size() / 4; ++i) {
        const auto width = static_cast<std::size_t>(drawn.width);
        const std::string color = xpm.colors.at(xpm.rows[i / width].substr(2 * (i % width), 2));
        EXPECT_EQ(color == "None", drawn.samples[4 * i + 3] < 32768);
        for (std::size_t channel = 0; color != "None" && channel < 3; ++channel) {
            const int value = std::stoi(color.substr(1 + 2 * channel, 2), nullptr, 16);
            greatest = std::max(greatest, std::abs(value - drawn.samples[4 * i + channel] / 257));
        }
    }
    return greatest;
}

TEST(TorchXpm, HasItsHeaderAndUsesItsColors) {
    const ParsedXpm xpm = parse(torch_xpm, 402);
    EXPECT_EQ(xpm.header, "32 86 402 2");
    expectWhole(xpm, 32, 86);
    EXPECT_LE(greatestDifference(xpm, artwork::drawTorch(32, 86)), 12);
}

TEST(HeadlightXpm, HasItsHeaderAndUsesItsColors) {
    const ParsedXpm xpm = parse(headlight_xpm, 300);
    EXPECT_EQ(xpm.header, "32 32 300 2");
    expectWhole(xpm, 32, 32);
    EXPECT_LE(greatestDifference(xpm, artwork::drawHeadlight(32)), 12);
}

TEST(Deflate, IsReadBackByZlib) {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0}); // every literal
    std::vector<std::size_t> distances;
    for (std::size_t distance = 1; distance <= 32768; distance += distance / 5 + 1)
        distances.push_back(distance);
    distances.push_back(32768);
    for (const std::size_t distance : distances)
        for (std::size_t length = 1; length <= 300; length += length < 250 ? 1 + length / 40 : 1) {
            for (std::size_t i = 0; i < length; ++i)
                bytes.push_back(bytes[bytes.size() - std::min(distance, bytes.size())]);
            bytes.push_back(static_cast<std::uint8_t>(length * 7 + distance));
        }
    const Bytes packed = artwork::deflate(bytes, distances);
    Bytes unpacked(bytes.size() + 1);
    uLongf unpacked_size = unpacked.size();
    ASSERT_EQ(uncompress(unpacked.data(), &unpacked_size, packed.data(), packed.size()), Z_OK);
    unpacked.resize(unpacked_size);
    EXPECT_EQ(unpacked, bytes);
    EXPECT_LT(packed.size(), bytes.size() / 10); // it does find the repetitions
}

TEST(Deflate, PacksNothing) {
    const Bytes packed = artwork::deflate({}, {1});
    Bytes unpacked(1);
    uLongf unpacked_size = unpacked.size();
    EXPECT_EQ(uncompress(unpacked.data(), &unpacked_size, packed.data(), packed.size()), Z_OK);
    EXPECT_EQ(unpacked_size, 0u);
}

/// The text of the error that something ends with.
std::string errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

TEST(EncodePng, HasExactlyTheSizeOrRefuses) {
    const Picture picture{2, 1, {1, 2, 3, 4, 5, 6, 7, 8}};
    for (const std::size_t size : {107u, 108u, 5000u})
        EXPECT_EQ(decode(artwork::encodePng(picture, size)).picture.samples, picture.samples);
    EXPECT_EQ(artwork::encodePng(picture, 5000).size(), 5000u);
    EXPECT_EQ(errorOf([&] { artwork::encodePng(picture, 100); }),
              "the picture takes 107 bytes, more than the 100 that its file is to have");
}

TEST(EncodeXpm, RefusesWhatCannotHaveTheColors) {
    const Picture clear_and_two{3, 1, {0, 0, 0, 0, 257, 514, 771, 65535, 0, 514, 771, 32768}};
    EXPECT_EQ(
        artwork::encodeXpm(clear_and_two, "image", 3),
        "/* XPM */\nstatic const char* const image[] = {\n\"3 1 3 2\",\n\"   c None\",\n\"AA c #000203\",\n"
        "\"AB c #010203\",\n\"  ABAA\"\n};\n");
    EXPECT_EQ(errorOf([&] { artwork::encodeXpm(clear_and_two, "image", 4); }),
              "the picture has 2 colours, fewer than the 3 that its file is to have");
    EXPECT_EQ(errorOf([] {
                  artwork::encodeXpm({1, 1, {0, 0, 0, 65535}}, "image", 2);
              }),
              "the picture has no clear pixel, so its file can't use the colour None");
}

TEST(Files, ThatCannotBeReadAreNamed) {
    EXPECT_EQ(errorOf([] { readFile("/no/such/file"); }),
              "the file /no/such/file can't be read; see that it exists");
}

} // namespace
