#pragma once

#include <sorvik/export.hpp>
#include <sorvik/parameter.hpp>

#include <string>
#include <typeinfo>

namespace Qelt {

class VSlotContainer;

/// An input of an object: it holds one of the object's parameters, of one type.
class SORVIK_EXPORT VSlot {
public:
    VSlot(VSlotContainer& container, std::string name, const std::type_info& type);
    VSlot(const VSlot&) = delete;
    VSlot& operator=(const VSlot&) = delete;
    virtual ~VSlot();

    const std::string& name() const noexcept { return my_name; }
    const std::type_info& type() const noexcept { return my_type; }

    /// The parameter that the slot holds, or null: it was removed, or was of another type from the start.
    VParameter* parameter() const noexcept { return my_parameter.get(); }

    /// The slot's value in a context, or null if the slot holds no live parameter or there is nothing to
    /// read.
    const VValueBase* getValueBase(ValuePool& pool) const;

    /// Makes the slot's parameter follow another object's; null ends that.
    /// @returns false, and changes nothing, if the slot holds none, or the source is of another type or
    /// follows it.
    bool connect(const Tessan::StrongPtr<VParameter>& source);

protected:
    void hold(VParameter* parameter) noexcept { my_parameter = Tessan::WeakPtr<VParameter>(parameter); }

    /// Warns that the creators of the slot's type were not registered: a fixed line on standard output, then
    /// which slot that is.
    void reportMissingCreators() const;

private:
    VSlotContainer& my_container;
    std::string my_name;
    const std::type_info& my_type;
    Tessan::WeakPtr<VParameter> my_parameter;
};

} // namespace Qelt
