#include "shell/plugins/plugin_inspection.hpp"

#include "shell/plugins/elf_file.hpp"
#include "shell/plugins/plugin_error.hpp"

#include <sorvik/initialization.hpp>

#include <fmt/format.h>
#include <optional>
#include <string_view>
#include <vector>

namespace korl {

namespace {

/// Every version's prefix begins so; the version follows, then two underscores and the module's name.
constexpr std::string_view family_prefix = "KORL_API_";
constexpr std::string_view version_end = "__";
constexpr std::string_view own_prefix = VInitialization::entryPointPrefix;
static_assert(own_prefix.starts_with(family_prefix) && own_prefix.ends_with(version_end));

/// @returns the version in the name of an entry point, such as "2026_JAN_22"; none for any other name.
std::optional<std::string_view> interfaceVersion(std::string_view symbol_name) {
    if (!symbol_name.starts_with(family_prefix))
        return std::nullopt;
    symbol_name.remove_prefix(family_prefix.size());
    const auto end = symbol_name.find(version_end);
    if (end == std::string_view::npos)
        return std::nullopt;
    return symbol_name.substr(0, end);
}

void requireArchitecture(const ElfFile& elf, const std::filesystem::path& file) {
    const auto own = ElfFile("/proc/self/exe").architecture();
    const auto found = elf.architecture();
    if (found != own)
        throw pluginError(file, fmt::format("a library for {}, as this program is", own.text()),
                          "one for " + found.text(), "Build the plug-in for this program's architecture.");
}

void requireSharedLibrary(const ElfFile& elf, const std::filesystem::path& file) {
    constexpr std::string_view remedy = "Link the plug-in as a shared library.";
    switch (elf.kind()) {
    case ElfFile::Kind::shared_library:
        return;
    case ElfFile::Kind::program:
        throw pluginError(file, "a shared library", "an executable program", remedy);
    case ElfFile::Kind::object_file:
        throw pluginError(file, "a shared library", "an object file", remedy);
    case ElfFile::Kind::other:
        break;
    }
    throw pluginError(file, "a shared library", "an ELF file of another kind", remedy);
}

/// @returns what keeps a symbol from being an entry point, or an empty text.
std::string_view defect(const ElfFile::Symbol& symbol) {
    if (symbol.name == own_prefix)
        return "has no module name after the prefix";
    if (!symbol.defined)
        return "is only declared";
    if (!symbol.function)
        return "is not a function";
    if (!symbol.global)
        return "is weak or local";
    return {};
}

std::string findEntryPoint(const ElfFile& elf, const std::filesystem::path& file) {
    std::vector<std::string> entry_points;
    std::string near_miss;
    std::string other_version;
    for (const auto& symbol : elf.dynamicSymbols()) {
        if (symbol.name.starts_with(own_prefix)) {
            const auto reason = defect(symbol);
            if (reason.empty())
                entry_points.push_back(symbol.name);
            else
                near_miss = fmt::format("{}, which {}", symbol.name, reason);
        } else if (const auto version = interfaceVersion(symbol.name); version && symbol.defined) {
            other_version = fmt::format("version {} ({})", *version, symbol.name);
        }
    }
    if (entry_points.size() == 1)
        return entry_points.front();
    if (entry_points.size() > 1)
        throw pluginError(file, "one entry point",
                          fmt::format("{} of them: {}", entry_points.size(), fmt::join(entry_points, ", ")),
                          "Make a library of its own for each module.");
    if (near_miss.empty() && !other_version.empty())
        throw pluginError(file, fmt::format("interface version {}", *interfaceVersion(own_prefix)),
                          other_version, "Build the plug-in against this program's headers.");
    throw pluginError(file, fmt::format("a function named {} and the module's name", own_prefix),
                      near_miss.empty() ? "none" : near_miss,
                      "Export it from the plug-in, with C linkage and default visibility.");
}

} // namespace

PluginInspection inspectPlugin(const std::filesystem::path& file) {
    const ElfFile elf(file);
    requireArchitecture(elf, file);
    elf.requireComplete();
    requireSharedLibrary(elf, file);
    const auto entry_point = findEntryPoint(elf, file);
    return {std::filesystem::absolute(file), entry_point.substr(own_prefix.size()), entry_point};
}

} // namespace korl
