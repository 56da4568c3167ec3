#include "shell/image/png.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <zlib.h>

namespace korl {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Texts = std::vector<std::pair<std::string, std::string>>;

Image pattern(int width, int height) {
    Image image{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (const int channel : {x * 7 + y, x * y, x ^ (3 * y), 255 - x - 2 * y})
                image.pixels.push_back(static_cast<std::uint8_t>(channel));
    return image;
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | bytes.at(place + i);
    return number;
}

void append(Bytes& bytes, std::uint32_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

struct Chunk {
    std::string kind, content;
};

/// The file's chunks, read by their own rules: length, kind, content, checksum of kind and content.
std::vector<Chunk> chunksOf(const Bytes& png) {
    const Bytes signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    EXPECT_TRUE(std::equal(signature.begin(), signature.end(), png.begin()));
    std::vector<Chunk> chunks;
    for (std::size_t place = signature.size(); place < png.size();) {
        const std::size_t length = numberAt(png, place);
        const auto* const start = reinterpret_cast<const char*>(png.data()) + place + 4;
        chunks.push_back({std::string(start, 4), std::string(start + 4, length)});
        EXPECT_EQ(numberAt(png, place + 8 + length),
                  crc32(0, png.data() + place + 4, static_cast<uInt>(length + 4)));
        place += 12 + length;
    }
    return chunks;
}

/// A PNG file of chunks with right checksums.
Bytes fileOf(const std::vector<Chunk>& chunks) {
    Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    for (const Chunk& chunk : chunks) {
        const std::string body = chunk.kind + chunk.content;
        append(png, static_cast<std::uint32_t>(chunk.content.size()));
        png.insert(png.end(), body.begin(), body.end());
        append(png, static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(body.data()),
                                                     static_cast<uInt>(body.size()))));
    }
    return png;
}

std::string compressed(const std::string& bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::string result(size, '\0');
    EXPECT_EQ(compress(reinterpret_cast<Bytef*>(result.data()), &size,
                       reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size())),
              Z_OK);
    result.resize(size);
    return result;
}

std::string head(const std::string& width, const std::string& height, char depth, char kind) {
    return width + height + depth + kind + std::string(3, '\0');
}

std::string number(unsigned char value) {
    return std::string(3, '\0') + static_cast<char>(value);
}

std::string decodingError(const Bytes& png) {
    return test::errorOf([&] { decodePng(png); });
}

std::string encodingError(const Image& image, const Texts& texts = {}) {
    return test::errorOf([&] { encodePng(image, texts); });
}

TEST(PngTest, WhatWasEncodedIsDecodedToTheByte) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 7}, {640, 480}, {333, 2}}) {
        const Image image = pattern(width, height);
        const Image read = decodePng(encodePng(image));
        EXPECT_EQ(read.width, width);
        EXPECT_EQ(read.height, height);
        EXPECT_EQ(read.pixels, image.pixels) << width << " x " << height;
    }
}

TEST(PngTest, TransparentPixelsKeepTheirColor) {
    const Image image{2, 1, {200, 100, 50, 0, 10, 20, 30, 1}};
    EXPECT_EQ(decodePng(encodePng(image)).pixels, image.pixels);
}

TEST(PngTest, TheFileSaysWhatItHolds) {
    const Image image{2, 3, Bytes(24, 77)};
    const std::vector<Chunk> chunks = chunksOf(encodePng(image));
    ASSERT_EQ(chunks.size(), 4u);
    EXPECT_EQ(chunks[0].kind, "IHDR");
    EXPECT_EQ(chunks[0].content, head(number(2), number(3), 8, 6))
        << "eight bits, red, green, blue and alpha";
    EXPECT_EQ(chunks[1].kind, "sRGB");
    EXPECT_EQ(chunks[2].kind, "IDAT");
    EXPECT_EQ(chunks[3].kind, "IEND");
}

TEST(PngTest, TheSamePictureGivesTheSameBytes) {
    EXPECT_EQ(encodePng(pattern(64, 48)), encodePng(pattern(64, 48)));
}

TEST(PngTest, TextsAreKeptInTheirOrder) {
    const Texts texts{{"Software", "korl"},
                      {"Title", ""},
                      {"Comment", "Abendlicht \xc3\xbc"
                                  "ber\nHügeln"}};
    std::vector<Chunk> kept;
    const Bytes png = encodePng(pattern(4, 4), texts);
    for (const Chunk& chunk : chunksOf(png))
        if (chunk.kind == "tEXt" || chunk.kind == "iTXt")
            kept.push_back(chunk);
    ASSERT_EQ(kept.size(), 3u);
    using namespace std::string_literals;
    EXPECT_EQ(kept[0].kind + kept[0].content, "tEXtSoftware\0korl"s);
    EXPECT_EQ(kept[1].kind + kept[1].content, "tEXtTitle\0"s);
    EXPECT_EQ(kept[2].kind + kept[2].content, "iTXtComment\0\0\0\0\0"s + texts[2].second);
    EXPECT_EQ(decodePng(png).pixels, pattern(4, 4).pixels);
}

