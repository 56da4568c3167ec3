#pragma once

#include <sorvik/export.hpp>
#include <tessan/strong_ptr.hpp>

namespace Qelt {

class ValuePool;

/// An object that keeps a state of its own for each value pool, that is, for each render context.
class SORVIK_EXPORT VStateCreatorBase {
public:
    /// What an object keeps for one pool. The pool owns it.
    class SORVIK_EXPORT State : public Tessan::Counted {
    public:
        State();
        ~State() override;
    };

    VStateCreatorBase();
    VStateCreatorBase(const VStateCreatorBase&) = delete;
    VStateCreatorBase& operator=(const VStateCreatorBase&) = delete;
    /// Every pool drops the state that it holds for the object.
    virtual ~VStateCreatorBase();

    /// This object's state in a pool, made by `newState` on the first call and the same one on every later
    /// call. The reference holds until the pool or the object goes.
    const Tessan::StrongPtr<State>& myState(ValuePool& pool) const;

    /// Makes a new state. The base makes an empty one, for objects that keep nothing for a context.
    virtual Tessan::StrongPtr<State> newState() const;
};

} // namespace Qelt
