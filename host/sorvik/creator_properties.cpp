#include <sorvik/creator_properties.hpp>

#include <utility>

namespace Qelt {

using Kind = VCreatorPropertyBase::Kind;

VCreatorPropertyBase::VCreatorPropertyBase(Kind kind, std::string text)
    : my_kind(kind), my_text(std::move(text)) {}

void VCreatorPropertyBase::assign(VCreatorProperties& record) const {
    record.my_properties.push_back(*this);
}

std::string VCreatorPropertyBase::keyname(std::string_view separator) const {
    switch (my_kind) {
    case Kind::category:
        return my_text + std::string(separator);
    case Kind::name:
        return my_text;
    default:
        return {};
    }
}

VCreatorProperties::VCreatorProperties(const VCreatorPropertyBase& property) : my_properties{property} {}

std::string VCreatorProperties::text(Kind kind) const {
    for (const VCreatorPropertyBase& property : my_properties)
        if (property.kind() == kind)
            return property.text();
    return {};
}

std::string VCreatorProperties::keyname(std::string_view separator) const {
    std::string categories, names;
    for (const VCreatorPropertyBase& property : my_properties)
        (property.kind() == Kind::category ? categories : names) += property.keyname(separator);
    return categories + names;
}

} // namespace Qelt
