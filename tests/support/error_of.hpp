#pragma once

#include "shell/base/error.hpp"

#include <string>

namespace korl::test {

/// The message of the Error that an action throws, or "no error".
template <class Action>
std::string errorOf(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

} // namespace korl::test
