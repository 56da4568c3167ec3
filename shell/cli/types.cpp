#include "shell/base/file_output.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/module_of.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/cli/program.hpp"
#include "shell/image/png.hpp"
#include "shell/image/xpm.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fmt/core.h>
#include <memory>
#include <optional>
#include <QtCore/QFile>

namespace korl::cli {

namespace {

using Kind = Qelt::VCreatorPropertyBase::Kind;

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

/// What the table says of a type's icon, and the icon as a PNG file; both are empty where the type has none.
struct Icon {
    std::string description;
    std::vector<std::uint8_t> png;
};

/// The icon of an object: a PNG file at a path of the Qt resource system, or an XPM image.
/// @param with_file whether its file is asked for, too.
Icon iconOf(const Qelt::VObject& object, bool with_file) {
    if (const std::string path = ModuleCall(object, "qt_icon").run([&] { return object.qt_icon(); });
        !path.empty()) {
        if (!with_file)
            return {path, {}};
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::ReadOnly))
            throw Error(fmt::format("its icon {} is not in the module's resources", printable(path)));
        const QByteArray bytes = file.readAll();
        const std::vector<std::uint8_t> png(bytes.begin(), bytes.end());
        try {
            decodePng(png);
        } catch (const Error& error) {
            throw Error(fmt::format("its icon {} cannot be used: {}", printable(path), error.what()));
        }
        return {path, png};
    }
    const char* const* const xpm = ModuleCall(object, "xpm_icon").run([&] { return object.xpm_icon(); });
    if (!xpm)
        return {};
    const Image image = decodeXpm(xpm);
    return {fmt::format("XPM {}x{}", image.width, image.height),
            with_file ? encodePng(image) : std::vector<std::uint8_t>()};
}

/// The icon of what a creator makes. What is wrong with it is told with the type's name, and nothing is
/// returned.
std::optional<Icon> readableIcon(Qelt::VCreatorBase& creator, bool with_file) {
    try {
        if (with_file && creator.Name().find('/') != std::string::npos)
            throw Error("a name with \"/\" cannot be that of its icon's file");
        const auto object = ModuleCall(creator, "creation").run([&] { return creator.create(""); });
        return iconOf(*object, with_file);
    } catch (const std::exception& error) {
        note(fmt::format("type {}: {}", inQuotes(typeName(creator)), error.what()));
    }
    return std::nullopt;
}

/// What the table says of a type.
std::string descriptionOf(const Qelt::VCreatorBase& creator) {
    const std::string description = creator.properties().text(Kind::description);
    if (typeName(creator) == creator.Name())
        return orDash(description);
    return fmt::format("(shadowed by that of {}){}{}", moduleOf(*findType(creator.Name())),
                       description.empty() ? "" : " ", description);
}

/// Where a type's icon goes: TYPE.png, for a shadowed type MODULE.TYPE.png.
std::filesystem::path iconFile(const std::filesystem::path& folder, const Qelt::VCreatorBase& creator) {
    std::string name = typeName(creator);
    std::replace(name.begin(), name.end(), '/', '.');
    return folder / (name + ".png");
}

/// Lists the types, and writes the icon of each that has one into a folder, as TYPE.png, unless the folder's
/// name is empty. Throws Error at the end if there were types whose icon cannot be had.
void listTypes(const std::filesystem::path& folder) {
    std::vector<std::vector<std::string>> rows{{"NAME", "CATEGORY", "NUMBER", "DATE", "ICON", "DESCRIPTION"}};
    std::size_t failed = 0;
    for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
        const std::optional<Icon> icon = readableIcon(*creator, !folder.empty());
        failed += icon ? 0 : 1;
        if (icon && !icon->png.empty())
            writeFileAtomically(iconFile(folder, *creator), icon->png);
        const auto& properties = creator->properties();
        rows.push_back({typeName(*creator), orDash(properties.text(Kind::category)),
                        std::to_string(creator->creatorNumber()), orDash(properties.text(Kind::date)),
                        icon ? orDash(icon->description) : "unusable", descriptionOf(*creator)});
    }
    if (rows.size() == 1)
        note("no module is loaded that has any types; name one with --plugin or set KORL_PLUGIN_PATH");
    printTable(rows);
    if (failed > 0)
        throw Error(
            fmt::format("{} of {} types have no usable icon; report it to the authors of their modules",
                        failed, rows.size() - 1));
}

} // namespace

void addTypesCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("types", "List the types of objects that can be created");
    const auto folder = std::make_shared<std::string>();
    command->add_option("--icons", *folder, "Also write the types' icons into this folder, as TYPE.png");
    command->callback([&program, folder] {
        program.command = [&program, folder] { withShell(program, [&](Shell&) { listTypes(*folder); }); };
    });
}

} // namespace korl::cli
