#pragma once

#include <stdexcept>

namespace korl {

/// Something that was asked of the shell could not be done: a plug-in, model, scene or rendering failed. The
/// text is one to three lines for the user: what was asked, what was found, what to do about it.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace korl
