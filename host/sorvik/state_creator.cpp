#include <sorvik/state_creator.hpp>

#include <sorvik/value_pool.hpp>

namespace Qelt {

VStateCreatorBase::State::State() = default;
VStateCreatorBase::State::~State() = default;

VStateCreatorBase::VStateCreatorBase() = default;

VStateCreatorBase::~VStateCreatorBase() {
    ValuePool::forget(*this);
}

const Tessan::StrongPtr<VStateCreatorBase::State>& VStateCreatorBase::myState(ValuePool& pool) const {
    if (const auto* const state = pool.findState(*this))
        return *state;
    return pool.keepState(*this, newState());
}

Tessan::StrongPtr<VStateCreatorBase::State> VStateCreatorBase::newState() const {
    return Tessan::makeStrong<State>();
}

} // namespace Qelt
