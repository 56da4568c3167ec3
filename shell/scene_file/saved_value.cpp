#include "shell/scene_file/saved_value.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"

#include <fmt/core.h>

namespace korl {

using Qelt::VObject;
using Qelt::VParameter;

namespace {

/// A value's text, which must be one that is read again.
std::optional<std::string> finiteText(const VObject& object, const VParameter& parameter,
                                      const Qelt::VValueBase& value) {
    std::string text = value.Text();
    if (!isFinite(value))
        throw Error(fmt::format("the scene cannot be written: {} is {}, which is not finite; set it first",
                                inQuotes(object.Name() + "." + parameter.Name()), inQuotes(text)));
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace

std::optional<std::string> savedValue(const VObject& object, const VParameter& parameter) {
    const auto text = finiteText(object, parameter, parameter.globalValue());
    const bool preferred = object.preferences().find(parameter.Name()) != nullptr;
    return preferred || text != parameter.DefaultValue().Text() ? text : std::nullopt;
}

std::optional<std::string> savedValue(const VObject& object, const VParameter& parameter,
                                      const Qelt::ValuePool& view) {
    return view.ownsVariable(parameter) ? finiteText(object, parameter, *view.retrieveValue(parameter))
                                        : std::nullopt;
}

} // namespace korl
