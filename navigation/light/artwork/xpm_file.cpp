#include "xpm_file.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace artwork {

namespace {

using Rgb = std::array<int, 3>; ///< 0 to 255 each

/// Pixels that are to share one colour. Boxes are cut apart between two values of a channel and never
/// overlap, so the averages of two boxes always differ.
class Box {
public:
    explicit Box(std::vector<Rgb> pixels) : my_pixels(std::move(pixels)) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            std::int64_t sum = 0, squares = 0;
            for (const Rgb& pixel : my_pixels) {
                sum += pixel[channel];
                squares += std::int64_t{pixel[channel]} * pixel[channel];
            }
            const auto count = static_cast<std::int64_t>(my_pixels.size());
            my_average[channel] = static_cast<int>((sum + count / 2) / count);
            if (const std::int64_t channel_error = squares - sum * sum / count; channel_error > my_error) {
                my_error = channel_error;
                my_worst_channel = channel;
                my_cut = static_cast<int>(sum / count);
            }
        }
    }

    /// How much is lost where one colour stands for all: squared differences, in the channel where it is
    /// most. 0 only where all pixels are the same.
    std::int64_t error() const { return my_error; }

    const Rgb& average() const { return my_average; }

    const std::vector<Rgb>& pixels() const { return my_pixels; }

    /// Keeps what is not above the average of the worst channel. @returns the rest, which isn't empty if
    /// there was an error.
    Box cut() {
        const auto rest = std::stable_partition(my_pixels.begin(), my_pixels.end(), [this](const Rgb& pixel) {
            return pixel[my_worst_channel] <= my_cut;
        });
        Box other(std::vector<Rgb>(rest, my_pixels.end()));
        *this = Box(std::vector<Rgb>(my_pixels.begin(), rest));
        return other;
    }

private:
    std::vector<Rgb> my_pixels;
    Rgb my_average{};
    std::int64_t my_error = 0;
    std::size_t my_worst_channel = 0;
    int my_cut = 0; ///< the average of the worst channel, rounded down
};

/// Divides the pixels into exactly `count` boxes, always where most is lost.
std::vector<Box> divide(std::vector<Rgb> pixels, std::size_t count) {
    std::vector<Box> boxes;
    if (!pixels.empty())
        boxes.emplace_back(std::move(pixels));
    while (boxes.size() < count) {
        const auto worst = std::max_element(boxes.begin(), boxes.end(),
                                            [](const Box& a, const Box& b) { return a.error() < b.error(); });
        if (worst == boxes.end() || worst->error() == 0)
            throw std::length_error("the picture has " + std::to_string(boxes.size()) +
                                    " colours, fewer than the " + std::to_string(count) +
                                    " that its file is to have");
        Box other = worst->cut();
        boxes.push_back(std::move(other));
    }
    return boxes;
}

bool isOpaque(const std::uint16_t* pixel) {
    return pixel[3] >= 0x8000;
}

Rgb eightBits(const std::uint16_t* pixel) {
    return {(pixel[0] + 128) / 257, (pixel[1] + 128) / 257, (pixel[2] + 128) / 257};
}

/// The two characters that stand for a colour; two blanks are left for "None".
std::string code(std::size_t index) {
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    return {letters[index / letters.size()], letters[index % letters.size()]};
}

std::string hexadecimal(const Rgb& color) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "#";
    for (const int value : color) {
        text += digits[static_cast<std::size_t>(value / 16)];
        text += digits[static_cast<std::size_t>(value % 16)];
    }
    return text;
}

} // namespace

std::string encodeXpm(const Picture& picture, const std::string& name, std::size_t colors) {
    std::vector<Rgb> opaque_pixels;
    for (std::size_t i = 0; i < picture.samples.size(); i += 4)
        if (isOpaque(&picture.samples[i]))
            opaque_pixels.push_back(eightBits(&picture.samples[i]));
    if (opaque_pixels.size() == picture.samples.size() / 4)
        throw std::length_error("the picture has no clear pixel, so its file can't use the colour None");
    const std::vector<Box> boxes = divide(opaque_pixels, colors - 1);

    std::string file = "/* XPM */\nstatic const char* const " + name + "[] = {\n";
    file += "\"" + std::to_string(picture.width) + " " + std::to_string(picture.height) + " " +
            std::to_string(colors) + " 2\",\n\"   c None\"";
    std::map<Rgb, std::string> codes;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        file += ",\n\"" + code(i) + " c " + hexadecimal(boxes[i].average()) + "\"";
        for (const Rgb& pixel : boxes[i].pixels())
            codes[pixel] = code(i);
    }
    for (std::size_t i = 0; i < picture.samples.size(); i += 4) {
        if (i % (4 * static_cast<std::size_t>(picture.width)) == 0)
            file += i == 0 ? ",\n\"" : "\",\n\"";
        file += isOpaque(&picture.samples[i]) ? codes.at(eightBits(&picture.samples[i])) : "  ";
    }
    return file + "\"\n};\n";
}

} // namespace artwork
