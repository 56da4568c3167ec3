#include <sorvik/value_pool.hpp>

#include <tessan/living.hpp>

#include <stdexcept>
#include <utility>
#include <vector>

namespace Qelt {

namespace {

/// The pools that live, so that what goes can be dropped from each.
using LivingPools = Tessan::Living<ValuePool>;

} // namespace

VValueBase* ValueMap::getValue(const VParameter& parameter) const noexcept {
    const auto found = my_values.find(&parameter);
    return found == my_values.end() ? nullptr : found->second.get();
}

void ValueMap::setValue(const VParameter& parameter, Tessan::StrongPtr<VValueBase> value) {
    my_values.insert_or_assign(&parameter, std::move(value));
}

bool ValueMap::removeValue(const VParameter& parameter) noexcept {
    return my_values.erase(&parameter) != 0;
}

ValuePool::ValuePool(Tessan::StrongPtr<ValuePool> below) : my_below(std::move(below)) {
    LivingPools::objects().enter(*this);
}

ValuePool::~ValuePool() {
    LivingPools::objects().leave(*this);
}

VValueBase& ValuePool::createVariable(const VParameter& parameter, Tessan::StrongPtr<VValueBase> value) {
    if (!value)
        throw std::invalid_argument("ValuePool::createVariable: a variable needs a value, none was given");
    VValueBase& variable = *value;
    if (VValueBase* const former = my_variables.getValue(parameter); former && former != &variable)
        variable.replace(*former);
    my_variables.setValue(parameter, std::move(value));
    return variable;
}

VValueBase* ValuePool::retrieveValue(const VParameter& parameter) const noexcept {
    for (const ValuePool* pool = this; pool; pool = pool->my_below.get())
        if (VValueBase* const value = pool->my_variables.getValue(parameter))
            return value;
    return nullptr;
}

bool ValuePool::removeVariable(const VParameter& parameter) noexcept {
    return my_variables.removeValue(parameter);
}

const Tessan::StrongPtr<VStateCreatorBase::State>*
ValuePool::findState(const VStateCreatorBase& owner) const noexcept {
    const auto found = my_states.find(&owner);
    return found == my_states.end() ? nullptr : &found->second;
}

const Tessan::StrongPtr<VStateCreatorBase::State>&
ValuePool::keepState(const VStateCreatorBase& owner, Tessan::StrongPtr<VStateCreatorBase::State> state) {
    return my_states.insert_or_assign(&owner, std::move(state)).first->second;
}

void ValuePool::forget(const VParameter& parameter) noexcept {
    std::vector<Tessan::StrongPtr<VValueBase>> dropped; // may take others along that are forgotten in turn
    LivingPools::objects().visitAll([&](ValuePool& pool) {
        if (VValueBase* const value = pool.my_variables.getValue(parameter)) {
            dropped.emplace_back(value);
            pool.my_variables.removeValue(parameter);
        }
    });
}

void ValuePool::forget(const VStateCreatorBase& owner) noexcept {
    std::vector<Tessan::StrongPtr<VStateCreatorBase::State>> dropped;
    LivingPools::objects().visitAll([&](ValuePool& pool) {
        if (const auto held = pool.my_states.extract(&owner))
            dropped.push_back(held.mapped());
    });
}

VRequest::VRequest(Tessan::StrongPtr<ValuePool> pool) : my_pool(std::move(pool)) {
    if (!my_pool)
        throw std::invalid_argument(
            "VRequest: a request needs the value pool of its context, none was given");
}

VRequest::~VRequest() = default;

} // namespace Qelt
