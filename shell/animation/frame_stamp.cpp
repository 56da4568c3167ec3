#include "shell/animation/frame_stamp.hpp"

#include "shell/image/png.hpp"
#include "shell/scene/scene.hpp"

#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>
#include <zlib.h>

namespace korl {

namespace {

/// The checksum of the bytes that `before` is the checksum of and of these behind them.
template <class Entry>
std::uint32_t checksum(std::uint32_t before, std::span<const Entry> list) noexcept {
    const auto bytes = std::as_bytes(list);
    if (bytes.empty()) // which may lie nowhere; zlib would start anew
        return before;
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

} // namespace

std::string frameStamp(const std::filesystem::path& png_file) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(png_file, ignored))
        return {};
    std::ifstream stream(png_file, std::ios::binary);
    const std::vector<std::uint8_t> png{std::istreambuf_iterator<char>(stream), {}};
    return textOfPng(png, frame_stamp_keyword);
}

std::uint32_t checksum(std::string_view bytes) noexcept {
    return checksum(0, std::span(bytes));
}

std::uint32_t checksum(const Scene& scene, std::string_view text) noexcept {
    std::uint32_t sum = checksum(text);
    for (const auto& mesh : scene.meshes())
        if (mesh->source) {
            for (const auto* const list : {&mesh->positions, &mesh->normals, &mesh->colors})
                sum = checksum(sum, std::span(*list));
            sum = checksum(sum, std::span(mesh->triangles));
        }
    return sum;
}

} // namespace korl
