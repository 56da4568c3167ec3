#pragma once

#include <tessan/export.hpp>
#include <tessan/typename.hpp>

#include <atomic>
#include <cstddef>
#include <string>
#include <typeinfo>
#include <vector>

namespace Tessan {

/// An array of values whose bytes are counted with those of all other arrays in the process.
class TESSAN_EXPORT ChunkBase {
public:
    /// The bytes that all living chunks hold for their values, reserved capacity included.
    static std::atomic<std::size_t> TotalMemsize;

    ChunkBase() = default;
    ChunkBase(const ChunkBase&) = delete;
    ChunkBase& operator=(const ChunkBase&) = delete;
    virtual ~ChunkBase();

    /// The bytes that this chunk holds for its values, reserved capacity included.
    std::size_t memsize() const noexcept { return my_memsize; }

    /// The number of values.
    virtual std::size_t size() const noexcept = 0;

protected:
    /// Says how many bytes the chunk holds now; `TotalMemsize` follows.
    void count(std::size_t bytes) noexcept;

private:
    std::size_t my_memsize = 0;
};

/// An array of values of type `T`.
///
/// Growing it beyond what a vector can hold throws std::length_error: "cannot create std::vector larger than
/// max_size()" from the constructor, "vector::reserve" from `reserve` and `resize`; the chunk stays as it
/// was.
template <class T>
class Chunk : public ChunkBase {
public:
    explicit Chunk(std::size_t size = 0, const T& value = T()) : my_values(size, value) { recount(); }

    std::size_t size() const noexcept override { return my_values.size(); }
    T& operator[](std::size_t index) noexcept { return my_values[index]; }
    const T& operator[](std::size_t index) const noexcept { return my_values[index]; }
    const T* data() const noexcept { return my_values.data(); }

    void reserve(std::size_t size) {
        my_values.reserve(size);
        recount();
    }

    /// Grows or shrinks to `size` values; new ones are value-initialised.
    void resize(std::size_t size) {
        reserve(size);
        my_values.resize(size);
    }

private:
    void recount() noexcept { count(my_values.capacity() * sizeof(T)); }

    std::vector<T> my_values;
};

/// A chunk that can tell the type of its values.
template <class T>
class TypedChunk : public Chunk<T> {
public:
    using Chunk<T>::Chunk;

    const std::type_info& type() const noexcept { return typeid(T); }
    std::string typeName() const { return Typename(typeid(T)); }
};

} // namespace Tessan
