#include "icons.hpp"

#include "png_file.hpp"
#include "xpm_file.hpp"

namespace artwork {

std::vector<std::uint8_t> torchPng() {
    return encodePng(drawTorch(64, 138), 45023);
}

std::string torchXpm() {
    return encodeXpm(drawTorch(32, 86), "torch_xpm", 402);
}

std::string headlightXpm() {
    return encodeXpm(drawHeadlight(32), "headlight_xpm", 300);
}

} // namespace artwork
