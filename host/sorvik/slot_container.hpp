#pragma once

#include <sorvik/export.hpp>
#include <sorvik/parameter.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Qelt {

class VConnectable;
class VSlot;

/// The parameters of an object and the slots through which it reads them, both in the order of their making.
class SORVIK_EXPORT VSlotContainer {
public:
    struct Entry {
        Tessan::StrongPtr<VParameter> parameter;
        int expert_level; ///< 0 is for every user; the higher, the more expert
    };

    VSlotContainer();
    VSlotContainer(const VSlotContainer&) = delete;
    VSlotContainer& operator=(const VSlotContainer&) = delete;
    virtual ~VSlotContainer();

    const std::vector<Entry>& parameters() const noexcept { return my_parameters; }
    const std::vector<VSlot*>& slots() const noexcept { return my_slots; }

    /// The parameter or slot of this name, or null. For editors and scripts; lights read through their slots.
    VParameter* findParameter(std::string_view name) const noexcept;
    VSlot* findSlot(std::string_view name) const noexcept;

    /// Takes a parameter away; its slot then holds none. @returns whether there was one of this name.
    bool removeParameter(std::string_view name);

    /// Called once when the object is complete and its creator is known. The base has nothing to set up.
    virtual void setup();

    /// Connects each slot to the output of `provider` that has its name and type; a slot that ignores input
    /// is left alone. @returns how many were connected.
    virtual std::size_t connectSlots(VConnectable& provider);

    /// Whether a new parameter may take the place of one of the same name. The base says no.
    virtual bool allowParameterReplacement(std::string_view name) const;

    /// Whether the slot of this name is passed over when connections are offered. The base ignores none.
    virtual bool ignoreInput(std::string_view name) const;

    /// Lets go of every connection whose source has gone. @returns how many there were.
    virtual std::size_t adjustConnections();

private:
    friend class VSlot;
    friend class VSlotGlobals;

    std::vector<Entry> my_parameters;
    std::vector<VSlot*> my_slots;
};

/// What all slots share, whatever their type.
class SORVIK_EXPORT VSlotGlobals {
public:
    /// Adds a parameter to an object under an expert level. If the object holds one of that name already,
    /// that one stays, unless `replace` is set and the object allows it.
    /// @returns the parameter that the object ends up holding under the name.
    static Tessan::StrongPtr<VParameter> addParameter(VSlotContainer& container, const std::string& name,
                                                      int expert_level,
                                                      const Tessan::StrongPtr<VParameter>& parameter,
                                                      bool replace = false);

    /// Why a parameter cannot be held by a slot: it is not a parameter of class `expected`, whose values are
    /// of type `value`.
    static std::string conversionFailure(const VParameter& held, const std::type_info& value,
                                         const std::type_info& expected);

    /// Reports a failed expectation through the pointer diagnostics (`SpeakPtr::printRS`), naming the place.
    static void assertionFail(const std::string& message, const char* place);
};

} // namespace Qelt
