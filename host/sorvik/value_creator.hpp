#pragma once

#include <sorvik/export.hpp>
#include <sorvik/value.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Qelt {

/// Makes values of one type by the type's name, for values that come as text with a type name beside them.
/// Several creators may be registered under a name; the first one serves.
class SORVIK_EXPORT VValueCreator {
public:
    VValueCreator();
    VValueCreator(const VValueCreator&) = delete;
    VValueCreator& operator=(const VValueCreator&) = delete;
    /// Withdraws every registration of this creator.
    virtual ~VValueCreator();

    /// A new value that holds the type's zero.
    virtual Tessan::StrongPtr<VValueBase> newValue() const = 0;

    /// Enters a creator under the name of its type. It is withdrawn when it is destroyed.
    static void registerCreator(const VValueCreator& creator, const std::string& type_name);

    /// The first creator registered under this name, or null.
    static const VValueCreator* find(std::string_view type_name);

    /// How many creators are registered under this name.
    static std::size_t count(std::string_view type_name);
};

/// Makes values of type `T`.
template <class T>
class VValueCreatorOf final : public VValueCreator {
public:
    Tessan::StrongPtr<VValueBase> newValue() const override {
        return Tessan::StrongPtr<VValueBase>(new VValue<T>);
    }
};

extern template class SORVIK_EXPORT VValueCreatorOf<double>;

} // namespace Qelt
