#include "shell/cli/program.hpp"

#include <sorvik/creator.hpp>

#include <sstream>

namespace korl::cli {

namespace {

using Kind = Qelt::VCreatorPropertyBase::Kind;

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

/// The icon that the objects of a creator show: a path in the Qt resource system, else the size of an XPM
/// image.
std::string iconOf(Qelt::VCreatorBase& creator) {
    const auto sample = creator.create("");
    if (const std::string path = sample->qt_icon(); !path.empty())
        return path;
    const char* const* const xpm = sample->xpm_icon();
    if (!xpm)
        return {};
    std::istringstream header(xpm[0]);
    std::string width, height;
    header >> width >> height;
    return "XPM " + width + "x" + height;
}

void listTypes() {
    std::vector<std::vector<std::string>> rows{{"NAME", "CATEGORY", "NUMBER", "DATE", "ICON", "DESCRIPTION"}};
    for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
        const auto& properties = creator->properties();
        rows.push_back({creator->Name(), orDash(properties.text(Kind::category)),
                        std::to_string(creator->creatorNumber()), orDash(properties.text(Kind::date)),
                        orDash(iconOf(*creator)), orDash(properties.text(Kind::description))});
    }
    if (rows.size() == 1)
        note("no module is loaded that has any types; name one with --plugin or set KORL_PLUGIN_PATH");
    printTable(rows);
}

} // namespace

void addTypesCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("types", "List the types of objects that can be created");
    command->callback([&program] {
        program.command = [&program] { withSession(program, [](Session&) { listTypes(); }); };
    });
}

} // namespace korl::cli
