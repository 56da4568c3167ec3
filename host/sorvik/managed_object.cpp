#include <sorvik/managed_object.hpp>

#include <atomic>

namespace Qelt {

namespace {

std::atomic<std::uint64_t> managed_objects_made{0};

} // namespace

VManagedObjectBase::VManagedObjectBase() : my_number(++managed_objects_made) {}
VManagedObjectBase::~VManagedObjectBase() = default;

VManagedObject::VManagedObject(std::string name) : my_name(std::move(name)) {}
VManagedObject::~VManagedObject() = default;

} // namespace Qelt
