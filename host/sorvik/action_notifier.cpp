#include <sorvik/action_notifier.hpp>

#include <sorvik/object.hpp>

#include <algorithm>
#include <vector>

namespace Qelt {

namespace {

std::vector<VActionNotifier*>& notifiers() {
    static auto& living = *new std::vector<VActionNotifier*>;
    return living;
}

} // namespace

VContext::VContext() = default;
VContext::~VContext() = default;

VActionNotifier::VActionNotifier() {
    notifiers().push_back(this);
}

VActionNotifier::~VActionNotifier() {
    std::erase(notifiers(), this);
}

void VActionNotifier::VObjectCreation(const Tessan::StrongPtr<VObject>& object, VContext* context,
                                      VCreatorBase& creator) {
    const auto living_before = notifiers(); // a notifier may come or go while another one is told
    for (VActionNotifier* const notifier : living_before)
        if (std::find(notifiers().begin(), notifiers().end(), notifier) != notifiers().end())
            notifier->objectCreated(object, context, creator);
}

} // namespace Qelt
