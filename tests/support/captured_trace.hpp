#pragma once

#include <sorvik/vprintf.hpp>

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace korl::test {

/// What `action` prints on standard output at the given verbosity of the shell.
template <class Action>
std::string traceOf(int verbosity, Action action) {
    testing::internal::CaptureStdout();
    Qelt::setVerbosity(verbosity);
    action();
    Qelt::setVerbosity(0);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

} // namespace korl::test
