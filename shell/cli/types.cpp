#include "shell/cli/program.hpp"
#include "shell/render/png.hpp"
#include "shell/render/xpm.hpp"
#include "shell/scene/file_output.hpp"

#include <sorvik/creator.hpp>

#include <cstdint>
#include <memory>
#include <QtCore/QFile>

namespace korl::cli {

namespace {

using Kind = Qelt::VCreatorPropertyBase::Kind;

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

/// Where the icon of an object comes from: a path in the Qt resource system, or an XPM image of a size; empty
/// where it has none.
std::string iconOf(const Qelt::VObject& object) {
    if (const std::string path = object.qt_icon(); !path.empty())
        return path;
    const char* const* const xpm = object.xpm_icon();
    if (!xpm)
        return {};
    const Image image = decodeXpm(xpm);
    return "XPM " + std::to_string(image.width) + "x" + std::to_string(image.height);
}

/// The picture of an object's icon, as a PNG file; empty where it has none.
std::vector<std::uint8_t> iconFile(const Qelt::VObject& object) {
    if (const std::string path = object.qt_icon(); !path.empty()) {
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::ReadOnly))
            throw Error("the icon " + path + " of " + object.Name() + " is not in the module's resources");
        const QByteArray bytes = file.readAll();
        return {bytes.begin(), bytes.end()};
    }
    const char* const* const xpm = object.xpm_icon();
    return xpm ? encodePng(decodeXpm(xpm)) : std::vector<std::uint8_t>();
}

/// Writes the icon of each type that has one into a folder, as TYPE.png.
void writeIcons(const std::filesystem::path& folder) {
    for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue())
        if (const auto icon = iconFile(*creator->create("").get()); !icon.empty())
            writeFileAtomically(folder / (creator->Name() + ".png"), icon);
}

void listTypes() {
    std::vector<std::vector<std::string>> rows{{"NAME", "CATEGORY", "NUMBER", "DATE", "ICON", "DESCRIPTION"}};
    for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
        const auto& properties = creator->properties();
        rows.push_back({creator->Name(), orDash(properties.text(Kind::category)),
                        std::to_string(creator->creatorNumber()), orDash(properties.text(Kind::date)),
                        orDash(iconOf(*creator->create("").get())),
                        orDash(properties.text(Kind::description))});
    }
    if (rows.size() == 1)
        note("no module is loaded that has any types; name one with --plugin or set KORL_PLUGIN_PATH");
    printTable(rows);
}

} // namespace

void addTypesCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("types", "List the types of objects that can be created");
    const auto folder = std::make_shared<std::string>();
    command->add_option("--icons", *folder, "Also write the types' icons into this folder, as TYPE.png");
    command->callback([&program, folder] {
        program.command = [&program, folder] {
            withShell(program, [&](Shell&) {
                listTypes();
                if (!folder->empty())
                    writeIcons(*folder);
            });
        };
    });
}

} // namespace korl::cli
