// The extension module below the Python package korl: the shell's library as Python calls it, one function
// for each thing to do. Objects go by their name and number, values by their text forms; the package's
// Python files make attributes and types of them. Each call lets go of the interpreter while it waits for its
// turn and while it works.

#include "shell/plugins/plugin_search_path.hpp"
#include "shell/render/png.hpp"
#include "shell/scene/aiming.hpp"
#include "shell/scene/builtin_scene.hpp"
#include "shell/scene/color_text.hpp"
#include "shell/scene/file_output.hpp"
#include "shell/scene/mesh_arrays.hpp"
#include "shell/scene/model_import.hpp"
#include "shell/scene/near_names.hpp"
#include "shell/scene/type_info.hpp"
#include "shell/scene/value_kind.hpp"
#include "shell/session/shared_shell.hpp"

#include <palune/geometry_traits.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/vprintf.hpp>

#include <array>
#include <dlfcn.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>
#include <tuple>

namespace py = pybind11;

namespace {

using namespace korl;
using Files = std::vector<std::filesystem::path>;
using Triple = std::array<double, 3>;
using CameraValues = std::tuple<Triple, Triple, Triple, double>; ///< position, target, up, field of view
using Released = py::call_guard<py::gil_scoped_release>;

/// The picture's shape that a camera is fitted to where none is known: that of 640 x 480 pixels.
constexpr double usual_aspect = 4.0 / 3;

/// An object of a scene as Python holds it: it may be gone, and its name taken by another one.
struct Handle {
    std::string name;
    std::uint64_t number;

