#include "deflate.hpp"

#include <algorithm>

namespace artwork {

namespace {

/// Bits packed into bytes, from the lowest bit up.
class BitStream {
public:
    explicit BitStream(std::vector<std::uint8_t> start) : my_bytes(std::move(start)) {}

    /// A number, lowest bit first.
    void number(std::uint32_t value, int bits) {
        for (int bit = 0; bit < bits; ++bit)
            add((value >> bit) & 1);
    }

    /// A Huffman code, highest bit first.
    void code(std::uint32_t value, int bits) {
        for (int bit = bits - 1; bit >= 0; --bit)
            add((value >> bit) & 1);
    }

    std::vector<std::uint8_t> take() { return std::move(my_bytes); }

private:
    void add(std::uint32_t bit) {
        if (my_filled == 0)
            my_bytes.push_back(0);
        my_bytes.back() = static_cast<std::uint8_t>(my_bytes.back() | (bit << my_filled));
        my_filled = (my_filled + 1) % 8;
    }

    std::vector<std::uint8_t> my_bytes;
    int my_filled = 0; ///< bits in the last byte, 0 when it is full
};

/// A literal byte, the end of the block or the class of a length: the fixed code.
void symbol(BitStream& stream, std::uint32_t value) {
    if (value < 144)
        stream.code(0x30 + value, 8);
    else if (value < 256)
        stream.code(0x190 + value - 144, 9);
    else if (value < 280)
        stream.code(value - 256, 7);
    else
        stream.code(0xc0 + value - 280, 8);
}

/// Lengths and distances are told as a class and a number of extra bits. With n values per doubling the
/// classes follow from the highest bits of the value, counted from the smallest. @returns class, extra bits,
/// their value.
struct Class {
    std::uint32_t number;
    int extra_bits;
    std::uint32_t extra;
};

Class classOf(std::uint32_t value, int bits_per_doubling) {
    int extra_bits = 0;
    while ((value >> extra_bits) >= (2u << bits_per_doubling))
        ++extra_bits;
    const std::uint32_t high = value >> extra_bits;
    return {(static_cast<std::uint32_t>(extra_bits) << bits_per_doubling) + high, extra_bits,
            value - (high << extra_bits)};
}

constexpr std::size_t shortest = 3, longest = 258;

void repetition(BitStream& stream, std::size_t length, std::size_t distance) {
    if (length == longest) {
        symbol(stream, 285); // has a class of its own
    } else {
        const Class of_length = classOf(static_cast<std::uint32_t>(length - shortest), 2);
        symbol(stream, 257 + of_length.number);
        stream.number(of_length.extra, of_length.extra_bits);
    }
    const Class of_distance = classOf(static_cast<std::uint32_t>(distance - 1), 1);
    stream.code(of_distance.number, 5);
    stream.number(of_distance.extra, of_distance.extra_bits);
}

std::size_t lengthOfRepetition(const std::vector<std::uint8_t>& bytes, std::size_t at, std::size_t distance) {
    if (distance > at)
        return 0;
    std::size_t length = 0;
    while (length < longest && at + length < bytes.size() &&
           bytes[at + length] == bytes[at + length - distance])
        ++length;
    return length;
}

/// The checksum Adler-32, highest byte first.
void appendChecksum(std::vector<std::uint8_t>& stream, const std::vector<std::uint8_t>& bytes) {
    std::uint32_t sum = 1, sum_of_sums = 0;
    for (const std::uint8_t byte : bytes) {
        sum = (sum + byte) % 65521;
        sum_of_sums = (sum_of_sums + sum) % 65521;
    }
    for (const std::uint32_t half : {sum_of_sums, sum})
        stream.insert(stream.end(), {static_cast<std::uint8_t>(half >> 8), static_cast<std::uint8_t>(half)});
}

} // namespace

std::vector<std::uint8_t> deflate(const std::vector<std::uint8_t>& bytes,
                                  const std::vector<std::size_t>& distances) {
    BitStream stream({0x78, 0x01}); // deflate, window of 32 KiB, no effort made
    stream.number(1, 1);            // the last block
    stream.number(1, 2);            // with the fixed codes
    for (std::size_t at = 0; at < bytes.size();) {
        std::size_t best_length = 0, best_distance = 0;
        for (const std::size_t distance : distances)
            if (const std::size_t length = lengthOfRepetition(bytes, at, distance); length > best_length) {
                best_length = length;
                best_distance = distance;
            }
        if (best_length >= shortest) {
            repetition(stream, best_length, best_distance);
            at += best_length;
        } else {
            symbol(stream, bytes[at++]);
        }
    }
    symbol(stream, 256); // the end of the block
    std::vector<std::uint8_t> packed = stream.take();
    appendChecksum(packed, bytes);
    return packed;
}

} // namespace artwork
