#include "shell/scene_file/saved_value.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"

namespace korl {

using Qelt::VObject;
using Qelt::VParameter;

namespace {

/// A value's text, which must be one that is read again.
std::optional<std::string> finiteText(const VObject& object, const VParameter& parameter,
                                      const Qelt::VValueBase& value) {
    std::string text = value.Text();
    if (!isFinite(value))
        throw Error("the scene cannot be written: " + inQuotes(object.Name() + "." + parameter.Name()) +
                    " is " + inQuotes(text) + ", which is not finite; set it first");
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
