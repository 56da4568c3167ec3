#pragma once

#include <sorvik/export.hpp>
#include <sorvik/object.hpp>
#include <sorvik/slot.hpp>
#include <sorvik/slot_creator.hpp>

#include <atomic>
#include <string>

namespace Qelt {

/// An object's input of type `T`. Making the slot gives the object a parameter of the slot's name.
template <class T>
class TypedSlot final : public VSlot {
public:
    /// @param that the object that gets the parameter, unless it holds one of that name already.
    /// @param initialValue the parameter's default; the object's creation preferences may ask for another
    /// first value.
    /// @param expertLevel 0 is for every user; the higher, the more expert.
    /// @param creators_registered the flag of the library that the object belongs to: the default is that of
    /// the caller.
    /// A parameter of another type that holds the name already is reported; the slot then holds none.
    TypedSlot(VObject* that, const std::string& name, const T& initialValue, int expertLevel = 0,
              const std::atomic<bool>& creators_registered = slot_creators_registered<T>)
        : VSlot(*that, name, typeid(T)), my_creators_registered(creators_registered) {
        const auto made = Tessan::makeStrong<VValueParameter<T>>(initialValue, name, that->preferences());
        made->setCreator(that);
        const auto held = VSlotGlobals::addParameter(*that, name, expertLevel, made);
        auto* const typed = dynamic_cast<VValueParameter<T>*>(held.get());
        if (typed)
            hold(typed);
        else
            VSlotGlobals::assertionFail(
                VSlotGlobals::conversionFailure(*held, typeid(T), typeid(VValueParameter<T>)),
                "TypedSlot(VObject*that, const string&name, const T&initialValue, "
                "int expertLevel");
    }

    ~TypedSlot() override {
        if (my_creators_registered.load(std::memory_order_relaxed))
            TypedSlotCreator::InternalTypeCreatorAccessory.fetch_add(1, std::memory_order_relaxed);
        else
            reportMissingCreators();
    }

private:
    const std::atomic<bool>& my_creators_registered;
};

/// Makes slots of type `T` by the name of the type.
template <class T>
class TypedSlotCreatorOf final : public TypedSlotCreator {
public:
    std::unique_ptr<VSlot> createSlot(VObject& object, const std::string& name,
                                      int expert_level) const override {
        return std::make_unique<TypedSlot<T>>(&object, name, T(), expert_level, creator_exists);
    }
};

extern template class SORVIK_EXPORT TypedSlot<double>;
extern template class SORVIK_EXPORT TypedSlotCreatorOf<double>;

} // namespace Qelt
