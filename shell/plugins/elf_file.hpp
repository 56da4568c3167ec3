#pragma once

#include "shell/base/descriptor.hpp"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

struct Elf;

namespace korl {

/// An ELF file (program, library, object file), read without running any of its code. Whatever bytes the file
/// holds, every operation answers or throws an Error that names the file.
class ElfFile {
public:
    enum class Kind { object_file, program, shared_library, other };

    /// The processor that the file's code is for.
    struct Architecture {
        int word_bits; ///< 32 or 64.
        bool big_endian;
        unsigned machine; ///< The number of the instruction set, EM_X86_64 or another of that list.

        bool operator==(const Architecture&) const = default;

        /// Such as "64-bit little-endian x86-64"; an instruction set without a name here shows its number.
        std::string text() const;
    };

    /// A row of the dynamic symbol table: a name that the library offers to others or asks of them.
    struct Symbol {
        std::string name;
        bool defined; ///< The library has it itself.
        bool global;  ///< Others may link with it, and no other definition goes before it as with a weak one.
        bool function; ///< Code, not data.
    };

    /// Opens the file for reading. Throws Error where it can't be opened, is not a regular file, is empty or
    /// is not an ELF file, and where its first header can't be read.
    explicit ElfFile(const std::filesystem::path& file);

    Architecture architecture() const;

    /// A position-independent program counts as `program`, although its header says shared library.
    Kind kind() const;

    /// Throws Error where the headers speak of segments or tables past the end of the file. The system's
    /// loader doesn't look: it maps such a file, and the process ends when it touches the missing pages.
    void requireComplete() const;

    /// The dynamic symbol table, in its own order; empty where the file has none. Throws Error where it is
    /// damaged.
    std::vector<Symbol> dynamicSymbols() const;

private:
    struct Table;
    struct End {
        void operator()(Elf* elf) const noexcept;
    };

    Table findTable(unsigned type) const;
    bool isPositionIndependentProgram() const;

    std::filesystem::path my_file;
    Descriptor my_descriptor;
    std::size_t my_size; ///< In bytes.
    std::unique_ptr<Elf, End> my_elf;
};

} // namespace korl
