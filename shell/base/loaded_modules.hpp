#pragma once

#include <string>
#include <string_view>

namespace korl {

/// Enters a module that was loaded, so that what lies in its library is known to be the module's.
/// @param handle of the loader for the library.
/// @param address of anything in the library.
void enterModule(std::string name, const void* handle, const void* address);

/// Takes out a module that was entered with this handle; once for each time that it was.
void leaveModule(const void* handle);

/// The name of the entered module in whose library an address lies; empty where there is none. It may be
/// asked in a signal handler.
std::string_view moduleAt(const void* address) noexcept;

} // namespace korl
