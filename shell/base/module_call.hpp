#pragma once

#include "shell/base/error.hpp"

#include <sorvik/managed_object.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <typeinfo>

namespace korl {

/// A call of the shell into the code of a module. As long as it lives, whoever ends the program meanwhile can
/// be told: which module, which object, which operation. It costs a few stores and no memory, so that even
/// the calls of a frame with many lights can have one each.
class ModuleCall {
public:
    /// @param object a creator or an object, whose name and whose class's module are told.
    /// @param operation a literal, such as "illuminate".
    ModuleCall(const Qelt::VManagedObject& object, const char* operation) noexcept
        : ModuleCall(typeid(object), object.Name(), operation) {}

    /// The same for what belongs to an object, such as its light source.
    /// @param type of the class whose code is called.
    /// @param object the object's name.
    ModuleCall(const std::type_info& type, const std::string& object, const char* operation) noexcept
        : ModuleCall(&type, &object, nullptr, operation) {}

    /// A call that is of no object. The module's name must live as long as this.
    ModuleCall(const std::string& module, const char* operation) noexcept
        : ModuleCall(nullptr, nullptr, &module, operation) {}

    ~ModuleCall();
    ModuleCall(const ModuleCall&) = delete;
    ModuleCall& operator=(const ModuleCall&) = delete;

    /// Makes the call: `work()`. What the module throws becomes an Error that says where it came from.
    template <class Work>
    decltype(auto) run(Work work) const {
        try {
            return work();
        } catch (const Error&) {
            throw; // the shell's own
        } catch (...) {
            failed();
        }
    }

    /// Hands out the text that tells of the call, piece by piece: `illuminate of "lamp" in the module
    /// "lamps"`.
    template <class Take>
    void describe(Take take) const;

private:
    ModuleCall(const std::type_info* type, const std::string* object, const std::string* module,
               const char* operation) noexcept;
    [[noreturn]] void failed() const;

    const std::type_info* my_type;
    bool my_is_of_object;
    /// The object's name, or the beginning of it: a copy, since a module that exits takes its objects along
    /// before it can be told of.
    std::array<char, 200> my_object;
    std::size_t my_object_size;
    const std::string* my_module;
    const char* my_operation;
    const ModuleCall* my_outer; ///< what this thread was at before
};

/// From now on a module that ends the process with `exit` while it is called has that said on standard error,
/// and the exit code is 1. It is seen on the thread that makes the call; an `exit` on a thread that the
/// module has started, and `_exit` anywhere, are not.
void reportExitsOfModules();

/// From now on a signal that ends the process while a module is called has that said on standard error, and
/// then takes its course. Signals with a handler stay as they are, and so does one on a thread that is in no
/// call. To be called on the main thread.
void reportSignalsOfModules();

} // namespace korl
