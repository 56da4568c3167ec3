#include <sorvik/value_pool.hpp>

#include <mutex>
#include <stdexcept>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Qelt {

namespace {

/// The pools that live, so that what goes can be dropped from each. The mutex guards this list alone: views
/// may come and go on threads of their own, while what a pool holds belongs to the render thread. Never
/// destroyed, since a pool may be dropped as late as in the destructor of another global.
struct LivingPools {
    std::mutex mutex;
    std::unordered_set<ValuePool*> pools;
};

LivingPools& livingPools() {
    static auto& living = *new LivingPools;
    return living;
}

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
    const std::lock_guard lock(livingPools().mutex);
    livingPools().pools.insert(this);
}

ValuePool::~ValuePool() {
    const std::lock_guard lock(livingPools().mutex);
    livingPools().pools.erase(this);
}

VValueBase& ValuePool::createVariable(const VParameter& parameter, Tessan::StrongPtr<VValueBase> value) {
    if (!value)
        throw std::invalid_argument("ValuePool::createVariable: a variable needs a value, none was given");
    VValueBase& variable = *value.get();
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

// What is dropped may take others along that are forgotten in turn, so it goes only after the lock.

void ValuePool::forget(const VParameter& parameter) noexcept {
    std::vector<Tessan::StrongPtr<VValueBase>> dropped;
    const std::lock_guard lock(livingPools().mutex);
    for (ValuePool* const pool : livingPools().pools)
        if (VValueBase* const value = pool->my_variables.getValue(parameter)) {
            dropped.emplace_back(value);
            pool->my_variables.removeValue(parameter);
        }
}

void ValuePool::forget(const VStateCreatorBase& owner) noexcept {
    std::vector<Tessan::StrongPtr<VStateCreatorBase::State>> dropped;
    const std::lock_guard lock(livingPools().mutex);
    for (ValuePool* const pool : livingPools().pools)
        if (const auto held = pool->my_states.extract(&owner))
            dropped.push_back(held.mapped());
}

VRequest::VRequest(Tessan::StrongPtr<ValuePool> pool) : my_pool(std::move(pool)) {
    if (!my_pool)
        throw std::invalid_argument(
            "VRequest: a request needs the value pool of its context, none was given");
}

VRequest::~VRequest() = default;

} // namespace Qelt
