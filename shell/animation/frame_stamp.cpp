#include "shell/animation/frame_stamp.hpp"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <zlib.h>

namespace korl {

namespace {

constexpr std::string_view signature("\x89PNG\r\n\x1a\n", 8);
constexpr std::size_t number_size = 4;

std::uint32_t numberAt(std::string_view bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(place, number_size))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

} // namespace

std::string frameStamp(const std::filesystem::path& png_file) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(png_file, ignored))
        return {};
    std::ifstream stream(png_file, std::ios::binary);
    const std::string file{std::istreambuf_iterator<char>(stream), {}};
    std::string_view rest = file;
    if (!rest.starts_with(signature))
        return {};
    rest.remove_prefix(signature.size());
    const std::string stamp_start = frame_stamp_keyword + std::string(1, '\0');
    std::string stamp;
    // A chunk is the size of its content, its kind, the content, and the checksum of kind and content.
    while (rest.size() >= 3 * number_size) {
        const std::size_t size = numberAt(rest, 0);
        if (size > rest.size() - 3 * number_size)
            return {};
        const std::string_view kind = rest.substr(number_size, 4);
        const std::string_view content = rest.substr(2 * number_size, size);
        const auto* const checked = reinterpret_cast<const Bytef*>(kind.data());
        if (crc32(0, checked, static_cast<uInt>(kind.size() + size)) !=
            numberAt(rest, 2 * number_size + size))
            return {};
        if (kind == "IEND")
            return stamp;
        if (kind == "tEXt" && content.starts_with(stamp_start))
            stamp = content.substr(stamp_start.size());
        rest.remove_prefix(3 * number_size + size);
    }
    return {};
}

} // namespace korl
