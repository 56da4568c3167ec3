#pragma once

#include <pybind11/pybind11.h>

namespace korl::python {

/// Lets other threads of Python go on as long as it lives: the interpreter's lock is given away, and taken
/// back at the end. A thread that waits for that lock while Python ends would be taken away in the midst of
/// C++, which ends the process at once; from `endWork` on such a thread therefore waits for ever here.
class Released {
public:
    Released();
    ~Released();
    Released(const Released&) = delete;
    Released& operator=(const Released&) = delete;

private:
    PyThreadState* my_state;
};

/// Closes all shells, since Python is about to end, when the work of other threads with them has ended. These
/// don't come back to Python from calls of this module any more. Does nothing in a forked process.
void endWork();

/// Whether `endWork` has begun: long work may as well stop.
bool isEnding();

} // namespace korl::python
