#pragma once

#include <sorvik/export.hpp>
#include <sorvik/value_trait.hpp>
#include <tessan/ageable.hpp>
#include <tessan/chunk.hpp>
#include <tessan/weak_ptr.hpp>

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Qelt {

class VValueBase;

/// Who is notified when a value changes: its shadows, the values that follow it.
class SORVIK_EXPORT ValueNotifierList {
public:
    /// Tells every shadow that the value has changed: each takes the new age, and tells its own shadows.
    void touch(Tessan::Ageable::Time now);

    /// Adds a value that follows this one. Shadows that have gone are dropped now and then.
    void addShadow(VValueBase& shadow);
    void removeShadow(const VValueBase& shadow);

    /// Takes over the shadows of another list as well, for a value that replaces the other one.
    void copyShadows(const ValueNotifierList& other);

    const std::vector<Tessan::WeakPtr<VValueBase>>& shadows() const noexcept { return my_shadows; }

private:
    std::vector<Tessan::WeakPtr<VValueBase>> my_shadows;
};

/// A value of a parameter, whatever its type.
class SORVIK_EXPORT VValueBase : public Tessan::Counted, public Tessan::Ageable {
public:
    VValueBase() = default;
    /// A copy has neither the source nor the shadows of the original: it stands alone.
    VValueBase(const VValueBase&) : VValueBase() {}
    VValueBase& operator=(const VValueBase&) = delete;
    ~VValueBase() override;

    /// The type of the value itself, such as that of `double`.
    virtual const std::type_info& type() const noexcept = 0;

    /// A new value of this type that holds what this one reads as now.
    virtual Tessan::StrongPtr<VValueBase> clone() const = 0;

    /// Whether the other one is of the same type and reads as the same value.
    virtual bool equals(const VValueBase& other) const = 0;

    /// The value in text form; empty where it cannot be read.
    virtual std::string Text() const = 0;

    /// Sets the value from its text form. @returns false, and changes nothing, if the text is malformed.
    virtual bool setValueFromText(const std::string& text) = 0;

    /// The named part of this value, as a value that can be set; the empty name means the whole of it. The
    /// base has no parts: it gives null for every other name.
    virtual VValueBase* component(std::string_view name);

    /// This value seen as the interface of the given type, or null where it does not offer that. The base
    /// offers none; a typed value offers itself as `VTypedValueBase<T>`.
    virtual void* getInterface(const std::type_info& interface);

    /// Takes over the value that `from` reads as. @returns false, and changes nothing, if it is of another
    /// type or cannot be read.
    virtual bool setContainerValue(const VValueBase& from) = 0;

    /// Makes this value follow another one: it then reads as the source does; null ends that, and the value's
    /// own content shows again. If the source goes, the value cannot be read until it gets another one or
    /// none.
    /// @returns false, and changes nothing, if the source is of another type, or follows this value itself.
    bool setSource(const Tessan::StrongPtr<VValueBase>& source);

    bool hasSource() const noexcept { return my_has_source; }
    /// The value that this one follows, or null if there is none or it has gone.
    VValueBase* source() const noexcept { return my_source.get(); }

    /// Takes the place of another value: those that followed it follow this one from now on.
    void replace(VValueBase& former);

    /// Records a change: stamps this value and all that follow it with a new age.
    void touch();

    ValueNotifierList& notifiers() noexcept { return my_notifiers; }

private:
    friend class ValueNotifierList;

    Tessan::WeakPtr<VValueBase> my_source;
    bool my_has_source = false;
    ValueNotifierList my_notifiers;
};

/// A value of type `T`, held or computed.
template <class T>
class VTypedValueBase : public VValueBase {
public:
    /// Reads the value. @returns false, and leaves `value` alone, if it cannot be read: its source has gone.
    virtual bool getValue(T& value) const = 0;

    const std::type_info& type() const noexcept override { return typeid(T); }

    void* getInterface(const std::type_info& interface) override {
        return interface == typeid(VTypedValueBase<T>) ? this : nullptr;
    }

    bool equals(const VValueBase& other) const override {
        const auto* const typed = dynamic_cast<const VTypedValueBase<T>*>(&other);
        T mine{}, theirs{};
        return typed && getValue(mine) && typed->getValue(theirs) && mine == theirs;
    }

    std::string Text() const override {
        T value{};
        return getValue(value) ? VValueTrait<T>::Text(value) : std::string();
    }
};

/// A value of type `T` that is held in a counted array of one.
template <class T>
class VValue : public VTypedValueBase<T> {
public:
    explicit VValue(const T& value = T()) : my_chunk(1, value) {}

    bool getValue(T& value) const override {
        if (!this->hasSource()) {
            value = my_chunk[0];
            return true;
        }
        const auto* const source = dynamic_cast<const VTypedValueBase<T>*>(this->source());
        return source && source->getValue(value);
    }

    /// Sets the content and tells the followers.
    void setValue(const T& value) {
        my_chunk[0] = value;
        this->touch();
    }

    Tessan::StrongPtr<VValueBase> clone() const override {
        T value = my_chunk[0];
        getValue(value);
        return Tessan::StrongPtr<VValueBase>(new VValue<T>(value));
    }

    bool setValueFromText(const std::string& text) override {
        T value{};
        if (!VValueTrait<T>::setValueFromText(value, text))
            return false;
        setValue(value);
        return true;
    }

    bool setContainerValue(const VValueBase& from) override {
        const auto* const typed = dynamic_cast<const VTypedValueBase<T>*>(&from);
        T value{};
        if (!typed || !typed->getValue(value))
            return false;
        setValue(value);
        return true;
    }

private:
    Tessan::TypedChunk<T> my_chunk;
};

extern template class SORVIK_EXPORT VTypedValueBase<double>;
extern template class SORVIK_EXPORT VValue<double>;
extern template class SORVIK_EXPORT VTypedValueBase<std::string>;
extern template class SORVIK_EXPORT VValue<std::string>;

} // namespace Qelt
