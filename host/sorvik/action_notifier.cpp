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

/// `notify` is called with each notifier.
template <class Notify>
void notifyAll(Notify notify) {
    const auto living_before = notifiers(); // one may come or go while another one is told
    for (VActionNotifier* const notifier : living_before)
        if (std::find(notifiers().begin(), notifiers().end(), notifier) != notifiers().end())
            notify(*notifier);
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

void VActionNotifier::objectCreated(const Tessan::StrongPtr<VObject>&, VContext*, VCreatorBase&) {}

void VActionNotifier::instancesDeleted(const std::type_info&) {}

void VActionNotifier::creatorsGone(const Tessan::Library&) {}

void VActionNotifier::VObjectCreation(const Tessan::StrongPtr<VObject>& object, VContext* context,
                                      VCreatorBase& creator) {
    notifyAll([&](VActionNotifier& notifier) { notifier.objectCreated(object, context, creator); });
}

void VActionNotifier::VInstanceDeletion(const std::type_info& type) {
    notifyAll([&](VActionNotifier& notifier) { notifier.instancesDeleted(type); });
}

void VActionNotifier::VCreatorsEnd(const Tessan::Library& library) {
    notifyAll([&](VActionNotifier& notifier) { notifier.creatorsGone(library); });
}

} // namespace Qelt
