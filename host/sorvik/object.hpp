#pragma once

#include <sorvik/connectable.hpp>
#include <sorvik/creation_preferences.hpp>
#include <sorvik/export.hpp>
#include <sorvik/managed_object.hpp>
#include <sorvik/saveable.hpp>
#include <sorvik/slot.hpp>
#include <sorvik/slot_container.hpp>
#include <tessan/weak_ptr.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Qelt {

class VCreatorBase;
class VObject;
class VRequest;

extern template class SORVIK_EXPORT VManagedDomainObject<VObject>;

/// An object of a scene: named, with typed parameters that can be edited, connected, saved and read per
/// render context.
class SORVIK_EXPORT VObject : public VManagedDomainObject<VObject>,
                              public VConnectable,
                              public VSlotContainer,
                              public VSaveable {
public:
    /// @param priority where the object stands among those that are updated for a rendering: lower ones go
    /// first.
    /// @param preferences what its parameters are to hold first instead of their defaults.
    VObject(const std::string& name, int priority, const VCreationPreferences& preferences);
    ~VObject() override;

    int priority() const noexcept { return my_priority; }
    const VCreationPreferences& preferences() const noexcept { return my_preferences; }

    /// Says which creator made the object. It is set up (`setup`) the first time that one is told.
    void setCreator(const Tessan::WeakPtr<VCreatorBase>& creator);
    const Tessan::WeakPtr<VCreatorBase>& creator() const noexcept { return my_creator; }

    /// From here on the object answers requests.
    void enableRequestProcessing() noexcept { my_processes_requests = true; }
    bool processesRequests() const noexcept { return my_processes_requests; }

    /// The full name of a child: the object's name, a slash, the child's.
    std::string makeChildname(const std::string& child) const;

    /// The full name of a child, numbered where a living object has that name already.
    std::string createChildname(const std::string& base) const;

    /// A name that none of the object's parameters has: `base`, numbered where it is taken.
    std::string CreateParameterName(const std::string& base) const;

    /// Which inputs accept another object: the list that the object gives itself (`getAcceptInfoList`), and
    /// behind it the inputs of the type that its creator declares as its input.
    AcceptList accept(const VObject& offered) const;

    /// Gives the object one more input, of a type that has a slot creator, under a free parameter name.
    /// @returns the input, which the object owns, or null if there is no slot creator for that type.
    VSlot* InputCreation(const std::string& type_name, const std::string& name, int expert_level = 0);

    /// A new object from the same creator with the same global values, or null if the creator is gone. Inputs
    /// that this one got by `InputCreation`, and connections, are not copied.
    Tessan::StrongPtr<VObject> copy(const std::string& name) const;

    /// What the object's type is for, as its creator describes it; empty where it does not.
    virtual std::string help() const;

    /// The key of the object's creator; empty without one.
    virtual std::string type_key() const;

    /// The object's icons: a path in the Qt resource system, an XPM image, the name of an icon file. The base
    /// has none: the first and last are empty, the XPM is null.
    virtual std::string qt_icon() const;
    virtual const char* const* xpm_icon() const;
    virtual std::string gimp_icon() const;

    /// Brings what the object derives from its parameters up to date for the request's context at a time in
    /// seconds. @returns whether that was done. The base derives nothing, which is always up to date.
    virtual bool update(VRequest& request, double time);

    /// The same for a caller that has the object to itself. The base calls `update`.
    virtual bool unsychronized_update(VRequest& request, double time);

    /// Whether a request leads to an update. The base says always: values are read afresh each time.
    virtual bool must_update(const VRequest& request) const;

    /// Updates the object if it answers requests and must be updated.
    /// @returns false if it does not answer requests or its update failed.
    bool request(VRequest& request, double time);

    void iterateOutputs(const std::function<void(VParameter&)>& visit) const override;

    /// The inputs that have an output of the same name and type in `offered`, in the order of their making.
    AcceptList getAcceptInfoList(const VObject& offered) const override;

    /// Connects one of this object's inputs to another object's parameter, as the accept list offers it, and
    /// says so to the object (`CreatedFilteredConnection`).
    /// @returns false, and changes nothing, if there is no such input, or it does not take the parameter.
    bool connectInput(std::string_view input, VParameter& source);

private:
    int my_priority;
    VCreationPreferences my_preferences;
    Tessan::WeakPtr<VCreatorBase> my_creator;
    bool my_processes_requests = false;
    std::vector<std::unique_ptr<VSlot>> my_inputs;
};

} // namespace Qelt
