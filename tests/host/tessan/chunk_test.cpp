#include <tessan/chunk.hpp>

#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>

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
        {
            const TypedChunk<float> other(7);
            EXPECT_EQ(ChunkBase::TotalMemsize, before + 100 * sizeof(double) + 7 * sizeof(float));
        }
        chunk.reserve(200);
        EXPECT_EQ(chunk.size(), 100u);
        EXPECT_EQ(chunk.memsize(), 200 * sizeof(double));
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 200 * sizeof(double));
        chunk.resize(250);
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 250 * sizeof(double));
        chunk.resize(10); // keeps the memory
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 250 * sizeof(double));
    }
    EXPECT_EQ(ChunkBase::TotalMemsize, before);
}

TEST(Chunk, HoldsNothingUnlessTold) {
    const TypedChunk<double> chunk;
    EXPECT_EQ(chunk.size(), 0u);
    EXPECT_EQ(chunk.memsize(), 0u);
    const TypedChunk<double> zeros(2);
    EXPECT_EQ(zeros[0], 0);
    EXPECT_EQ(zeros[1], 0);
}

TEST(Chunk, HoldsItsValuesInOrder) {
    TypedChunk<int> chunk(3, 7);
    chunk[1] = 8;
    chunk[2] = 9;
    chunk.resize(5);
    const TypedChunk<int>& seen = chunk;
    const int expected[] = {7, 8, 9, 0, 0};
    ASSERT_EQ(seen.size(), std::size(expected));
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], expected[i]);
        EXPECT_EQ(seen.data()[i], expected[i]);
    }
    chunk.resize(2);
    EXPECT_EQ(chunk.size(), 2u);
    EXPECT_EQ(chunk[1], 8);
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
    EXPECT_EQ(TypedChunk<int>().type(), typeid(int));
}

} // namespace
