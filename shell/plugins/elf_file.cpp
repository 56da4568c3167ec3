#include "shell/plugins/elf_file.hpp"

#include "shell/plugins/plugin_error.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/core.h>
#include <gelf.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace korl {

namespace {

constexpr std::string_view plugin_library = "a plug-in library";
constexpr std::string_view make_again = "Build the plug-in again, or copy it again.";

Error damaged(const std::filesystem::path& file, const char* detail) {
    return pluginError(file, "a whole ELF file",
                       fmt::format("one that is damaged or cut off ({})", detail ? detail : "no detail"),
                       make_again);
}

Error damagedAsLibelfSays(const std::filesystem::path& file) {
    return damaged(file, elf_errmsg(-1));
}

/// Without blocking, because the path may name a pipe that nobody writes to.
int openForReading(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor >= 0)
        return descriptor;
    const int reason = errno;
    if (reason == ENOENT || reason == ENOTDIR)
        throw pluginError(file, plugin_library, "no such file", "Check the path.");
    throw pluginError(file, plugin_library,
                      fmt::format("a file that can't be opened ({})", std::strerror(reason)),
                      "Check the path and the permissions.");
}

/// @returns the size of the file, in bytes.
std::size_t sizeOfRegularFile(const std::filesystem::path& file, int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        throw pluginError(file, plugin_library,
                          fmt::format("a file without a status ({})", std::strerror(errno)),
                          "Check the disk.");
    if (S_ISDIR(status.st_mode))
        throw pluginError(file, plugin_library, "a directory",
                          "Name a library in it, or list it in KORL_PLUGIN_PATH.");
    if (!S_ISREG(status.st_mode))
        throw pluginError(file, plugin_library, "a device, pipe or socket", "Check the path.");
    if (status.st_size == 0)
        throw pluginError(file, plugin_library, "an empty file", make_again);
    return static_cast<std::size_t>(status.st_size);
}

bool beginsAsElf(int descriptor) {
    char magic[SELFMAG] = {};
    return ::pread(descriptor, magic, SELFMAG, 0) == SELFMAG && std::memcmp(magic, ELFMAG, SELFMAG) == 0;
}

Elf* beginElf(const std::filesystem::path& file, int descriptor) {
    if (!beginsAsElf(descriptor))
        throw pluginError(file, plugin_library, "a file of another kind, which doesn't begin as ELF files do",
                          "Name the shared library itself; its name mostly ends in .so.");
    elf_version(EV_CURRENT);
    // ELF_C_READ and not its mapping variant: a file that shrinks meanwhile then gives a short read, not a
    // SIGBUS.
    if (Elf* elf = elf_begin(descriptor, ELF_C_READ, nullptr))
        return elf;
    throw damagedAsLibelfSays(file);
}

GElf_Ehdr headerOf(const std::filesystem::path& file, Elf* elf) {
    GElf_Ehdr header;
    if (elf_kind(elf) != ELF_K_ELF || !gelf_getehdr(elf, &header))
        throw damaged(file, "its first header can't be read");
    return header;
}

std::string machineName(unsigned machine) {
    switch (machine) {
    case EM_386:
        return "x86";
    case EM_X86_64:
        return "x86-64";
    case EM_ARM:
        return "ARM";
    case EM_AARCH64:
        return "AArch64";
    case EM_RISCV:
        return "RISC-V";
    case EM_PPC64:
        return "PowerPC";
    case EM_S390:
        return "System z";
    default:
        return fmt::format("machine number {}", machine);
    }
}

} // namespace

void ElfFile::End::operator()(Elf* elf) const noexcept {
    elf_end(elf);
}

std::string ElfFile::Architecture::text() const {
    return fmt::format("{}-bit {}-endian {}", word_bits, big_endian ? "big" : "little", machineName(machine));
}

ElfFile::ElfFile(const std::filesystem::path& file)
    : my_file(file), my_descriptor(openForReading(file)),
      my_size(sizeOfRegularFile(file, my_descriptor.get())), my_elf(beginElf(file, my_descriptor.get())) {
    headerOf(my_file, my_elf.get());
}

