#include "shell/python/interpreter.hpp"

#include "shell/session/shared_shell.hpp"

#include <atomic>
#include <chrono>
#include <thread>
#include <unistd.h>

namespace korl::python {

namespace {

std::atomic<bool> is_ending = false;
std::atomic<int> returning = 0;        ///< threads that take the interpreter's lock back
thread_local bool ends_python = false; ///< whether this is the thread on which Python ends

} // namespace

Released::Released() : my_state(PyEval_SaveThread()) {}

Released::~Released() {
    ++returning; // before the question: either this thread sees the end, or the end sees this thread
    if (is_ending && !ends_python) {
        --returning;
        while (true)
            ::pause();
    }
    PyEval_RestoreThread(my_state);
    --returning;
}

void endWork() {
    if (SharedShell::isForked())
        return; // what other threads of the parent did would never end here
    ends_python = true;
    const pybind11::gil_scoped_release released;
    is_ending = true;
    while (returning > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    SharedShell::closeAllForGood();
}

bool isEnding() {
    return is_ending;
}

} // namespace korl::python
