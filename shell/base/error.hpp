#pragma once

#include <stdexcept>

namespace korl {

/// Something that was asked of the shell could not be done: a plug-in, model, scene or rendering failed. The
/// text is one to three lines for the user: what was asked, what was found, what to do about it.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// There is nothing of the name that was asked for; the text lists the near ones.
class UnknownName : public Error {
public:
    using Error::Error;
};

/// A value is of the right kind, but not one that can be taken: not finite, out of range, damaged.
class InvalidValue : public Error {
public:
    using Error::Error;
};

/// What was asked for makes no sense for an object of this type, or a value is of another kind.
class WrongType : public Error {
public:
    using Error::Error;
};

} // namespace korl
