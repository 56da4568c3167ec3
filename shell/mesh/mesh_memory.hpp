#pragma once

#include "shell/base/descriptor.hpp"
#include "shell/mesh/mesh.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korl {

/// A file of meshes that lies in memory alone and goes from process to process as a descriptor.
class MemoryFile {
public:
    /// An empty one. Throws Error where the system has no more.
    MemoryFile();
    explicit MemoryFile(int descriptor) noexcept : my_descriptor(descriptor) {}

    int descriptor() const noexcept { return my_descriptor.get(); }

    /// Nobody can change it from then on. Throws Error where that cannot be.
    void seal() const;
    bool isSealed() const noexcept;

private:
    Descriptor my_descriptor;
};

/// Writes meshes, and what belongs to them, for another process.
///
/// The file begins with the eight bytes "korlmesh". A number takes eight bytes. A text is the number of its
/// bytes, then these. A mesh is its name, then four lists: positions, normals and colours, three floats each,
/// and triangles, indices of four bytes; a list is the number of its entries, then these. All of it is in the
/// machine's own byte order, and nothing stands between two things.
class MeshWriter {
public:
    /// @param file an empty one, which must outlive this. Like all that follows, throws Error where there is
    /// no space left.
    explicit MeshWriter(const MemoryFile& file);

    void put(std::uint64_t number);
    void put(std::string_view text);
    void put(const Mesh& mesh);

private:
    void putBytes(const void* bytes, std::size_t size);
    template <class Entry>
    void putList(const std::vector<Entry>& list);

    const MemoryFile& my_file;
};

/// Reads, in the order of writing, what a MeshWriter has written. Each read throws Error where the file has
/// less than it says.
class MeshReader {
public:
    /// Maps the file. Throws Error for one that is not sealed: it could change while it is read.
    explicit MeshReader(const MemoryFile& file);

    std::uint64_t number();
    std::string text();
    Mesh mesh(); ///< a valid one

private:
    /// The bytes of a file, where this process can read them.
    class Mapping {
    public:
        explicit Mapping(const MemoryFile& file);
        ~Mapping();
        Mapping(const Mapping&) = delete;
        Mapping& operator=(const Mapping&) = delete;

        std::span<const std::byte> bytes() const { return my_bytes; }

    private:
        std::span<const std::byte> my_bytes;
    };

    std::span<const std::byte> take(std::uint64_t count, std::size_t entry_size);
    template <class Entry>
    std::vector<Entry> list();

    Mapping my_mapping;
    std::span<const std::byte> my_rest; ///< what was not read yet
};

} // namespace korl
