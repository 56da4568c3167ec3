#pragma once

#include <sorvik/value.hpp>

#include <string>

namespace korl::test {

/// A value that is computed, not held: it is a `VTypedValueBase<T>`, but no `VValue<T>`.
template <class T>
class ComputedValue final : public Qelt::VTypedValueBase<T> {
public:
    explicit ComputedValue(const T& result) : my_result(result) {}

    bool getValue(T& value) const override {
        value = my_result;
        return true;
    }
    Tessan::StrongPtr<Qelt::VValueBase> clone() const override {
        return Tessan::StrongPtr<Qelt::VValueBase>(new ComputedValue(my_result));
    }
    bool setValueFromText(const std::string&) override { return false; }
    bool setContainerValue(const Qelt::VValueBase&) override { return false; }

private:
    T my_result;
};

} // namespace korl::test
