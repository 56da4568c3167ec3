#pragma once

#include <string>

namespace korl {

/// Throws Error if OpenGL has reported an error since it was asked last.
/// @param what, name who has just made calls, as the beginning of the message: light "a".
void requireNoGLError(const char* what, const std::string& name);

} // namespace korl
