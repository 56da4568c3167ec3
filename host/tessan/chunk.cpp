#include <tessan/chunk.hpp>

namespace Tessan {

std::atomic<std::size_t> ChunkBase::TotalMemsize{0};

ChunkBase::~ChunkBase() {
    count(0);
}

void ChunkBase::count(std::size_t bytes) noexcept {
    // Unsigned arithmetic wraps, so adding the difference also serves a chunk that has shrunk.
    TotalMemsize.fetch_add(bytes - my_memsize, std::memory_order_relaxed);
    my_memsize = bytes;
}

} // namespace Tessan