    bool operator==(const Handle&) const = default;
};

Handle handleOf(const Qelt::VObject& object) {
    return {object.Name(), object.number()};
}

/// The name of an object that is still there. Throws Error for one that is gone.
const std::string& living(const Scene& scene, const Handle& handle) {
    const Qelt::VObject* const found = scene.find(handle.name);
    if (!found || found->number() != handle.number)
        throw Error("the object \"" + handle.name + "\" has been deleted");
    return handle.name;
}

/// The folder of the build or the installation that this library belongs to. Asked for once, while the
/// module is imported: its path may be relative to the directory of that moment.
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

/// A shell goes like all work with it: without the interpreter, which others need meanwhile.
struct Deleter {
    void operator()(SharedShell* shell) const {
        const py::gil_scoped_release released;
        delete shell;
    }
};
using Holder = std::unique_ptr<SharedShell, Deleter>;

/// What a parameter reads as in a view; nothing where what it follows is gone.
std::optional<std::string> readValue(Shell& shell, const Handle& object, const std::string& name,
                                     const std::string& view) {
    const Qelt::VParameter& parameter = shell.scene().parameter(living(shell.scene(), object), name);
    const Qelt::VValueBase* const value = parameter.getLocalValue(shell.view(view).pool());
    return value ? std::optional(value->Text()) : std::nullopt;
}

std::optional<std::pair<Handle, std::string>> sourceOf(Shell& shell, const Handle& object,
                                                       const std::string& name) {
    const Qelt::VParameter* const source =
        shell.scene().parameter(living(shell.scene(), object), name).source();
    if (!source || !source->creator())
        return std::nullopt;
    return std::pair(handleOf(*source->creator()), source->Name());
}

Camera fitted(const Scene& scene, double aspect, double fov_degrees) {
    return fitCamera(scene.boundingBall().value_or(Ball{{0, 0, 0}, 1}), aspect, fov_degrees);
}

/// The scene's camera or, where none was set, one that is fitted to the scene.
Camera cameraOf(const Scene& scene, const std::optional<double>& fov = {}) {
    return scene.camera ? *scene.camera : fitted(scene, usual_aspect, fov.value_or(Camera().fov_degrees));
}

CameraValues cameraValues(const Camera& camera) {
    const auto triple = [](const glm::dvec3& value) { return Triple{value.x, value.y, value.z}; };
    return {triple(camera.position), triple(camera.target), triple(camera.up), camera.fov_degrees};
}

glm::dvec3 vectorOf(const Triple& triple) {
    return {triple[0], triple[1], triple[2]};
}

/// Changes what is given. A camera that was fitted so far first takes its place for the new field of view.
void setCamera(Shell& shell, const std::optional<Triple>& position, const std::optional<Triple>& target,
               const std::optional<Triple>& up, const std::optional<double>& fov) {
    Scene& scene = shell.scene();
    Camera camera = cameraOf(scene, fov);
    const auto change = [](glm::dvec3& value, const std::optional<Triple>& given) {
        value = given ? vectorOf(*given) : value;
    };
    change(camera.position, position);
    change(camera.target, target);
    change(camera.up, up);
    camera.fov_degrees = fov.value_or(camera.fov_degrees);
    validate(camera);
    scene.camera = camera;
}

void fitTheCamera(Shell& shell, double aspect) {
    Scene& scene = shell.scene();
    const Camera camera = fitted(scene, aspect, cameraOf(scene).fov_degrees);
    validate(camera);
    scene.camera = camera;
}

using FloatRows = py::array_t<float, py::array::c_style>;
using IndexRows = py::array_t<std::uint32_t, py::array::c_style>;

/// The rows of an array of three columns, where they lie.
template <class Row, class Array>
std::span<const Row> rowsOf(const Array& array) {
    static_assert(sizeof(Row) == 3 * sizeof(*array.data()));
    return {reinterpret_cast<const Row*>(array.data()), static_cast<std::size_t>(array.shape(0))};
}

void addMesh(SharedShell& shell, const std::string& name, const FloatRows& vertices,
             const IndexRows& triangles, const FloatRows& normals, const FloatRows& colors) {
    const MeshArrays arrays{rowsOf<glm::vec3>(vertices), rowsOf<glm::uvec3>(triangles),
                            rowsOf<glm::vec3>(normals), rowsOf<glm::vec3>(colors)};
    const py::gil_scoped_release released;
    Mesh mesh = meshFromArrays(name, arrays);
    shell.use([&](Shell& used) { used.scene().addMesh(std::move(mesh)); });
}

py::bytes encode(const py::array_t<std::uint8_t, py::array::c_style>& pixels,
                 const std::vector<std::pair<std::string, std::string>>& text) {
    const Image image{static_cast<int>(pixels.shape(1)), static_cast<int>(pixels.shape(0)),
                      std::vector(pixels.data(), pixels.data() + pixels.size())};
    std::vector<std::uint8_t> png;
    {
        const py::gil_scoped_release released;
        png = encodePng(image, text);
    }
    return {reinterpret_cast<const char*>(png.data()), png.size()};
}

/// Each kind of error as the exception of its kind in korl/_errors.py.
void translateError(std::exception_ptr thrown) {
    const auto raise = [](const char* type, const std::exception& error) {
        PyErr_SetString(py::module_::import("korl._errors").attr(type).ptr(), error.what());
    };
    try {
        std::rethrow_exception(thrown);
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

/// Work with a shell as a method: `work(shell, arguments...)`, in turn and without the interpreter.
template <class Result, class... Arguments>
auto inTurn(Result (*work)(Shell&, Arguments...)) {
    return [work](SharedShell& shared, Arguments... arguments) {
        return shared.use([&](Shell& shell) { return work(shell, arguments...); });
    };
}

std::vector<std::pair<std::string, std::filesystem::path>> plugins(Shell& shell) {
    std::vector<std::pair<std::string, std::filesystem::path>> loaded;
    for (const PluginLibrary& library : shell.plugins().libraries())
        loaded.emplace_back(library.moduleName(), library.file());
    return loaded;
}

std::vector<std::pair<Handle, std::string>> objects(Shell& shell) {
    std::vector<std::pair<Handle, std::string>> listed;
    for (const auto& object : shell.scene().objects())
        listed.emplace_back(handleOf(*object.get()), object->creator() ? object->creator()->Name() : "");
    return listed;
}

std::optional<Handle> soloLight(Shell& shell) {
    const Qelt::VObject* const light = shell.scene().soloLight();
    return light ? std::optional(handleOf(*light)) : std::nullopt;
}

std::vector<std::string> viewNames(Shell& shell) {
    std::vector<std::string> names;
    for (const auto& [name, pool] : shell.scene().views())
        names.push_back(name);
    return names;
}

std::vector<std::tuple<std::string, std::size_t, std::size_t>> meshes(Shell& shell) {
    std::vector<std::tuple<std::string, std::size_t, std::size_t>> listed;
    for (const auto& mesh : shell.scene().meshes())
        listed.emplace_back(mesh->name, mesh->positions.size(), mesh->triangles.size() / 3);
    return listed;
}

void defineValues(py::module_& module) {
    py::class_<Handle>(module, "Handle")
        .def_readonly("name", &Handle::name)
        .def_readonly("number", &Handle::number);
    py::class_<ParameterInfo>(module, "ParameterInfo")
        .def_readonly("name", &ParameterInfo::name)
        .def_readonly("kind", &ParameterInfo::kind)
        .def_readonly("default", &ParameterInfo::default_text)
        .def_readonly("minimum", &ParameterInfo::minimum)
        .def_readonly("maximum", &ParameterInfo::maximum)
        .def_readonly("unit", &ParameterInfo::unit)
        .def_readonly("level", &ParameterInfo::expert_level);
    py::class_<TypeInfo>(module, "TypeInfo")
        .def_readonly("name", &TypeInfo::name)
        .def_readonly("category", &TypeInfo::category)
        .def_readonly("doc", &TypeInfo::description)
        .def_readonly("parameters", &TypeInfo::parameters);
    py::class_<Image>(module, "Pixels", py::buffer_protocol()).def_buffer([](Image& image) {
        const auto width = static_cast<py::ssize_t>(image.width);
        return py::buffer_info(image.pixels.data(),
                               {static_cast<py::ssize_t>(image.height), width, py::ssize_t{4}},
                               {4 * width, py::ssize_t{4}, py::ssize_t{1}});
    });
}

using Session = py::class_<SharedShell, Holder>;

/// Adds a method that works with the shell in turn.
template <class Work>
void add(Session& session, const char* name, Work work) {
    session.def(name, inTurn(+work), Released());
}

void defineObjects(Session& session) {
    add(session, "types", [](Shell&) { return knownTypes(); });
    add(session, "create", [](Shell& shell, const std::string& type, const std::string& name) {
        return handleOf(shell.scene().create(type, name));
    });
    add(session, "find",
        [](Shell& shell, const std::string& name) { return handleOf(shell.scene().object(name)); });
    add(session, "objects", objects);
    add(session, "remove", [](Shell& shell, const std::string& name) { shell.scene().remove(name); });
    add(session, "type_of", [](Shell& shell, const Handle& object) {
        const auto& creator = shell.scene().object(living(shell.scene(), object)).creator();
        return creator ? creator->Name() : std::string();
    });
    add(session, "parameters", [](Shell& shell, const Handle& object) {
        return parametersOf(shell.scene().object(living(shell.scene(), object)));
    });
    add(session, "kind", [](Shell& shell, const Handle& object, const std::string& name) {
        return valueKind(shell.scene().parameter(living(shell.scene(), object), name).type());
    });
    add(session, "value", readValue);
    add(session, "set",
        [](Shell& shell, const Handle& object, const std::string& name, const std::string& text,
           const std::string& view) {
            shell.scene().setParameter(living(shell.scene(), object), name, text, view);
        });
    add(session, "reset",
        [](Shell& shell, const Handle& object, const std::string& name, const std::string& view) {
            shell.scene().resetParameter(living(shell.scene(), object), name, view);
        });
    add(session, "follow",
        [](Shell& shell, const Handle& object, const std::string& name, const Handle& source,
           const std::string& source_name) {
            Scene& scene = shell.scene();
            scene.connect(living(scene, object), name, living(scene, source), source_name);
        });
    add(session, "unfollow", [](Shell& shell, const Handle& object, const std::string& name) {
        shell.scene().disconnect(living(shell.scene(), object), name);
    });
    add(session, "source", sourceOf);
    add(session, "is_muted", [](Shell& shell, const Handle& object) {
        return shell.scene().isMuted(shell.scene().object(living(shell.scene(), object)));
    });
    add(session, "set_muted", [](Shell& shell, const Handle& object, bool muted) {
        shell.scene().setMuted(living(shell.scene(), object), muted);
    });
    add(session, "solo",
        [](Shell& shell, const Handle& light) { shell.scene().solo(living(shell.scene(), light)); });
    add(session, "end_solo", [](Shell& shell) { shell.scene().solo({}); });
    add(session, "solo_light", soloLight);
    add(session, "aim_at", [](Shell& shell, const Handle& light, const Triple& point) {
        aimAt(shell.scene(), living(shell.scene(), light), vectorOf(point));
    });
    add(session, "shine_from", [](Shell& shell, const Handle& light, const Triple& direction) {
        shineFrom(shell.scene(), living(shell.scene(), light), vectorOf(direction));
    });
}

void defineScene(Session& session) {
    add(session, "views", viewNames);
    add(session, "add_view", [](Shell& shell, const std::string& name) { shell.scene().addView(name); });
    add(session, "remove_view",
        [](Shell& shell, const std::string& name) { shell.scene().removeView(name); });
    add(session, "meshes", meshes);
    add(session, "add_model", [](Shell& shell, const std::filesystem::path& file, const std::string& up) {
        shell.scene().addMesh(importModel(file, parseUpAxis(up)));
    });
    session.def("add_mesh", &addMesh);
    add(session, "add_landscape", [](Shell& shell) {
        for (Mesh& mesh : builtinScene())
            shell.scene().addMesh(std::move(mesh));
    });
    add(session, "camera", [](Shell& shell) { return cameraValues(cameraOf(shell.scene())); });
    add(session, "set_camera", setCamera);
    add(session, "fit_camera", fitTheCamera);
    add(session, "background",
        [](Shell& shell) { return Qelt::VValueTrait<Orvid::rgba_float_t>::Text(shell.scene().background); });
    add(session, "set_background",
        [](Shell& shell, const std::string& text) { shell.scene().background = parseColor(text); });
    add(session, "render", [](Shell& shell, int width, int height, RenderPath path, const std::string& view) {
        return shell.render({width, height, path}, view);
    });
}

} // namespace

PYBIND11_MODULE(_korl, module) {
    homeFolder();
    py::register_exception_translator(translateError);
    defineValues(module);
    py::enum_<RenderPath>(module, "RenderPath")
        .value("shader", RenderPath::shader)
        .value("fixed", RenderPath::fixed)
        .value("both", RenderPath::both);

    Session session(module, "Session");
    session.def(py::init([](const Files& files) {
                    return Holder(new SharedShell(files, pluginSearchPathBelow(homeFolder())));
                }),
                Released());
    session.def("close", &SharedShell::close, Released());
    session.def("is_closed", &SharedShell::isClosed, Released());
    session.def("take_reports", &SharedShell::takeReports, Released());
    add(session, "plugins", plugins);
    add(session, "load", [](Shell& shell, const std::filesystem::path& file) { shell.plugins().load(file); });
    defineObjects(session);
    defineScene(session);

    module.def("encode_png", &encode);
    module.def(
        "write_file",
        [](const std::filesystem::path& file, std::string_view bytes) {
            writeFileAtomically(file,
                                std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
        },
        Released());
    module.def("near_names", &nearNames);
    module.def("set_verbosity", &Qelt::setVerbosity);
}
