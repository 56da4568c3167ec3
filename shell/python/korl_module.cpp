// The extension module below the Python package korl: the shell's library as Python calls it, one function
// for each thing to do. Objects go by their name and number, values by their text forms; the package's
// Python files make attributes and types of them. Each call lets go of the interpreter while it waits for its
// turn and while it works.

#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/python/session_class.hpp"

#include "shell/base/file_output.hpp"
#include "shell/base/near_names.hpp"
#include "shell/base/standard_streams.hpp"
#include "shell/image/png.hpp"
#include "shell/plugins/plugin_search_path.hpp"

#include <sorvik/vprintf.hpp>

#include <dlfcn.h>
#include <pybind11/numpy.h>
#include <utility>

namespace korl::python {

const std::filesystem::path& homeFolder() {
    static const std::filesystem::path home = [] {
        Dl_info info;
        ::dladdr(reinterpret_cast<const void*>(&homeFolder), &info);
        std::filesystem::path folder = std::filesystem::canonical(info.dli_fname).parent_path().parent_path();
        for ([[maybe_unused]] const auto& part : std::filesystem::path(KORL_PYTHON_DIR))
            folder = folder.parent_path();
        return folder;
    }();
    return home;
}

namespace {

py::bytes encode(const py::array_t<std::uint8_t, py::array::c_style>& pixels,
                 const std::vector<std::pair<std::string, std::string>>& text) {
    const Image image{static_cast<int>(pixels.shape(1)), static_cast<int>(pixels.shape(0)),
                      std::vector(pixels.data(), pixels.data() + pixels.size())};
    std::vector<std::uint8_t> png;
    {
        const Released released;
        png = encodePng(image, text);
    }
    return {reinterpret_cast<const char*>(png.data()), png.size()};
}

/// Each kind of error as the exception of its kind in korl/_errors.py.
void translateError(std::exception_ptr thrown) {
    const auto raise = [](const char* type, const std::exception& error) {
        const std::string text = printableLines(error.what()); // which may quote bytes that are not text
        PyErr_SetString(py::module_::import("korl._errors").attr(type).ptr(), text.c_str());
    };
    try {
        std::rethrow_exception(std::move(thrown));
    } catch (const ClosedShell& error) {
        raise("ClosedError", error);
    } catch (const UnknownName& error) {
        raise("UnknownNameError", error);
    } catch (const InvalidValue& error) {
        raise("InvalidValueError", error);
    } catch (const WrongType& error) {
        raise("WrongTypeError", error);
    } catch (const Error& error) {
        raise("Error", error);
    }
}

std::vector<std::pair<std::string, std::filesystem::path>> plugins(Shell& shell) {
    std::vector<std::pair<std::string, std::filesystem::path>> loaded;
    for (const PluginLibrary& library : shell.plugins().libraries())
        loaded.emplace_back(library.moduleName(), library.file());
    return loaded;
}

} // namespace

} // namespace korl::python

PYBIND11_MODULE(_korl, module) {
    using namespace korl;
    using namespace korl::python;
    homeFolder(); // while the path of this library still leads to it
    openStandardStreams();
    reportSignalsOfModules(); // those that Python has a handler for stay its own
    py::register_exception_translator(translateError);
    py::enum_<RenderPath>(module, "RenderPath")
        .value("shader", RenderPath::shader)
        .value("fixed", RenderPath::fixed)
        .value("both", RenderPath::both);

    Session session(module, "Session");
    // Python can make none but by opening one: one without a shell in it would crash.
    reinterpret_cast<PyTypeObject*>(session.ptr())->tp_new = nullptr;
    module.def(
        "open_session",
        [](const std::vector<std::filesystem::path>& files) {
            return Holder(new SharedShell(files, pluginSearchPathBelow(homeFolder())));
        },
        InTheBackground());
    session.def("close", &SharedShell::close, InTheBackground());
    session.def("is_closed", &SharedShell::isClosed, InTheBackground());
    session.def("take_reports", &SharedShell::takeReports, InTheBackground());
    add(session, "plugins", plugins);
    add(session, "load", [](Shell& shell, const std::filesystem::path& file) { shell.load({file}); });
    defineObjects(module, session);
    defineScene(module, session);
    defineWork(module, session);

    module.def("encode_png", &encode);
    module.def(
        "write_png",
        [](const std::filesystem::path& file, std::string_view bytes) {
            requirePngName(file);
            writeFileAtomically(file,
                                std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
        },
        InTheBackground());
    module.def("near_names", &nearNames);
    module.def("set_verbosity", &Qelt::setVerbosity);
    py::module_::import("atexit").attr("register")(py::cpp_function(&endWork));
}