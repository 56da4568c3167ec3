#pragma once

#include <sorvik/export.hpp>
#include <sorvik/state_creator.hpp>
#include <sorvik/value.hpp>

#include <unordered_map>

namespace Qelt {

class VParameter;

/// Values by the parameter that they belong to. Look-up goes by the parameter's identity, never by its name.
class SORVIK_EXPORT ValueMap {
public:
    /// The value of a parameter, or null if the map holds none.
    VValueBase* getValue(const VParameter& parameter) const noexcept;

    /// Puts a value in, in place of one already there.
    void setValue(const VParameter& parameter, Tessan::StrongPtr<VValueBase> value);

    /// @returns whether there was a value to remove.
    bool removeValue(const VParameter& parameter) noexcept;

private:
    std::unordered_map<const VParameter*, Tessan::StrongPtr<VValueBase>> my_values;
};

/// What one render context knows of the scene's objects that the others don't: values of its own for some
/// parameters, and the states of the objects that keep one for each context.
///
/// A pool may stand over another one, whose values show where it has none itself; below the last pool lies
/// the parameter's global value. Values and states go with the pool, or with the parameter or object that
/// they belong to, whichever goes first.
class SORVIK_EXPORT ValuePool : public Tessan::Counted {
public:
    explicit ValuePool(Tessan::StrongPtr<ValuePool> below = {});
    ValuePool(const ValuePool&) = delete;
    ValuePool& operator=(const ValuePool&) = delete;
    ~ValuePool() override;

    /// Gives the parameter a value of its own in this pool. It is taken as it is, of whatever type, and takes
    /// the place of the one held so far: those that followed that one follow it.
    VValueBase& createVariable(const VParameter& parameter, Tessan::StrongPtr<VValueBase> value);

    /// The parameter's value in this pool or in one below, or null if none has one.
    VValueBase* retrieveValue(const VParameter& parameter) const noexcept;

    /// Whether this pool itself, not one below, has a value for the parameter.
    bool ownsVariable(const VParameter& parameter) const noexcept {
        return my_variables.getValue(parameter) != nullptr;
    }

    /// Takes the parameter's value out of this pool; what lies below shows again. @returns whether there was
    /// one.
    bool removeVariable(const VParameter& parameter) noexcept;

    /// The state that an object keeps in this pool, or null if it has none yet.
    const Tessan::StrongPtr<VStateCreatorBase::State>*
    findState(const VStateCreatorBase& owner) const noexcept;

    /// Keeps a state for an object.
    const Tessan::StrongPtr<VStateCreatorBase::State>&
    keepState(const VStateCreatorBase& owner, Tessan::StrongPtr<VStateCreatorBase::State> state);

    /// Drops what any living pool holds for a parameter or an object that goes.
    static void forget(const VParameter& parameter) noexcept;
    static void forget(const VStateCreatorBase& owner) noexcept;

private:
    Tessan::StrongPtr<ValuePool> my_below;
    ValueMap my_variables;
    std::unordered_map<const VStateCreatorBase*, Tessan::StrongPtr<VStateCreatorBase::State>> my_states;
};

/// A request to bring objects up to date for one render context.
class SORVIK_EXPORT VRequest {
public:
    explicit VRequest(Tessan::StrongPtr<ValuePool> pool);
    virtual ~VRequest();

    /// The pool of the context that asks.
    ValuePool& pool() const noexcept { return *my_pool; }

private:
    Tessan::StrongPtr<ValuePool> my_pool;
};

} // namespace Qelt
