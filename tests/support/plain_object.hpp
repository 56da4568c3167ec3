#pragma once

#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/object.hpp>
#include <sorvik/typed_slot.hpp>

#include <string>

namespace korl::test {

/// Makes known that slot creators exist, as modules do at load, so that slots are torn down without a word.
inline void acknowledgeSlotCreators() {
    Qelt::slot_creators_registered<double> = true;
    Qelt::slot_creators_registered<Orvid::rgba_float_t> = true;
    Qelt::slot_creators_registered<Orvid::PhysicalSpace::point> = true;
    Qelt::slot_creators_registered<Orvid::PhysicalSpace::vector> = true;
}

/// An object with a parameter of each of the four value types.
class PlainObject : public Qelt::VObject {
public:
    explicit PlainObject(const std::string& name, const Qelt::VCreationPreferences& preferences = {})
        : VObject(name, 0, preferences) {
        acknowledgeSlotCreators();
    }

    int updates = 0;
    bool update(Qelt::VRequest&, double) override {
        ++updates;
        return true;
    }

    Qelt::TypedSlot<double> strength{this, "strength", 0.5, 0};
    Qelt::TypedSlot<Orvid::rgba_float_t> tint{this, "tint", {0.1f, 0.2f, 0.3f, 1}, 1};
    Qelt::TypedSlot<Orvid::PhysicalSpace::point> place{this, "place", {1, 2, 3}, 2};
    Qelt::TypedSlot<Orvid::PhysicalSpace::vector> way{this, "way", {0, 0, -1}, 3};
};

} // namespace korl::test
