#pragma once

#include <sorvik/export.hpp>
#include <tessan/counted.hpp>

#include <cstdint>
#include <list>
#include <string>
#include <utility>

namespace Qelt {

/// Base of every creator and every object: what the shell can point to, count and tell apart.
class SORVIK_EXPORT VManagedObjectBase : public Tessan::Counted {
public:
    VManagedObjectBase();
    VManagedObjectBase(const VManagedObjectBase&) = delete;
    VManagedObjectBase& operator=(const VManagedObjectBase&) = delete;
    ~VManagedObjectBase() override;

    /// A number that no other managed object of the process has, in the order of their making.
    std::uint64_t number() const noexcept { return my_number; }

private:
    std::uint64_t my_number;
};

/// A managed object with a name.
class SORVIK_EXPORT VManagedObject : public VManagedObjectBase {
public:
    explicit VManagedObject(std::string name);
    ~VManagedObject() override;

    const std::string& Name() const noexcept { return my_name; }

private:
    std::string my_name;
};

/// A managed object that is listed, as long as it lives, with all others of the same `Domain`, which derives
/// from this class. The list is kept in the library that instantiates the template for the domain.
template <class Domain>
class VManagedDomainObject : public VManagedObject {
public:
    explicit VManagedDomainObject(std::string name)
        : VManagedObject(std::move(name)), my_place(members().insert(members().end(), this)) {}
    ~VManagedDomainObject() override { members().erase(my_place); }

    /// The living objects of the domain, in the order of their making.
    static std::list<VManagedDomainObject*>& members() {
        // Never destroyed: objects go as late as in the destructors of other globals.
        static auto& living = *new std::list<VManagedDomainObject*>;
        return living;
    }

private:
    typename std::list<VManagedDomainObject*>::iterator my_place;
};

} // namespace Qelt
