#include "shell/base/printable.hpp"
#include "shell/cli/program.hpp"

#include "shell/catalogue/type_info.hpp"

#include <fmt/core.h>
#include <memory>

namespace korl::cli {

namespace {

std::string orDash(std::string text) {
    return text.empty() ? "-" : std::move(text);
}

void describeType(Shell& shell, const std::string& type) {
    const Qelt::VObject& sample = shell.scene().create(type);
    const std::string help = sample.help();
    print(fmt::format("{}{}{}\n\n", printable(fmt::format("{} ({})", type, sample.type_key())),
                      help.empty() ? "" : ": ", printableLines(help)));
    std::vector<std::vector<std::string>> rows{
        {"PARAMETER", "TYPE", "DEFAULT", "RANGE", "UNIT", "LEVEL", "WHAT IT IS"}};
    for (const ParameterInfo& parameter : parametersOf(sample))
        rows.push_back({parameter.name, parameter.kind, parameter.default_text, orDash(rangeText(parameter)),
                        orDash(parameter.unit), std::to_string(parameter.expert_level),
                        parameter.description});
    printTable(rows);
}

} // namespace

void addDescribeCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("describe", "List the parameters of a type");
    const auto type = std::make_shared<std::string>();
    command->add_option("TYPE", *type, "The type's name, as `korl types` lists it")->required();
    command->callback([&program, type] {
        program.command = [&program, type] {
            withShell(program, [&](Shell& shell) { describeType(shell, *type); });
        };
    });
}

} // namespace korl::cli
