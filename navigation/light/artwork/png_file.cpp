#include "png_file.hpp"

#include "big_endian.hpp"
#include "deflate.hpp"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

namespace artwork {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t pixel_size = 8;   ///< bytes
constexpr std::size_t chunk_frame = 12; ///< bytes of a chunk around its content: length, kind, checksum

/// The checksum of a chunk: CRC-32 with the polynomial of ISO 3309, over its kind and content.
std::uint32_t checksum(const std::uint8_t* bytes, std::size_t count) {
    std::uint32_t remainder = 0xffffffff;
    for (std::size_t i = 0; i < count; ++i) {
        remainder ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder >> 1) ^ ((remainder & 1) != 0 ? 0xedb88320u : 0);
    }
    return ~remainder;
}

void appendChunk(Bytes& file, std::string_view kind, const Bytes& content) {
    appendNumber<4>(file, content.size());
    const std::size_t start = file.size();
    file.insert(file.end(), kind.begin(), kind.end());
    file.insert(file.end(), content.begin(), content.end());
    appendNumber<4>(file, checksum(file.data() + start, file.size() - start));
}

Bytes header(const Picture& picture) {
    Bytes content;
    appendNumber<4>(content, static_cast<std::uint64_t>(picture.width));
    appendNumber<4>(content, static_cast<std::uint64_t>(picture.height));
    // 16 bits a channel, RGBA, and the only compression, filtering and order of rows there is for this.
    content.insert(content.end(), {16, 6, 0, 0, 0});
    return content;
}

/// Each byte less the one of the pixel before it (filter 1, "Sub"): even areas become zeros, which pack well.
Bytes filteredRows(const Picture& picture) {
    const std::size_t row_samples = picture.samples.size() / static_cast<std::size_t>(picture.height);
    Bytes rows;
    for (std::size_t first = 0; first < picture.samples.size(); first += row_samples) {
        Bytes row(pixel_size, 0); // as if black and transparent came before
        for (std::size_t i = first; i < first + row_samples; ++i)
            appendNumber<2>(row, picture.samples[i]);
        rows.push_back(1);
        for (std::size_t i = pixel_size; i < row.size(); ++i)
            rows.push_back(static_cast<std::uint8_t>(row[i] - row[i - pixel_size]));
    }
    return rows;
}

} // namespace

Bytes encodePng(const Picture& picture, std::size_t size) {
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    appendChunk(file, "IHDR", header(picture));
    appendChunk(file, "sRGB", {0}); // perceptual
    const std::size_t row_size = 1 + pixel_size * static_cast<std::size_t>(picture.width);
    appendChunk(file, "IDAT", deflate(filteredRows(picture), {1, pixel_size, row_size}));
    const std::size_t taken = file.size() + 2 * chunk_frame;
    if (taken > size)
        throw std::length_error("the picture takes " + std::to_string(taken) + " bytes, more than the " +
                                std::to_string(size) + " that its file is to have");
    appendChunk(file, "fiLl", Bytes(size - taken, 0)); // ancillary, private, safe to copy
    appendChunk(file, "IEND", {});
    return file;
}

} // namespace artwork
