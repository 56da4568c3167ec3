#pragma once

#include <sorvik/export.hpp>
#include <tessan/strong_ptr.hpp>
#include <tessan/typename.hpp>

#include <typeinfo>

namespace Qelt {

class VCreatorBase;
class VObject;

/// Who asks for an object to be created: the notifiers can tell by it whether an object is theirs.
class SORVIK_EXPORT VContext {
public:
    VContext();
    virtual ~VContext();
};

/// Is told, as long as it lives, of what creators do. Each operation of the base does nothing.
class SORVIK_EXPORT VActionNotifier {
public:
    VActionNotifier();
    VActionNotifier(const VActionNotifier&) = delete;
    VActionNotifier& operator=(const VActionNotifier&) = delete;
    virtual ~VActionNotifier();

    /// An object was created. @param context whoever asked for it, as given to `create`; may be null.
    virtual void objectCreated(const Tessan::StrongPtr<VObject>& object, VContext* context,
                               VCreatorBase& creator);

    /// All objects of a type were deleted, as many as there were (`VCreatorBase::deleteAllInstances`).
    virtual void instancesDeleted(const std::type_info& type);

    /// The last creator of the types of a library has gone: what still needs the library's code is held too
    /// long.
    virtual void creatorsGone(const Tessan::Library& library);

    /// Tells every living notifier of a new object, and of the other two events.
    static void VObjectCreation(const Tessan::StrongPtr<VObject>& object, VContext* context,
                                VCreatorBase& creator);
    static void VInstanceDeletion(const std::type_info& type);
    static void VCreatorsEnd(const Tessan::Library& library);
};

} // namespace Qelt
