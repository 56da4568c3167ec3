#pragma once

#include <sorvik/creation_preferences.hpp>
#include <sorvik/export.hpp>
#include <sorvik/value.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Qelt {

class VObject;
class ValuePool;

/// A named parameter of an object. It holds a global value, and render contexts may give it values of their
/// own.
class SORVIK_EXPORT VParameter : public Tessan::Counted {
public:
    using Property = std::pair<std::string, Tessan::StrongPtr<VValueBase>>;

    /// @param value the global value to start with; what it reads as now is the parameter's default.
    /// @param preferences may ask for another first value by the parameter's name. A text that is malformed
    /// for the
    ///        type is reported with `Vprintf` at verbosity 0, and the default stays.
    VParameter(Tessan::StrongPtr<VValueBase> value, std::string name,
               const VCreationPreferences& preferences = {});
    VParameter(const VParameter&) = delete;
    VParameter& operator=(const VParameter&) = delete;
    ~VParameter() override;

    const std::string& Name() const noexcept { return my_name; }

    /// The type of the parameter's values.
    const std::type_info& type() const noexcept { return my_default->type(); }

    /// The value that the parameter had before anything was set.
    const VValueBase& DefaultValue() const noexcept { return *my_default; }

    /// The value that holds in every context that has none of its own.
    const VValueBase& globalValue() const noexcept { return *my_value; }

    /// Says which object the parameter belongs to.
    void setCreator(VObject* object) noexcept;
    /// The object that the parameter belongs to, or null: none was named, or it has gone.
    VObject* creator() const noexcept { return my_creator.get(); }

    /// Attaches a property for the shell's editors: "min" and "max", values of the parameter's type, by which
    /// nothing is clamped; "unit" and "description", values of type `std::string`.
    /// @returns whether it was written: not if the parameter carries the name already with an equal value.
    bool setProperty(const std::string& name, const VValueBase& value);

    /// The property of this name, or null.
    const VValueBase* property(std::string_view name) const noexcept;
    const std::vector<Property>& properties() const noexcept { return my_properties; }

    /// The value of the parameter in a context: the pool's own, else the source's if the parameter follows
    /// another one, else the global value.
    /// @param component the part of the value that is asked for; the empty name means the whole of it.
    /// @param own if set and the pool has no value of its own for the parameter, one is made first that
    /// starts as
    ///        what the context reads now.
    /// @returns null if there is nothing to read: the source has gone, or the value has no such part.
    VValueBase* getLocalValue(ValuePool& pool, std::string_view component = {}, bool own = false) const;

    /// Sets the global value; what the parameter follows, and contexts with a value of their own, go before
    /// it. Traced at verbosity 50. @returns false, and changes nothing, if the value is of another type or
    /// cannot be read.
    bool setGlobalValue(const VValueBase& value);

    /// The same from a text form. @returns false, and changes nothing, if the text is malformed.
    bool setGlobalValueFromText(const std::string& text);

    /// Makes the parameter follow another one, context by context; null ends that. The source's values are
    /// fetched when they are asked for: its changes are not announced to the follower.
    /// @returns false, and changes nothing, if the source is of another type, or follows this parameter
    /// itself.
    bool setSource(const Tessan::StrongPtr<VParameter>& source);

    bool hasSource() const noexcept { return my_has_source; }
    /// The parameter that this one follows, or null if there is none or it has gone.
    VParameter* source() const noexcept { return my_source.get(); }

private:
    std::string my_name;
    Tessan::StrongPtr<VValueBase> my_default;
    Tessan::StrongPtr<VValueBase> my_value;
    Tessan::WeakPtr<VObject> my_creator;
    std::vector<Property> my_properties;
    Tessan::WeakPtr<VParameter> my_source;
    bool my_has_source = false;
};

/// A parameter of values of type `T`.
template <class T>
class VValueParameter : public VParameter {
public:
    VValueParameter(const T& initial_value, std::string name, const VCreationPreferences& preferences = {})
        : VParameter(Tessan::StrongPtr<VValueBase>(new VValue<T>(initial_value)), std::move(name),
                     preferences) {}
};

extern template class SORVIK_EXPORT VValueParameter<double>;

} // namespace Qelt
