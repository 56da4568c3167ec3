#include "shell/catalogue/type_info.hpp"

#include "shell/base/module_call.hpp"
#include "shell/catalogue/module_of.hpp"
#include "shell/catalogue/parameter_notes.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/catalogue/type_names.hpp"

#include <sorvik/creator.hpp>

#include <fmt/core.h>

namespace korl {

namespace {

constexpr std::string_view own_module = "tovek_light";

std::optional<std::string> propertyText(const Qelt::VParameter& parameter, const char* name) {
    const Qelt::VValueBase* const property = parameter.property(name);
    return property ? std::optional(property->Text()) : std::nullopt;
}

} // namespace

std::string rangeText(const ParameterInfo& parameter) {
    const auto& minimum = parameter.minimum;
    const auto& maximum = parameter.maximum;
    if (minimum && maximum)
        return fmt::format("{} to {}", *minimum, *maximum);
    return minimum ? "from " + *minimum : maximum ? "up to " + *maximum : "";
}

std::vector<ParameterInfo> parametersOf(const Qelt::VObject& object) {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    const bool is_own = creator && moduleOf(*creator) == own_module;
    std::vector<ParameterInfo> described;
    for (const auto& [held, expert_level] : object.parameters()) {
        const Qelt::VParameter& parameter = *held;
        const ParameterNote note = is_own ? noteOn(creator->Name(), parameter.Name()) : ParameterNote();
        described.push_back({parameter.Name(), valueKind(parameter.type()), parameter.DefaultValue().Text(),
                             propertyText(parameter, "min"), propertyText(parameter, "max"),
                             propertyText(parameter, "unit").value_or(std::string(note.unit)), expert_level,
                             propertyText(parameter, "description").value_or(std::string(note.description))});
    }
    return described;
}

std::vector<TypeInfo> knownTypes() {
    using Kind = Qelt::VCreatorPropertyBase::Kind;
    std::vector<TypeInfo> types;
    for (const auto& [name, creator] : namedTypes()) {
        const Tessan::StrongPtr<Qelt::VObject> sample =
            ModuleCall(*creator, "creation").run([&type = *creator] { return type.create({}); });
        types.push_back({name, creator->properties().text(Kind::category),
                         creator->properties().text(Kind::description), parametersOf(*sample)});
    }
    return types;
}

} // namespace korl
