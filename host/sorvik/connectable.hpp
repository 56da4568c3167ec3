#pragma once

#include <sorvik/export.hpp>

#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

namespace Qelt {

class VObject;
class VParameter;
class VSlot;

/// One way in which an object accepts another: through which of its inputs, by values of which type.
struct AcceptInfo {
    std::string input;
    std::string type;

    friend bool operator==(const AcceptInfo&, const AcceptInfo&) = default;
};

/// Inputs in order of preference, none twice.
using AcceptList = std::vector<AcceptInfo>;

/// Puts the entries of `more` behind those of `list`, leaving out what is there already.
SORVIK_EXPORT void mergeAcceptList(AcceptList& list, const AcceptList& more);

/// What can be connected: it has outputs that others can follow, and says which of its inputs suit an object.
class SORVIK_EXPORT VConnectable {
public:
    VConnectable();
    VConnectable(const VConnectable&) = delete;
    VConnectable& operator=(const VConnectable&) = delete;
    virtual ~VConnectable();

    /// Shows each output to `visit`, in order.
    virtual void iterateOutputs(const std::function<void(VParameter&)>& visit) const = 0;

    /// The inputs that suit `offered` as seen by the object itself, in order.
    virtual AcceptList getAcceptInfoList(const VObject& offered) const = 0;

    /// The first output of the given type, or null. The base goes through the outputs.
    virtual VParameter* getImplementation(const std::type_info& type) const;

    /// Whether there is an output of the given type.
    virtual bool implements(const std::type_info& type) const;

    /// Called when an input of this object was connected through its accept list. The base does nothing.
    virtual void CreatedFilteredConnection(VSlot& input, VParameter& source);
};

} // namespace Qelt
