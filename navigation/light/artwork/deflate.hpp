#pragma once

#include <cstdint>
#include <vector>

namespace artwork {

/// Packs bytes into a zlib stream (RFC 1950) of one deflate block with the fixed codes (RFC 1951, 3.2.6). A
/// repetition is looked for at the given distances only, each 1 to 32768 bytes back. A library's compressor
/// may pack better, but differently from one version to the next; this gives the same bytes for ever.
std::vector<std::uint8_t> deflate(const std::vector<std::uint8_t>& bytes,
                                  const std::vector<std::size_t>& distances);

} // namespace artwork
