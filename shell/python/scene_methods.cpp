#include "shell/python/session_class.hpp"

#include "shell/base/color_text.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/mesh/mesh_arrays.hpp"
#include "shell/mesh/model_import.hpp"

#include <palune/geometry_traits.hpp>

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <pybind11/numpy.h>
#include <span>
#include <tuple>

namespace korl::python {

namespace {

using Triple = std::array<double, 3>;
using CameraValues = std::tuple<Triple, Triple, Triple, double>; ///< position, target, up, field of view

using ModelLimits = std::tuple<double, std::uint64_t, bool>; ///< seconds, MiB, whether files lie anywhere
constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;   ///< in bytes

/// The picture's shape that a camera is fitted to where none is known: that of 640 x 480 pixels.
constexpr double usual_aspect = 4.0 / 3;

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
    if (fov) { // checked by itself: no place can be found for an impossible field of view
        Camera usual = cameraOf(scene);
        usual.fov_degrees = *fov;
        validate(usual);
    }
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
    const Released released;
    Mesh mesh = meshFromArrays(name, arrays);
    shell.use([&](Shell& used) { used.scene().addMesh(std::move(mesh)); });
}

void addModel(SharedShell& shared, const std::filesystem::path& file, const std::string& up) {
    workWithInterrupts(shared, [&](Shell& shell, const Interrupt& interrupt) {
        shell.scene().addMesh(importModel(file, parseUpAxis(up), interruptibleReading(shell, interrupt)));
    });
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

} // namespace

void defineScene(py::module_& module, Session& session) {
    py::class_<Image>(module, "Pixels", py::buffer_protocol()).def_buffer([](Image& image) {
        const auto width = static_cast<py::ssize_t>(image.width);
        return py::buffer_info(image.pixels.data(),
                               {static_cast<py::ssize_t>(image.height), width, py::ssize_t{4}},
                               {4 * width, py::ssize_t{4}, py::ssize_t{1}});
    });
    add(session, "views", viewNames);
    add(session, "add_view", [](Shell& shell, const std::string& name) { shell.scene().addView(name); });
    add(session, "remove_view",
        [](Shell& shell, const std::string& name) { shell.scene().removeView(name); });
    add(session, "meshes", meshes);
    session.def("add_model", &addModel);
    add(session, "model_limits", [](Shell& shell) {
        const ModelReading& reading = shell.modelReading();
        return ModelLimits(std::chrono::duration<double>(reading.timeout).count(), reading.memory / mebibyte,
                           reading.anywhere);
    });
    add(session, "set_model_limits", [](Shell& shell, double timeout, std::uint64_t memory, bool anywhere) {
        ModelReading& reading = shell.modelReading();
        reading.timeout =
            std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(timeout));
        reading.memory = memory * mebibyte;
        reading.anywhere = anywhere;
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
        shell.reportEmptyPicture();
        return shell.render({width, height, path}, view);
    });
}

} // namespace korl::python
