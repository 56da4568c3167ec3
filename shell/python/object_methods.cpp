#include "shell/base/printable.hpp"
#include "shell/python/session_class.hpp"

#include "shell/catalogue/parameter_value.hpp"
#include "shell/catalogue/type_info.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/scene/aiming.hpp"

#include <sorvik/creator.hpp>

#include <array>
#include <fmt/core.h>
#include <optional>
#include <utility>
#include <variant>

namespace korl::python {

namespace {

using Triple = std::array<double, 3>;

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
        throw Error(fmt::format("the object {} has been deleted", inQuotes(handle.name)));
    return handle.name;
}

/// A parameter's value: numbers or, for a type that has none, its text form.
using Value = std::variant<std::vector<double>, std::string>;

/// What a parameter reads as in a view; nothing where what it follows is gone.
std::optional<Value> readValue(Shell& shell, const Handle& object, const std::string& name,
                               const std::string& view) {
    const Qelt::VParameter& parameter = shell.scene().parameter(living(shell.scene(), object), name);
    const Qelt::VValueBase* const value = parameter.getLocalValue(shell.view(view).pool());
    if (!value)
        return std::nullopt;
    if (numberCount(parameter.type()) == 0)
        return value->Text();
    const std::vector<double> numbers = numbersOf(*value);
    return numbers.empty() ? std::nullopt : std::optional<Value>(numbers);
}

void setValue(Shell& shell, const Handle& object, const std::string& name, const Value& value,
              const std::string& view) {
    Scene& scene = shell.scene();
    const std::string& owner = living(scene, object);
    if (const auto* const text = std::get_if<std::string>(&value))
        return scene.setParameterText(owner, name, *text, view);
    const auto& numbers = std::get<std::vector<double>>(value);
    const auto made = makeValue(scene.parameter(owner, name).type(), numbers);
    if (!made)
        throw InvalidValue(fmt::format("{} takes another count of numbers than {}",
                                       inQuotes(fmt::format("{}.{}", owner, name)), numbers.size()));
    scene.setParameter(owner, name, *made, view);
}

std::optional<std::pair<Handle, std::string>> sourceOf(Shell& shell, const Handle& object,
                                                       const std::string& name) {
    const Qelt::VParameter* const source =
        shell.scene().parameter(living(shell.scene(), object), name).source();
    if (!source || !source->creator())
        return std::nullopt;
    return std::pair(handleOf(*source->creator()), source->Name());
}

glm::dvec3 vectorOf(const Triple& triple) {
    return {triple[0], triple[1], triple[2]};
}

std::string typeOf(const Qelt::VObject& object) {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    return creator ? typeName(*creator) : std::string();
}

std::vector<std::pair<Handle, std::string>> objects(Shell& shell) {
    std::vector<std::pair<Handle, std::string>> listed;
    for (const auto& object : shell.scene().objects())
        listed.emplace_back(handleOf(*object), typeOf(*object));
    return listed;
}

std::optional<Handle> soloLight(Shell& shell) {
    const Qelt::VObject* const light = shell.scene().soloLight();
    return light ? std::optional(handleOf(*light)) : std::nullopt;
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
        .def_property_readonly("unit",
                               [](const ParameterInfo& info) {
                                   return info.unit.empty() ? std::nullopt : std::optional(info.unit);
                               })
        .def_readonly("doc", &ParameterInfo::description)
        .def_readonly("level", &ParameterInfo::expert_level);
    py::class_<TypeInfo>(module, "TypeInfo")
        .def_readonly("name", &TypeInfo::name)
        .def_readonly("category", &TypeInfo::category)
        .def_readonly("doc", &TypeInfo::description)
        .def_readonly("parameters", &TypeInfo::parameters);
}

} // namespace

void defineObjects(py::module_& module, Session& session) {
    defineValues(module);
    add(session, "types", [](Shell&) { return knownTypes(); });
    add(session, "create", [](Shell& shell, const std::string& type, const std::string& name) {
        return handleOf(shell.scene().create(type, name));
    });
    add(session, "find",
        [](Shell& shell, const std::string& name) { return handleOf(shell.scene().object(name)); });
    add(session, "objects", objects);
    add(session, "remove", [](Shell& shell, const std::string& name) { shell.scene().remove(name); });
    add(session, "type_of", [](Shell& shell, const Handle& object) {
        return typeOf(shell.scene().object(living(shell.scene(), object)));
    });
    add(session, "parameters", [](Shell& shell, const Handle& object) {
        return parametersOf(shell.scene().object(living(shell.scene(), object)));
    });
    add(session, "kind", [](Shell& shell, const Handle& object, const std::string& name) {
        return valueKind(shell.scene().parameter(living(shell.scene(), object), name).type());
    });
    add(session, "value", readValue);
    add(session, "set", setValue);
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

} // namespace korl::python
