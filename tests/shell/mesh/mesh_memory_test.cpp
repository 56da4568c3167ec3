#include "shell/mesh/mesh_memory.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace korl {
namespace {

using korl::test::errorOf;

Mesh triangle() {
    Mesh mesh;
    mesh.name = "sail";
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}};
    mesh.normals = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
    mesh.colors = {{0.25f, 0.5f, 0.75f}, {0, 0, 0}, {1, 1, 1}};
    mesh.triangles = {0, 2, 1};
    return mesh;
}

std::string bytesOf(const MemoryFile& file) {
    std::string bytes(static_cast<std::size_t>(::lseek(file.descriptor(), 0, SEEK_END)), '\0');
    EXPECT_EQ(::pread(file.descriptor(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    return bytes;
}

/// A file of these bytes, sealed.
MemoryFile fileOf(const std::string& bytes) {
    MemoryFile file;
    EXPECT_EQ(::write(file.descriptor(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    file.seal();
    return file;
}

std::string errorOfMesh(const std::string& bytes) {
    return errorOf([&] {
        const MemoryFile file = fileOf(bytes);
        MeshReader(file).mesh();
    });
}

TEST(MeshMemoryTest, WhatIsWrittenIsReadInTheSameOrder) {
    const MemoryFile file;
    MeshWriter writer(file);
    writer.put(std::uint64_t{1} << 40);
    writer.put(std::string_view("two\0words", 9));
    writer.put(triangle());
    writer.put(Mesh());
    file.seal();

    MeshReader reader(file);
    EXPECT_EQ(reader.number(), std::uint64_t{1} << 40);
    EXPECT_EQ(reader.text(), std::string("two\0words", 9));
    const Mesh mesh = reader.mesh();
    EXPECT_EQ(mesh.name, "sail");
    EXPECT_EQ(mesh.positions, triangle().positions);
    EXPECT_EQ(mesh.normals, triangle().normals);
    EXPECT_EQ(mesh.colors, triangle().colors);
    EXPECT_EQ(mesh.triangles, triangle().triangles);
    EXPECT_TRUE(reader.mesh().positions.empty());
    EXPECT_EQ(errorOf([&] { reader.number(); }), "a mesh that came from another process is not whole");
}

TEST(MeshMemoryTest, WhatIsSealedCannotChange) {
    const MemoryFile file = fileOf("korlmesh");
    EXPECT_TRUE(file.isSealed());
    EXPECT_EQ(::pwrite(file.descriptor(), "K", 1, 0), -1);
    EXPECT_EQ(::ftruncate(file.descriptor(), 0), -1);
    EXPECT_EQ(::ftruncate(file.descriptor(), 100), -1);

    const MemoryFile open;
    MeshWriter writer(open);
    EXPECT_FALSE(open.isSealed());
    EXPECT_EQ(errorOf([&] { MeshReader reader(open); }),
              "a mesh came from another process that could still change it");
    EXPECT_EQ(errorOf([] { MeshReader reader(MemoryFile(-1)); }),
              "a mesh came from another process that could still change it");
}

TEST(MeshMemoryTest, WhatIsNotAMeshIsRefused) {
    EXPECT_EQ(errorOfMesh(""), "a mesh that came from another process is not whole");
    EXPECT_EQ(errorOfMesh("KORLMESH"), "what came from another process is not a mesh");
    const MemoryFile file;
    MeshWriter(file).put(triangle());
    const std::string whole = bytesOf(file);
    ASSERT_EQ(errorOfMesh(whole), "no error");
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(errorOfMesh(whole.substr(0, size)), "a mesh that came from another process is not whole")
            << size;
}

TEST(MeshMemoryTest, NoCountLeadsBeyondTheFile) {
    const MemoryFile file;
    MeshWriter(file).put(triangle());
    const std::string whole = bytesOf(file);
    // The counts of the name's bytes, the positions, normals and colours, and the indices.
    for (const std::size_t place : {8u, 20u, 64u, 108u, 152u})
        for (const std::uint64_t count :
             {std::uint64_t{1000}, std::uint64_t{1} << 63, UINT64_MAX, UINT64_MAX / 12 + 1}) {
            std::string changed = whole;
            changed.replace(place, sizeof count, reinterpret_cast<const char*>(&count), sizeof count);
            EXPECT_EQ(errorOfMesh(changed), "a mesh that came from another process is not whole") << place;
        }
}

TEST(MeshMemoryTest, AMeshThatIsReadIsValid) {
    Mesh mesh = triangle();
    mesh.triangles[1] = 3;
    const MemoryFile file;
    MeshWriter(file).put(mesh);
    EXPECT_EQ(errorOfMesh(bytesOf(file)),
              "the mesh \"sail\" is damaged: triangle 0 leads to position 3, but there are 3");
}

} // namespace
} // namespace korl