TEST(PngTest, ATextIsFoundByItsKeyword) {
    const auto textOf = [](const Texts& texts) { return textOfPng(encodePng(pattern(5, 4), texts), "Key"); };
    EXPECT_EQ(textOf({{"Comment", "6 h"}, {"Key", "0123"}, {"Keys", "x"}}), "0123");
    EXPECT_EQ(textOf({{"Key", "1"}, {"Key", "2"}}), "2");
    EXPECT_EQ(textOf({{"Comment", "Key"}}), "");
    EXPECT_EQ(textOf({}), "");
    EXPECT_EQ(textOfPng({}, "Key"), "");
    const std::string other = "Key";
    EXPECT_EQ(textOfPng(Bytes(other.begin(), other.end()), "Key"), "");
}

TEST(PngTest, AFileThatIsNotWholeHasNoText) {
    const Bytes whole = encodePng(pattern(5, 4), Texts{{"Key", "0123"}});
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(textOfPng(std::span(whole).first(size), "Key"), "") << size;
    for (std::size_t damaged = 0; damaged < whole.size(); ++damaged) {
        Bytes bytes = whole;
        bytes[damaged] ^= 4;
        EXPECT_EQ(textOfPng(bytes, "Key"), "") << damaged;
    }
}

TEST(PngTest, WhatPngCannotHoldIsRefused) {
    const Image image = pattern(2, 2);
    const std::string takes =
        "the keyword of a text in a PNG file takes 1 to 79 Latin-1 characters, and blanks only one "
        "by one between them; found \"";
    for (const std::string& keyword : {std::string(), std::string(80, 'k'), std::string(" a"),
                                       std::string("a "), std::string("a  b"), std::string("a\nb")})
        EXPECT_EQ(encodingError(image, {{"Title", "x"}, {keyword, "text"}}), takes + keyword + '"');
    EXPECT_NE(encodingError(image, {{std::string("a\0b", 3), "text"}}), "no error");
    EXPECT_EQ(encodingError(image, {{std::string(79, 'k'), "text"}, {"a b", "text"}}), "no error");
    EXPECT_EQ(encodingError(image, {{"Title", std::string("a\0b", 3)}}),
              "the text \"Title\" can't be kept in a PNG file: it has a zero byte");
    EXPECT_EQ(encodingError({2, 2, Bytes(15)}),
              "a picture of 2 x 2 pixels must have 16 bytes, but this one has 15");
    EXPECT_EQ(encodingError({0, 0, {}}),
              "a picture of 0 x 0 pixels has no content; its width and height must be 1 or more");
    EXPECT_EQ(encodingError({1'000'001, 1, Bytes(4'000'004)}),
              "the picture can't be made a PNG file: Invalid IHDR data");
}

TEST(PngTest, OtherKindsOfPngAreReadToo) {
    // Two pixels of eight bits of grey, and two of a palette with transparency, after the byte of no filter.
    const Bytes gray = fileOf({{"IHDR", head(number(2), number(1), 8, 0)},
                               {"IDAT", compressed(std::string("\0\x10\xf0", 3))},
                               {"IEND", ""}});
    EXPECT_EQ(decodePng(gray).pixels, (Bytes{0x10, 0x10, 0x10, 255, 0xf0, 0xf0, 0xf0, 255}));
    const Bytes palette = fileOf({{"IHDR", head(number(2), number(1), 8, 3)},
                                  {"PLTE", std::string("\1\2\3\4\5\6")},
                                  {"tRNS", std::string("\x80")},
                                  {"IDAT", compressed(std::string("\0\1\0", 3))},
                                  {"IEND", ""}});
    EXPECT_EQ(decodePng(palette).pixels, (Bytes{4, 5, 6, 255, 1, 2, 3, 0x80}));
}

TEST(PngTest, WhatIsNoPngIsRefused) {
    EXPECT_EQ(decodingError({}).rfind("the PNG file is damaged or truncated: ", 0), 0u);
    for (const std::string text : {"", "P6 1 1 255 abc", "GIF89a..........................................."})
        EXPECT_NE(decodingError(Bytes(text.begin(), text.end())), "no error");
}

TEST(PngTest, EveryTruncationIsRefused) {
    const Bytes png = encodePng(pattern(24, 16), Texts{{"Title", "cut"}});
    for (std::size_t size = 0; size < png.size(); ++size)
        EXPECT_EQ(decodingError(Bytes(png.begin(), png.begin() + static_cast<std::ptrdiff_t>(size)))
                      .rfind("the PNG file is damaged or truncated: ", 0),
                  0u)
            << size << " of " << png.size();
}

TEST(PngTest, EveryDamagedByteOfThePictureIsSeen) {
    const Image image = pattern(24, 16);
    const Bytes png = encodePng(image);
    const std::string kind = "IDAT";
    const auto content = std::search(png.begin(), png.end(), kind.begin(), kind.end()) + 4;
    for (auto place = content; place < png.end() - 12; ++place) {
        Bytes damaged = png;
        damaged[static_cast<std::size_t>(place - png.begin())] ^= 0x55;
        EXPECT_NE(decodingError(damaged), "no error") << place - png.begin();
    }
}

TEST(PngTest, ASizeThatTheFileCannotHoldTakesNoMemory) {
    const Bytes png =
        fileOf({{"IHDR", head(std::string("\0\x0f\x42\x40", 4), std::string("\0\x0f\x42\x40", 4), 8, 6)},
                {"IDAT", compressed(std::string("\0\0\0", 3))},
                {"IEND", ""}});
    EXPECT_EQ(decodingError(png), "the PNG file is damaged or truncated: it has " +
                                      std::to_string(png.size()) +
                                      " bytes, too few for 1000000 x 1000000 pixels");
}

} // namespace
} // namespace korl
