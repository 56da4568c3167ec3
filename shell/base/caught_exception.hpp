#pragma once

#include <string>

namespace korl {

/// What the exception that is being handled says to users. A module's own must be asked while the module is
/// loaded.
std::string textOfCaughtException();

} // namespace korl
