#pragma once

#include <string>

namespace korl {

/// What the exception that is being handled is, for messages: `the exception "no such file"`. The exception
/// of a module must be asked while the module is loaded.
std::string thrownText();

} // namespace korl
