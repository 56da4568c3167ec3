#include "shell/plugins/plugin_inspection.hpp"

#include "plugin_files.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <elf.h>
#include <ostream>
#include <random>
#include <sys/stat.h>

namespace korl {
namespace {

using namespace plugin_files;

const std::string build_again = ".\nBuild the plug-in again, or copy it again.";
const std::string export_it = ".\nExport it from the plug-in, with C linkage and default visibility.";
const std::string check_path = ".\nCheck the path.";

std::string inspectionError(const std::filesystem::path& file) {
    return errorOf([&] { inspectPlugin(file); });
}

TEST(PluginInspectionTest, ReadsModuleNameAndEntryPoint) {
    const auto inspection = inspectPlugin(good / "alder.so");
    EXPECT_EQ(inspection.file, good / "alder.so");
    EXPECT_EQ(inspection.module_name, "alder");
    EXPECT_EQ(inspection.entry_point, "KORL_API_2026_JAN_22__alder");
}

TEST(PluginInspectionTest, MakesARelativePathAbsolute) {
    const auto relative = std::filesystem::relative(good / "alder.so");
    ASSERT_TRUE(relative.is_relative());
    const auto inspection = inspectPlugin(relative);
    EXPECT_TRUE(inspection.file.is_absolute());
    EXPECT_TRUE(std::filesystem::equivalent(inspection.file, good / "alder.so"));
}

struct Refused {
    const char* file;
    std::string expected_and_found;
};

/// Names the row in reports.
void PrintTo(const Refused& row, std::ostream* out) {
    *out << '"' << row.file << '"';
}

class BrokenPluginTest : public testing::TestWithParam<Refused> {};

TEST_P(BrokenPluginTest, IsRefusedWithItsReason) {
    const auto file = broken / GetParam().file;
    EXPECT_EQ(inspectionError(file), refusal(file, GetParam().expected_and_found));
}

const std::string an_entry_point = "a function named KORL_API_2026_JAN_22__ and the module's name, found ";

INSTANTIATE_TEST_SUITE_P(
    Table, BrokenPluginTest,
    testing::Values(
        Refused{"missing.so", "a plug-in library, found no such file" + check_path},
        Refused{"no_entry_point.so/inside.so", "a plug-in library, found no such file" + check_path},
        Refused{
            "",
            "a plug-in library, found a directory.\nName a library in it, or list it in KORL_PLUGIN_PATH."},
        Refused{"program",
                "a shared library, found an executable program.\nLink the plug-in as a shared library."},
        Refused{"no_entry_point.so", an_entry_point + "none" + export_it},
        Refused{"hidden_entry_point.so", an_entry_point + "none" + export_it},
        Refused{"nameless_entry_point.so",
                an_entry_point + "KORL_API_2026_JAN_22__, which has no module name after the prefix" +
                    export_it},
        Refused{"undefined_entry_point.so",
                an_entry_point + "KORL_API_2026_JAN_22__absent, which is only declared" + export_it},
        Refused{"variable_entry_point.so",
                an_entry_point + "KORL_API_2026_JAN_22__constant, which is not a function" + export_it},
        Refused{"weak_entry_point.so",
                an_entry_point + "KORL_API_2026_JAN_22__meek, which is weak or local" + export_it},
        Refused{"other_interface_version.so",
                "interface version 2026_JAN_22, found version 2025_MAR_03 (KORL_API_2025_MAR_03__elder).\n"
                "Build the plug-in against this program's headers."}),
    [](const auto& row) { return "Row" + std::to_string(row.index); });

TEST(PluginInspectionTest, RefusesTwoEntryPoints) {
    // The order in which the linker puts them is its own affair.
    const auto error = inspectionError(broken / "two_entry_points.so");
    EXPECT_TRUE(
        error.starts_with(refusal(broken / "two_entry_points.so", "one entry point, found 2 of them: ")));
    EXPECT_NE(error.find("KORL_API_2026_JAN_22__castor"), std::string::npos);
    EXPECT_NE(error.find("KORL_API_2026_JAN_22__pollux"), std::string::npos);
    EXPECT_TRUE(error.ends_with(".\nMake a library of its own for each module."));
}

TEST(PluginInspectionTest, RefusesFilesThatAreNoLibrary) {
    const TemporaryDirectory directory;
    const auto empty = directory.write("empty.so", "");
    EXPECT_EQ(inspectionError(empty), refusal(empty, "a plug-in library, found an empty file" + build_again));

    const std::string other_kind =
        "a plug-in library, found a file of another kind, which doesn't begin as ELF files "
        "do.\nName the shared library itself; its name mostly ends in .so.";
    for (const char* text : {"not a library", "\x7f",
                             "\x7f"
                             "EL",
                             "!<arch>\n"}) {
        const auto file = directory.write("text.so", text);
        EXPECT_EQ(inspectionError(file), refusal(file, other_kind)) << text;
    }

    const auto pipe = directory.path() / "pipe.so";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(inspectionError(pipe),
              refusal(pipe, "a plug-in library, found a device, pipe or socket" + check_path));

    const auto loop = directory.path() / "loop.so";
    std::filesystem::create_symlink(loop, loop);
    EXPECT_EQ(inspectionError(loop),
              refusal(loop,
                      "a plug-in library, found a file that can't be opened (Too many levels of symbolic "
                      "links).\nCheck the path and the permissions."));
}

template <class Header>
std::string headerBytes(unsigned char word_class, unsigned char byte_order,
                        decltype(Header::e_machine) machine) {
    Header header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = word_class;
    header.e_ident[EI_DATA] = byte_order;
    header.e_ident[EI_VERSION] = EV_CURRENT;
    header.e_type = ET_DYN;
    header.e_machine = machine;
    header.e_version = EV_CURRENT;
    header.e_ehsize = sizeof(Header);
    return {reinterpret_cast<const char*>(&header), sizeof(Header)};
}

TEST(PluginInspectionTest, RefusesOtherArchitecturesByName) {
    const Elf64_Ehdr own = [] {
        Elf64_Ehdr header{};
        std::memcpy(&header, bytesOf("/proc/self/exe").data(), sizeof header);
        return header;
    }();
    if (own.e_ident[EI_CLASS] != ELFCLASS64 || own.e_machine != EM_X86_64)
        GTEST_SKIP() << "the messages are written for x86-64";

    const struct {
        std::string bytes, found;
    } table[] = {
        {headerBytes<Elf64_Ehdr>(ELFCLASS64, ELFDATA2LSB, EM_AARCH64), "64-bit little-endian AArch64"},
        {headerBytes<Elf64_Ehdr>(ELFCLASS64, ELFDATA2LSB, EM_RISCV), "64-bit little-endian RISC-V"},
        {headerBytes<Elf32_Ehdr>(ELFCLASS32, ELFDATA2LSB, EM_386), "32-bit little-endian x86"},
        {headerBytes<Elf32_Ehdr>(ELFCLASS32, ELFDATA2LSB, EM_ARM), "32-bit little-endian ARM"},
        // The x32 interface: this instruction set in a 32-bit file.
        {headerBytes<Elf32_Ehdr>(ELFCLASS32, ELFDATA2LSB, EM_X86_64), "32-bit little-endian x86-64"},
        {headerBytes<Elf64_Ehdr>(ELFCLASS64, ELFDATA2LSB, 4242), "64-bit little-endian machine number 4242"},
    };
    const TemporaryDirectory directory;
    for (const auto& [bytes, found] : table) {
        const auto file = directory.write("foreign.so", bytes);
        EXPECT_EQ(
            inspectionError(file),
            refusal(file, "a library for 64-bit little-endian x86-64, as this program is, found one for " +
                              found + ".\nBuild the plug-in for this program's architecture."));
    }
    // Byte order turns every number of the header round, the type and version included.
    auto swapped = headerBytes<Elf64_Ehdr>(ELFCLASS64, ELFDATA2MSB, 0);
    for (const auto& [offset, value] : {std::pair{17, ET_DYN}, {19, EM_PPC64}, {23, EV_CURRENT}, {53, 64}}) {
        swapped[static_cast<std::size_t>(offset) - 1] = '\0';
        swapped[static_cast<std::size_t>(offset)] = static_cast<char>(value);
    }
    swapped[20] = '\0';
    const auto file = directory.write("swapped.so", swapped);
    EXPECT_NE(inspectionError(file).find("found one for 64-bit big-endian PowerPC."), std::string::npos)
        << inspectionError(file);
}

TEST(PluginInspectionTest, RefusesOtherKindsOfElfFile) {
    const TemporaryDirectory directory;
    const auto whole = bytesOf(good / "alder.so");
    const struct {
        Elf64_Half type;
        const char* found;
    } table[] = {{ET_REL, "an object file"},
                 {ET_EXEC, "an executable program"},
                 {ET_CORE, "an ELF file of another kind"}};
    for (const auto& [type, found] : table) {
        auto bytes = whole;
        std::memcpy(bytes.data() + offsetof(Elf64_Ehdr, e_type), &type, sizeof type);
        const auto file = directory.write("kind.so", bytes);
        EXPECT_EQ(inspectionError(file), refusal(file, std::string("a shared library, found ") + found +
                                                           ".\nLink the plug-in as a shared library."));
    }
}

TEST(PluginInspectionTest, RefusesEveryTruncation) {
    const TemporaryDirectory directory;
    const auto whole = bytesOf(good / "alder.so");
    const std::string damaged = "a whole ELF file, found one that is damaged or cut off (";
    // Every length in the headers and at the end, samples between; the file shrinks, so it is written once.
    const auto file = directory.write("cut.so", whole);
    for (auto size = whole.size() - 1; size >= 4; size -= size > 2048 && size < whole.size() - 64 ? 61 : 1) {
        std::filesystem::resize_file(file, size);
        const auto error = inspectionError(file);
        ASSERT_TRUE(error.starts_with(refusal(file, damaged))) << size << " bytes: " << error;
        ASSERT_TRUE(error.ends_with(")" + build_again)) << size << " bytes: " << error;
    }
}

TEST(PluginInspectionTest, RefusesSegmentsPastTheEnd) {
    // The section table comes last in files as linkers write them; here it is gone and the data cut off.
    auto bytes = bytesOf(good / "alder.so");
    Elf64_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof header);
    header.e_shoff = 0;
    header.e_shnum = 0;
    header.e_shstrndx = 0;
    std::memcpy(bytes.data(), &header, sizeof header);
    const TemporaryDirectory directory;
    const auto without_sections = directory.write("without_sections.so", bytes);
    EXPECT_EQ(inspectionError(without_sections),
              refusal(without_sections, an_entry_point + "none" + export_it));
    bytes.resize(1024);
    const auto cut = directory.write("cut.so", bytes);
    EXPECT_EQ(
        inspectionError(cut),
        refusal(cut,
                "a whole ELF file, found one that is damaged or cut off (it ends before its code and data "
                "do)" +
                    build_again));
}

TEST(PluginInspectionTest, SurvivesAnyBytes) {
    const TemporaryDirectory directory;
    const auto whole = bytesOf(good / "alder.so");
    Elf64_Ehdr header;
    std::memcpy(&header, whole.data(), sizeof header);
    std::mt19937 random(20260122);
    std::uniform_int_distribution<std::size_t> anywhere(0, whole.size() - 1);
    // Where the numbers are that lead a reader astray: the first header and program headers, the section
    // table.
    std::uniform_int_distribution<std::size_t> front(4, 1023);
    std::uniform_int_distribution<std::size_t> sections(header.e_shoff, whole.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255);
    const auto file = directory.write("flipped.so", whole);
    std::ofstream overwrite(file, std::ios::binary | std::ios::in);
    int accepted = 0;
    int refused = 0;
    for (int round = 0; round < 6000; ++round) {
        auto bytes = whole;
        for (int flips = 1 + round % 8; flips > 0; --flips) {
            auto& where = round % 3 == 0 ? anywhere : round % 3 == 1 ? front : sections;
            bytes[where(random)] = static_cast<char>(byte(random));
        }
        overwrite.seekp(0).write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
        (inspectionError(file) == "no error" ? accepted : refused) += 1;
    }
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 100);
}

} // namespace
} // namespace korl
