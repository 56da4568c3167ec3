#pragma once

#include "shell/python/interpreter.hpp"
#include "shell/session/shared_shell.hpp"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace korl::python {

namespace py = pybind11;

/// Lets other threads of Python go on while a call waits for its turn and works.
using InTheBackground = py::call_guard<Released>;

/// A shell goes like all work with it: without the interpreter, which others need meanwhile.
struct Deleter {
    void operator()(SharedShell* shell) const {
        const Released released;
        delete shell;
    }
};
using Holder = std::unique_ptr<SharedShell, Deleter>;
using Session = py::class_<SharedShell, Holder>;

/// Work with a shell as a method: `work(shell, arguments...)`, in turn and without the interpreter.
template <class Result, class... Arguments>
auto inTurn(Result (*work)(Shell&, Arguments...)) {
    return [work](SharedShell& shared, Arguments... arguments) {
        return shared.use([&](Shell& shell) { return work(shell, arguments...); });
    };
}

/// Adds a method that works with the shell in turn.
template <class Work>
void add(Session& session, const char* name, Work work) {
    session.def(name, inTurn(+work), InTheBackground());
}

/// Lets Python handle its signals, then runs what it is given, with the interpreter. Throws Error where
/// Python raised an exception, so that the work ends.
using Interrupt = std::function<void(const std::function<void()>&)>;

/// Works with the shell in turn and without the interpreter. The work calls `Interrupt` now and then: what
/// Python raised there, such as at a Ctrl-C, is raised here in the end.
void workWithInterrupts(SharedShell& shared, const std::function<void(Shell&, const Interrupt&)>& work);

/// Reading models with the shell's limits, which ends with a Ctrl-C.
ModelReading interruptibleReading(Shell& shell, const Interrupt& interrupt);

/// The folder of the build or the installation that this library belongs to. To be asked for once while the
/// module is imported: the library's path may be relative to the directory of that moment.
const std::filesystem::path& homeFolder();

/// Adds the methods for objects and their parameters, and the types of values that they give.
void defineObjects(py::module_& module, Session& session);

/// Adds the methods for what is seen: views, meshes, camera, background, pictures.
void defineScene(py::module_& module, Session& session);

/// Adds the methods for scene files, rigs, scripts, sequences and explanations.
void defineWork(py::module_& module, Session& session);

} // namespace korl::python
