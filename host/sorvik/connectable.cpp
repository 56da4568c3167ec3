#include <sorvik/connectable.hpp>

#include <sorvik/parameter.hpp>

#include <algorithm>

namespace Qelt {

void mergeAcceptList(AcceptList& list, const AcceptList& more) {
    for (const AcceptInfo& entry : more)
        if (std::find(list.begin(), list.end(), entry) == list.end())
            list.push_back(entry);
}

VConnectable::VConnectable() = default;
VConnectable::~VConnectable() = default;

VParameter* VConnectable::getImplementation(const std::type_info& type) const {
    VParameter* found = nullptr;
    iterateOutputs([&](VParameter& output) {
        if (!found && output.type() == type)
            found = &output;
    });
    return found;
}

bool VConnectable::implements(const std::type_info& type) const {
    return getImplementation(type) != nullptr;
}

void VConnectable::CreatedFilteredConnection(VSlot&, VParameter&) {}

} // namespace Qelt
