#pragma once

#include <tessan/strong_ptr.hpp>

#include <functional>

namespace korl::test {

/// A counted object that says when it goes, and does at its end what it is told.
struct Thing : Tessan::Counted {
    explicit Thing(int* deaths_counted = nullptr) : deaths(deaths_counted) {}
    ~Thing() override {
        if (at_death)
            at_death(*this);
        if (deaths)
            ++*deaths;
    }
    void unreferenced() override {
        if (at_last_release)
            at_last_release(*this);
    }

    int* deaths;
    std::function<void(Thing&)> at_death, at_last_release;
};

struct DerivedThing : Thing {
    using Thing::Thing;
};

} // namespace korl::test
