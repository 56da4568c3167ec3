#include "shell/mesh/mesh_memory.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korl {

namespace {

constexpr std::string_view beginning = "korlmesh";
constexpr int wanted_seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

[[noreturn]] void failWithReason(const std::string& what) {
    throw Error(fmt::format("{}: {}", what, std::strerror(errno)));
}

} // namespace

MemoryFile::MemoryFile() : my_descriptor(::memfd_create("korl-mesh", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    if (!my_descriptor.isOpen())
        failWithReason("there is no memory for a mesh");
}

void MemoryFile::seal() const {
    if (::fcntl(descriptor(), F_ADD_SEALS, wanted_seals) != 0)
        failWithReason("a mesh cannot be kept from changes");
}

bool MemoryFile::isSealed() const noexcept {
    return ::fcntl(descriptor(), F_GET_SEALS) == wanted_seals;
}

MeshWriter::MeshWriter(const MemoryFile& file) : my_file(file) {
    putBytes(beginning.data(), beginning.size());
}

void MeshWriter::putBytes(const void* bytes, std::size_t size) {
    for (const auto* next = static_cast<const std::byte*>(bytes); size > 0;) {
        const ssize_t written = ::write(my_file.descriptor(), next, size);
        if (written < 0 && errno != EINTR)
            failWithReason("a mesh cannot be handed to another process");
        const auto count = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        next += count;
        size -= count;
    }
}

void MeshWriter::put(std::uint64_t number) {
    putBytes(&number, sizeof number);
}

void MeshWriter::put(std::string_view text) {
    put(std::uint64_t{text.size()});
    putBytes(text.data(), text.size());
}

template <class Entry>
void MeshWriter::putList(const std::vector<Entry>& list) {
    put(std::uint64_t{list.size()});
    putBytes(list.data(), list.size() * sizeof(Entry));
}

void MeshWriter::put(const Mesh& mesh) {
    put(mesh.name);
    putList(mesh.positions);
    putList(mesh.normals);
    putList(mesh.colors);
    putList(mesh.triangles);
}

MeshReader::Mapping::Mapping(const MemoryFile& file) {
    if (!file.isSealed())
        throw Error("a mesh came from another process that could still change it");
    struct stat status {};
    if (::fstat(file.descriptor(), &status) != 0)
        failWithReason("a mesh of another process cannot be read");
    if (status.st_size == 0)
        return;
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const bytes = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.descriptor(), 0);
    if (bytes == MAP_FAILED)
        failWithReason("a mesh of another process cannot be read");
    my_bytes = {static_cast<const std::byte*>(bytes), size};
}

MeshReader::Mapping::~Mapping() {
    if (!my_bytes.empty())
        ::munmap(const_cast<std::byte*>(my_bytes.data()), my_bytes.size());
}

MeshReader::MeshReader(const MemoryFile& file) : my_mapping(file), my_rest(my_mapping.bytes()) {
    const auto first = take(beginning.size(), 1);
    if (std::memcmp(first.data(), beginning.data(), beginning.size()) != 0)
        throw Error("what came from another process is not a mesh");
}

std::span<const std::byte> MeshReader::take(std::uint64_t count, std::size_t entry_size) {
    if (count > my_rest.size() / entry_size)
        throw Error("a mesh that came from another process is not whole");
    const auto taken = my_rest.first(static_cast<std::size_t>(count) * entry_size);
    my_rest = my_rest.subspan(taken.size());
    return taken;
}

std::uint64_t MeshReader::number() {
    std::uint64_t read = 0;
    std::memcpy(&read, take(1, sizeof read).data(), sizeof read);
    return read;
}

std::string MeshReader::text() {
    const auto bytes = take(number(), 1);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <class Entry>
std::vector<Entry> MeshReader::list() {
    const auto bytes = take(number(), sizeof(Entry));
    std::vector<Entry> read(bytes.size() / sizeof(Entry));
    if (!bytes.empty())
        std::memcpy(static_cast<void*>(read.data()), bytes.data(), bytes.size());
    return read;
}

Mesh MeshReader::mesh() {
    Mesh read;
    read.name = text();
    read.positions = list<glm::vec3>();
    read.normals = list<glm::vec3>();
    read.colors = list<glm::vec3>();
    read.triangles = list<std::uint32_t>();
    validate(read);
    return read;
}

} // namespace korl
