#pragma once

#include <string>

namespace korl {

// Both look at the exception that is being handled. A module's own must be looked at while the module is
// loaded.

/// What it says to users.
std::string textOfCaughtException();

/// What it is, as part of a message: `the exception "no such file"`.
std::string nameOfCaughtException();

} // namespace korl
