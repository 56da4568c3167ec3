#pragma once

#include <sorvik/export.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Qelt {

class VCreatorProperties;

/// One thing that a creator says of itself to the catalogue: a text and what it stands for.
class SORVIK_EXPORT VCreatorPropertyBase {
public:
    enum class Kind { description, group, date, name, source, category };

    VCreatorPropertyBase(Kind kind, std::string text);

    Kind kind() const noexcept { return my_kind; }
    const std::string& text() const noexcept { return my_text; }

    /// Puts this property at the end of a record.
    void assign(VCreatorProperties& record) const;

    /// What this property adds to the key of its creator: the text of a name, and that of a category with the
    /// separator behind it; nothing for the other kinds.
    std::string keyname(std::string_view separator) const;

private:
    Kind my_kind;
    std::string my_text;
};

/// The properties of a creator, in the order in which they were put together.
class SORVIK_EXPORT VCreatorProperties {
public:
    VCreatorProperties() = default;
    VCreatorProperties(const VCreatorPropertyBase& property);

    const std::vector<VCreatorPropertyBase>& all() const noexcept { return my_properties; }

    /// The text of the first property of a kind; empty if there is none.
    std::string text(VCreatorPropertyBase::Kind kind) const;

    /// The key: the category, the separator, the name; the name alone where there is no category.
    std::string keyname(std::string_view separator) const;

    /// The record with one more property at its end.
    friend VCreatorProperties operator+(VCreatorProperties record, const VCreatorPropertyBase& property) {
        property.assign(record);
        return record;
    }

private:
    friend class VCreatorPropertyBase;

    std::vector<VCreatorPropertyBase> my_properties;
};

} // namespace Qelt