ElfFile::Architecture ElfFile::architecture() const {
    const GElf_Ehdr header = headerOf(my_file, my_elf.get());
    return {header.e_ident[EI_CLASS] == ELFCLASS64 ? 64 : 32, header.e_ident[EI_DATA] == ELFDATA2MSB,
            header.e_machine};
}

ElfFile::Kind ElfFile::kind() const {
    switch (headerOf(my_file, my_elf.get()).e_type) {
    case ET_REL:
        return Kind::object_file;
    case ET_EXEC:
        return Kind::program;
    case ET_DYN:
        return isPositionIndependentProgram() ? Kind::program : Kind::shared_library;
    default:
        return Kind::other;
    }
}

void ElfFile::requireComplete() const {
    const auto requireInside = [&](GElf_Off offset, GElf_Xword length, const char* detail) {
        if (length > my_size || offset > my_size - length)
            throw damaged(my_file, detail);
    };
    // libelf leaves out of its own counts what the file is too short for, so the header's counts are looked
    // at as well. Those are 0 where a count is too large for them; libelf then knows the place that has it.
    const GElf_Ehdr header = headerOf(my_file, my_elf.get());
    std::size_t sections = 0;
    std::size_t segments = 0;
    if (elf_getshdrnum(my_elf.get(), &sections) != 0 || elf_getphdrnum(my_elf.get(), &segments) != 0)
        throw damagedAsLibelfSays(my_file);
    sections = std::max<std::size_t>(sections, header.e_shnum);
    segments = std::max<std::size_t>(segments, header.e_phnum);
    requireInside(header.e_shoff, sections * header.e_shentsize, "it ends before its section table does");
    requireInside(header.e_phoff, segments * header.e_phentsize, "it ends before its segment table does");
    for (int index = 0; index < static_cast<int>(segments); ++index) {
        GElf_Phdr segment;
        if (!gelf_getphdr(my_elf.get(), index, &segment))
            throw damagedAsLibelfSays(my_file);
        if (segment.p_type == PT_LOAD)
            requireInside(segment.p_offset, segment.p_filesz, "it ends before its code and data do");
    }
}

/// A section that is an array of rows.
struct ElfFile::Table {
    Elf_Data* data = nullptr; ///< Belongs to the ELF handle; null where the file has no such section.
    std::size_t names = 0;    ///< The index of the section that holds the texts for this one.
};

ElfFile::Table ElfFile::findTable(unsigned type) const {
    Elf_Scn* section = nullptr;
    while ((section = elf_nextscn(my_elf.get(), section))) {
        GElf_Shdr header;
        if (!gelf_getshdr(section, &header))
            throw damagedAsLibelfSays(my_file);
        if (header.sh_type != type)
            continue;
        Elf_Data* data = elf_getdata(section, nullptr);
        if (!data)
            throw damagedAsLibelfSays(my_file);
        return {data, header.sh_link};
    }
    return {};
}

bool ElfFile::isPositionIndependentProgram() const {
    const Table dynamic = findTable(SHT_DYNAMIC);
    GElf_Dyn entry;
    for (int row = 0; dynamic.data && gelf_getdyn(dynamic.data, row, &entry); ++row)
        if (entry.d_tag == DT_FLAGS_1 && (entry.d_un.d_val & DF_1_PIE))
            return true;
    return false;
}

std::vector<ElfFile::Symbol> ElfFile::dynamicSymbols() const {
    const Table table = findTable(SHT_DYNSYM);
    std::vector<Symbol> symbols;
    GElf_Sym symbol;
    for (int row = 0; table.data && gelf_getsym(table.data, row, &symbol); ++row) {
        const char* name = elf_strptr(my_elf.get(), table.names, symbol.st_name);
        if (!name)
            throw damagedAsLibelfSays(my_file);
        symbols.push_back({name, symbol.st_shndx != SHN_UNDEF, GELF_ST_BIND(symbol.st_info) == STB_GLOBAL,
                           GELF_ST_TYPE(symbol.st_info) == STT_FUNC});
    }
    return symbols;
}

} // namespace korl
