#pragma once

#include <sorvik/export.hpp>
#include <tessan/strong_ptr.hpp>

namespace Qelt {

class VCreatorBase;
class VObject;

/// Who asks for an object to be created: the notifiers can tell by it whether an object is theirs.
class SORVIK_EXPORT VContext {
public:
    VContext();
    virtual ~VContext();
};

/// Is told, as long as it lives, of every object that a creator has made.
class SORVIK_EXPORT VActionNotifier {
public:
    VActionNotifier();
    VActionNotifier(const VActionNotifier&) = delete;
    VActionNotifier& operator=(const VActionNotifier&) = delete;
    virtual ~VActionNotifier();

    /// An object was created. @param context whoever asked for it, as given to `create`; may be null.
    virtual void objectCreated(const Tessan::StrongPtr<VObject>& object, VContext* context,
                               VCreatorBase& creator) = 0;

    /// Tells every living notifier of a new object.
    static void VObjectCreation(const Tessan::StrongPtr<VObject>& object, VContext* context,
                                VCreatorBase& creator);
};

} // namespace Qelt
