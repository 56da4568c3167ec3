#include "shell/image/png.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <fmt/core.h>
#include <png.h>
#include <zlib.h>

namespace korl {

namespace {

using Text = std::pair<std::string, std::string>;

/// A rendered picture comes out a tenth larger than at 6, in half the time.
constexpr int compression_level = 3;

constexpr std::string_view signature("\x89PNG\r\n\x1a\n", 8);
constexpr std::size_t number_size = 4;

/// The last chunk of every file: no content, its kind, its checksum.
constexpr std::array<std::uint8_t, 12> end_chunk{0, 0, 0, 0, 'I', 'E', 'N', 'D', 0xae, 0x42, 0x60, 0x82};

/// libpng's writing state. It reports errors with a long jump, which skips destructors: the jump starts and
/// ends in functions that have no local objects, while everything that owns memory lives in here.
class Writer {
public:
    Writer() {
        my_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning);
        my_info = my_png ? png_create_info_struct(my_png) : nullptr;
    }
    ~Writer() { png_destroy_write_struct(&my_png, &my_info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// @param rows the picture's rows from top to bottom.
    std::vector<std::uint8_t> write(const Image& image, std::vector<png_bytep>& rows,
                                    std::vector<png_text>& texts) {
        if (!my_info || !writeOrJump(image, rows.data(), texts.data(), static_cast<int>(texts.size())))
            throw Error(fmt::format("the picture can't be made a PNG file: {}", my_message.data()));
        return std::move(my_bytes);
    }

private:
    /// @returns false if libpng jumped out of it.
    bool writeOrJump(const Image& image, png_bytepp rows, png_textp texts, int text_count) {
        if (setjmp(png_jmpbuf(my_png)) != 0)
            return false;
        png_set_write_fn(my_png, this, onBytes, onFlush);
        png_set_compression_level(my_png, compression_level);
        png_set_filter(my_png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
        png_set_IHDR(my_png, my_info, static_cast<png_uint_32>(image.width),
                     static_cast<png_uint_32>(image.height), 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
        png_set_sRGB(my_png, my_info, PNG_sRGB_INTENT_PERCEPTUAL);
        png_set_text(my_png, my_info, texts, text_count);
        png_write_info(my_png, my_info);
        png_write_image(my_png, rows);
        png_write_end(my_png, my_info);
        return true;
    }

    static Writer& of(png_voidp self) { return *static_cast<Writer*>(self); }

    static void onBytes(png_structp png, png_bytep bytes, std::size_t count) {
        if (!of(png_get_io_ptr(png)).append(bytes, count))
            png_error(png, "there is not enough memory");
    }

    static void onFlush(png_structp) {}

    static void onError(png_structp png, png_const_charp message) {
        auto& kept = of(png_get_error_ptr(png)).my_message;
        std::snprintf(kept.data(), kept.size(), "%s", message);
        png_longjmp(png, 1);
    }

    static void onWarning(png_structp, png_const_charp) {}

    bool append(const std::uint8_t* bytes, std::size_t count) noexcept {
        try {
            my_bytes.insert(my_bytes.end(), bytes, bytes + count);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    png_structp my_png = nullptr;
    png_infop my_info = nullptr;
    std::vector<std::uint8_t> my_bytes;
    std::array<char, 200> my_message{"libpng can't be used"};
};

bool isKeyword(const std::string& keyword) {
    const auto isAllowed = [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return (code >= 32 && code <= 126) || code >= 161;
    };
    return !keyword.empty() && keyword.size() <= 79 &&
           std::all_of(keyword.begin(), keyword.end(), isAllowed) && keyword.front() != ' ' &&
           keyword.back() != ' ' && keyword.find("  ") == std::string::npos;
}

/// What libpng is told of a text; it looks at the text's characters, which must stay where they are.
png_text chunkOf(const Text& text) {
    const auto& [keyword, content] = text;
    if (!isKeyword(keyword))
        throw Error(fmt::format("the keyword of a text in a PNG file takes 1 to 79 Latin-1 characters, "
                                "and blanks only one by one between them; found \"{}\"",
                                keyword));
    if (content.find('\0') != std::string::npos)
        throw Error(fmt::format("the text \"{}\" can't be kept in a PNG file: it has a zero byte", keyword));
    const bool is_ascii = std::all_of(content.begin(), content.end(), [](char c) { return (c & 0x80) == 0; });
    png_text chunk{};
    chunk.compression = is_ascii ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE;
    chunk.key = const_cast<png_charp>(keyword.c_str());
    chunk.text = const_cast<png_charp>(content.c_str());
    (is_ascii ? chunk.text_length : chunk.itxt_length) = content.size();
    return chunk;
}

/// The simplified reading interface, which reports errors by its return values.
class Reader {
public:
    Reader() { my_image.version = PNG_IMAGE_VERSION; }
    ~Reader() { png_image_free(&my_image); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Image read(std::span<const std::uint8_t> png) {
        require(png_image_begin_read_from_memory(&my_image, png.data(), png.size()));
        // libpng doesn't look beyond the last row.
        if (std::search(png.begin(), png.end(), end_chunk.begin(), end_chunk.end()) == png.end())
            throw Error("the PNG file is damaged or truncated: it has no end chunk");
        my_image.format = PNG_FORMAT_RGBA;
        // Deflate shrinks at most 1032 : 1, and a pixel has at least one bit: what claims more is damaged,
        // and not worth the memory that it asks for.
        if (my_image.width / 8.0 * my_image.height > 1032.0 * static_cast<double>(png.size()))
            throw Error(fmt::format(
                "the PNG file is damaged or truncated: it has {} bytes, too few for {} x {} pixels",
                png.size(), my_image.width, my_image.height));
        Image image{static_cast<int>(my_image.width), static_cast<int>(my_image.height), {}};
        image.pixels.resize(std::size_t{4} * my_image.width * my_image.height);
        require(png_image_finish_read(&my_image, nullptr, image.pixels.data(), 0, nullptr));
        return image;
    }

private:
    void require(int success) const {
        if (success == 0)
            throw Error(fmt::format("the PNG file is damaged or truncated: {}", my_image.message));
    }

    png_image my_image{};
};

std::uint32_t numberAt(std::string_view bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(place, number_size))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

} // namespace

std::vector<std::uint8_t> encodePng(const Image& image, std::span<const Text> text) {
    validate(image);
    std::vector<png_text> texts;
    for (const Text& entry : text)
        texts.push_back(chunkOf(entry));
    std::vector<png_bytep> rows;
    const std::size_t row_size = image.pixels.size() / static_cast<std::size_t>(image.height);
    for (std::size_t row = 0; row < image.pixels.size(); row += row_size)
        rows.push_back(const_cast<png_bytep>(image.pixels.data() + row));
    return Writer().write(image, rows, texts);
}

void requirePngName(const std::filesystem::path& file) {
    if (const std::string suffix = suffixOf(file); !suffix.empty() && suffix != ".png")
        throw InvalidValue(fmt::format("cannot write {}: a picture is written as PNG alone, to a name that "
                                       "ends in .png or has no suffix, found {}",
                                       printable(file.string()), inQuotes(file.extension().string())));
}

std::string textOfPng(std::span<const std::uint8_t> png, std::string_view keyword) {
    std::string_view rest(reinterpret_cast<const char*>(png.data()), png.size());
    if (!rest.starts_with(signature))
        return {};
    rest.remove_prefix(signature.size());
    const std::string start = std::string(keyword) + '\0';
    std::string text;
    // A chunk is the size of its content, its kind, the content, and the checksum of kind and content.
    while (rest.size() >= 3 * number_size) {
        const std::size_t size = numberAt(rest, 0);
        if (size > rest.size() - 3 * number_size)
            return {};
        const std::string_view kind = rest.substr(number_size, 4);
        const std::string_view content = rest.substr(2 * number_size, size);
        const auto* const checked = reinterpret_cast<const Bytef*>(kind.data());
        if (crc32_z(0, checked, kind.size() + size) != numberAt(rest, 2 * number_size + size))
            return {};
        if (kind == "IEND")
            return text;
        if (kind == "tEXt" && content.starts_with(start))
            text = content.substr(start.size());
        rest.remove_prefix(3 * number_size + size);
    }
    return {};
}

Image decodePng(std::span<const std::uint8_t> png) {
    return Reader().read(png);
}

} // namespace korl
