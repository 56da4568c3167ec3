#include <tessan/chunk.hpp>

#include <gmock/gmock.h>
#include <limits>
#include <stdexcept>

namespace {

using Tessan::ChunkBase;
using Tessan::TypedChunk;

constexpr std::size_t too_many = std::numeric_limits<std::size_t>::max() / 2;

template <class Action>
std::string lengthErrorOf(Action action) {
    try {
        action();
    } catch (const std::length_error& error) {
        return error.what();
    }
    return "no length error";
}

TEST(Chunk, BytesAreCountedWhileItLives) {
    const std::size_t before = ChunkBase::TotalMemsize;
    {
        TypedChunk<double> chunk(100, 1.5);
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 100 * sizeof(double));
        EXPECT_EQ(chunk.memsize(), 100 * sizeof(double));
        chunk.reserve(200);
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 200 * sizeof(double));
        chunk.resize(150);
        EXPECT_EQ(chunk.size(), 150u);
        EXPECT_EQ(chunk[99], 1.5);
        EXPECT_EQ(chunk[149], 0.0);
    }
    EXPECT_EQ(ChunkBase::TotalMemsize, before);
}

TEST(Chunk, ConstructionBeyondTheLimitThrows) {
    const std::size_t before = ChunkBase::TotalMemsize;
    EXPECT_EQ(lengthErrorOf([] { const TypedChunk<double> chunk(too_many); }),
              "cannot create std::vector larger than max_size()");
    EXPECT_EQ(ChunkBase::TotalMemsize, before);
}

TEST(Chunk, GrowthBeyondTheLimitThrowsAndChangesNothing) {
    TypedChunk<double> chunk(3, 7);
    const std::size_t before = ChunkBase::TotalMemsize;
    EXPECT_EQ(lengthErrorOf([&] { chunk.reserve(too_many); }), "vector::reserve");
    EXPECT_EQ(lengthErrorOf([&] { chunk.resize(too_many); }), "vector::reserve");
    EXPECT_EQ(chunk.size(), 3u);
    EXPECT_EQ(chunk[2], 7);
    EXPECT_EQ(ChunkBase::TotalMemsize, before);
}

TEST(TypedChunk, KnowsTheTypeOfItsValues) {
    const TypedChunk<double> chunk(1);
    EXPECT_EQ(chunk.type(), typeid(double));
    EXPECT_EQ(chunk.typeName(), "double");
}

} // namespace
