#include "shell/catalogue/type_info.hpp"

#include "shell/base/module_call.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/catalogue/value_kind.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>

namespace korl {

namespace {

std::optional<std::string> propertyText(const Qelt::VParameter& parameter, const char* name) {
    const Qelt::VValueBase* const property = parameter.property(name);
    return property ? std::optional(property->Text()) : std::nullopt;
}

/// Modules declare no units; these are of the parameters that have one of the same name everywhere.
std::optional<std::string> unitOf(const Qelt::VParameter& parameter) {
    if (parameter.Name() == "latitude")
        return "degrees";
    if (parameter.Name() == "timeofday")
        return "hours";
    return std::nullopt;
}

} // namespace

std::vector<ParameterInfo> parametersOf(const Qelt::VObject& object) {
    std::vector<ParameterInfo> described;
    for (const auto& [parameter, expert_level] : object.parameters())
        described.push_back({parameter->Name(), valueKind(parameter->type()),
                             parameter->DefaultValue().Text(), propertyText(*parameter.get(), "min"),
                             propertyText(*parameter.get(), "max"), unitOf(*parameter.get()), expert_level});
    return described;
}

std::vector<TypeInfo> knownTypes() {
    using Kind = Qelt::VCreatorPropertyBase::Kind;
    std::vector<TypeInfo> types;
    for (Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue()) {
        const std::string name = typeName(*creator);
        const bool is_listed =
            std::any_of(types.begin(), types.end(), [&](const TypeInfo& type) { return type.name == name; });
        if (is_listed)
            continue;
        const Tessan::StrongPtr<Qelt::VObject> sample =
            ModuleCall(*creator, "creation").run([&] { return creator->create({}); });
        types.push_back({name, creator->properties().text(Kind::category),
                         creator->properties().text(Kind::description), parametersOf(*sample.get())});
    }
    return types;
}

} // namespace korl
