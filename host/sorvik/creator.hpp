#pragma once

#include <sorvik/action_notifier.hpp>
#include <sorvik/creation_preferences.hpp>
#include <sorvik/creator_properties.hpp>
#include <sorvik/export.hpp>
#include <sorvik/initialization.hpp>
#include <sorvik/managed_object.hpp>
#include <sorvik/object.hpp>
#include <sorvik/vprintf.hpp>
#include <tessan/weak_ptr.hpp>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Qelt {

/// Makes the objects of one type. As long as it lives it stands in the catalogue of the process.
class SORVIK_EXPORT VCreatorBase : public VManagedObject {
public:
    /// @param properties what the creator says of itself; its name is the creator's.
    /// @param number where it stands in the catalogue, lowest first.
    /// @param preferences what every object that it makes starts with.
    /// @param hidden leaves it out of the catalogue; it can be found by name all the same.
    /// @param version_key the interface that it was built against. A creator for another interface is
    /// reported with
    ///        `Vprintf` at verbosity 0 and can neither be listed nor found.
    VCreatorBase(const VCreatorProperties& properties, int number, const VCreationPreferences& preferences,
                 bool hidden, const char* version_key);

    /// The same for a creator that has a plain name and no further properties.
    VCreatorBase(const std::string& name, int number, const VCreationPreferences& preferences, bool hidden,
                 const char* version_key);

    /// Leaves the catalogue.
    ~VCreatorBase() override;

    const VCreatorProperties& properties() const noexcept { return my_properties; }
    int creatorNumber() const noexcept { return my_number; }
    const VCreationPreferences& preferences() const noexcept { return my_preferences; }

    /// The creator's key: category and name with the separator between them, for a plain name the name alone.
    std::string keyname(std::string_view separator) const { return my_properties.keyname(separator); }

    /// The identity of the type that it makes.
    virtual const std::type_info& type() const noexcept = 0;

    /// Makes an object.
    /// @param name the object's name; empty for the creator's own.
    /// @param context handed on to those who are told of the new object.
    /// @param preferences go before those of the creator.
    virtual Tessan::StrongPtr<VObject> create(const std::string& name, VContext* context = nullptr,
                                              const VCreationPreferences& preferences = {}) = 0;

    /// A name for a new object: the creator's own, numbered where it is taken ("Torch", "Torch2").
    /// @param number where to go on counting, for a caller that makes many; it holds the number used.
    std::string createChildname(const std::function<bool(const std::string&)>& taken,
                                unsigned long& number) const;
    std::string createChildname(const std::function<bool(const std::string&)>& taken) const;

    /// Deletes every living object whose type is exactly `type`, the latest first, in spite of strong
    /// pointers to it. Another type of the same name, of another module or file, is not meant.
    /// @returns how many there were.
    static std::size_t deleteAllInstances(const std::type_info& type);

    /// The creators that are not hidden: by creator number, then by the time of their registration.
    static std::vector<VCreatorBase*> catalogue();

    /// The first creator of this name in the order of the catalogue, a hidden one included; null if there is
    /// none.
    static VCreatorBase* find(std::string_view name);

protected:
    /// Takes the creator of a type out of the catalogue. The last one of the types of a library tells the
    /// notifiers.
    void leaveCatalogue(const std::type_info& type);

private:
    void enterCatalogue(const char* version_key);

    VCreatorProperties my_properties;
    int my_number;
    VCreationPreferences my_preferences;
    bool my_hidden;
};

/// What takes other objects as input.
class SORVIK_EXPORT VSinkBase {
public:
    VSinkBase();
    virtual ~VSinkBase();

    /// The inputs of `object` that take a value of the declared input type from `offered`, in the order of
    /// their making; none if there is no such type, or nothing of that type in `offered`.
    AcceptList acceptedInputs(const VObject& object, const VObject& offered) const;

    /// The declared input type, or null.
    virtual const std::type_info* inputType() const noexcept = 0;
};

/// A sink that takes values of type `From` into objects of type `To`.
template <class From, class To>
class VSink : public VSinkBase {
public:
    const std::type_info* inputType() const noexcept override { return &typeid(From); }
};

/// The sink of a type that is made from nothing.
template <class To>
class VSink<To, void> : public VSinkBase {
public:
    const std::type_info* inputType() const noexcept override { return nullptr; }
};

/// The creator of objects of type `T`, which has a constructor from a name and creation preferences.
/// `Input` is the type of value from which the shell offers to create one, or `void`.
template <class T, class Input>
class VCreator final : public VCreatorBase,
                       public std::conditional_t<std::is_void_v<Input>, VSink<T, void>, VSink<Input, T>> {
public:
    /// @param identity a record of properties, or a plain name.
    template <class Identity>
    VCreator(const Identity& identity, int number)
        : VCreatorBase(identity, number, VCreationPreferences(), false, VInitialization::interfaceKey) {
        Vprintf(100, "VCreator::VCreator(%s,%d)\n", keyname("/").c_str(), number);
        std::fflush(stdout);
    }

    /// No object of the type outlives its creator.
    ~VCreator() override {
        deleteAllInstances(typeid(T));
        leaveCatalogue(typeid(T));
    }

    const std::type_info& type() const noexcept override { return typeid(T); }

    Tessan::StrongPtr<VObject> create(const std::string& name, VContext* context = nullptr,
                                      const VCreationPreferences& preferences = {}) override {
        Vprintf(100, "VCreator::create(%s)\n", name.c_str());
        Tessan::StrongPtr<VObject> object(
            new T(name.empty() ? Name() : name, VCreationPreferences(this->preferences(), preferences)));
        Vprintf(100, "VCreator::create(%s) got derived object\n", name.c_str());
        object->setCreator(Tessan::WeakPtr<VCreatorBase>(this));
        object->enableRequestProcessing();
        VActionNotifier::VObjectCreation(object, context, *this);
        return object;
    }
};

} // namespace Qelt
