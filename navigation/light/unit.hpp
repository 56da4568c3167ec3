#pragma once

namespace tovek {

/// What one source file of the module registers with the shell; all of it is withdrawn when the unit is
/// destroyed.
class Unit {
public:
    Unit() = default;
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;
    virtual ~Unit() = default;
};

} // namespace tovek
