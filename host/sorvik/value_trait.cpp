#include <sorvik/value_trait.hpp>

#include <sorvik/component_text.hpp>

namespace Qelt {

std::string VValueTrait<double>::Text(double value) {
    return componentsToText(std::span<const double>(&value, 1));
}

bool VValueTrait<double>::setValueFromText(double& value, const std::string& text) {
    return componentsFromText(std::span<double>(&value, 1), text);
}

} // namespace Qelt
