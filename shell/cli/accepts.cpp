#include "shell/catalogue/parameter_value.hpp"
#include "shell/cli/program.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <memory>

namespace korl::cli {

namespace {

/// An object that provides a value of one kind and nothing else, under a name that no input has.
class Provider : public Qelt::VObject {
public:
    explicit Provider(const Qelt::VValueBase& value) : VObject("provider", 0, {}) {
        const auto parameter =
            Tessan::makeStrong<Qelt::VParameter>(value.clone(), CreateParameterName("a value to connect"));
        Qelt::VSlotGlobals::addParameter(*this, parameter->Name(), 0, parameter);
    }
};

/// For each kind of value that the type's inputs have: the inputs of that kind, and whether the shell offers
/// to create an object of the type from an object that provides such a value.
void listAccepted(Shell& shell, const std::string& type) {
    const Qelt::VObject& sample = shell.scene().create(type);
    std::vector<std::vector<std::string>> rows{{"VALUE", "INPUTS", "OFFERED"}};
    std::vector<const std::type_info*> kinds;
    for (const auto& entry : sample.parameters()) {
        const Qelt::VParameter& parameter = *entry.parameter;
        const auto same = [&](const std::type_info* kind) { return *kind == parameter.type(); };
        if (std::any_of(kinds.begin(), kinds.end(), same))
            continue;
        kinds.push_back(&parameter.type());
        std::string inputs, offered;
        for (const Qelt::VSlot* const slot : sample.slots())
            if (slot->type() == parameter.type())
                inputs += (inputs.empty() ? "" : ", ") + slot->name();
        const Provider provider(parameter.DefaultValue());
        for (const Qelt::AcceptInfo& accepted : sample.accept(provider))
            offered += (offered.empty() ? "" : ", ") + accepted.input;
        rows.push_back({valueKind(parameter.type()), inputs, offered.empty() ? "-" : offered});
    }
    // A declared input type that no parameter has: the type is offered for such values, but no input takes
    // one.
    const auto* const sink = dynamic_cast<const Qelt::VSinkBase*>(sample.creator().get());
    const std::type_info* const declared = sink ? sink->inputType() : nullptr;
    if (declared &&
        std::none_of(kinds.begin(), kinds.end(), [&](const auto* kind) { return *kind == *declared; }))
        rows.push_back({valueKind(*declared), "-", "-"});
    printTable(rows);
}

} // namespace

void addAcceptsCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand(
        "accepts", "List which inputs of a type take a value of which kind, and which of them are "
                   "offered for any object that provides one");
    const auto type = std::make_shared<std::string>();
    command->add_option("TYPE", *type, "The type's name, as `korl types` lists it")->required();
    command->callback([&program, type] {
        program.command = [&program, type] {
            withShell(program, [&](Shell& shell) { listAccepted(shell, *type); });
        };
    });
}

} // namespace korl::cli
