#include "shell/scene/scene.hpp"

#include "shell/base/error.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/near_names.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/catalogue/type_names.hpp"
#include "shell/scene/light.hpp"

#include <sorvik/creator.hpp>

#include <algorithm>
#include <atomic>
#include <fmt/core.h>
#include <typeinfo>
#include <utility>

namespace korl {

using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VParameter;
using Tessan::StrongPtr;

namespace {

/// Revisions are numbers of the process, so that not even a scene in the place of another one repeats one.
unsigned long nextRevision() {
    static std::atomic<unsigned long> latest{0};
    return ++latest;
}

/// The smallest ball around two balls.
Ball merged(const Ball& a, const Ball& b) {
    const double distance = glm::distance(a.center, b.center);
    if (distance + b.radius <= a.radius)
        return a;
    if (distance + a.radius <= b.radius)
        return b;
    const double radius = (distance + a.radius + b.radius) / 2;
    return {a.center + (b.center - a.center) * ((radius - a.radius) / distance), radius};
}

/// Ends an object's life, whoever still holds it.
void destroy(VObject& object) {
    const std::string name = object.Name(); // which goes with the object
    const ModuleCall call(typeid(object), name, "destruction");
    Tessan::Counted::destroy(&object);
}

} // namespace

std::string tooLongChainText() {
    return fmt::format("would follow another parameter through more than {} others", max_chain_length);
}

Scene::Scene() : my_revision(nextRevision()) {}

Scene::~Scene() {
    // Deleted, not only let go: whoever still holds an object must not keep it beyond its scene.
    for (auto object = my_objects.rbegin(); object != my_objects.rend(); ++object)
        if (VObject* const left = object->get())
            destroy(*left);
}

VObject& Scene::create(const std::string& type, const std::string& name) {
    VCreatorBase* const creator = findType(type);
    if (!creator)
        throw UnknownName(fmt::format(
            "unknown type {}: {}", inQuotes(type),
            nearNames(type, typeNames(), "no module is loaded that has any; name one with --plugin")));
    if (!name.empty() && isTaken(name))
        throw Error(fmt::format("cannot create {} as {}: the scene already has an object of this name",
                                inQuotes(name), printable(type)));
    const auto taken = [&](const std::string& candidate) { return isTaken(candidate); };
    const std::string own = name.empty() ? creator->createChildname(taken, my_numbers[type]) : name;
    const StrongPtr<VObject> object =
        ModuleCall(*creator, "creation").run([&] { return creator->create(own); });
    my_objects.push_back(object);
    my_objects_by_name.insert_or_assign(object->Name(), object);
    my_revision = nextRevision();
    return *object;
}

VObject* Scene::find(const std::string& name) const {
    const auto found = my_objects_by_name.find(name);
    return found == my_objects_by_name.end() ? nullptr : found->second.get();
}

VObject& Scene::object(const std::string& name) const {
    if (VObject* const found = find(name))
        return *found;
    std::vector<std::string> known;
    for (const auto& held : objects())
        known.push_back(held->Name());
    throw UnknownName(fmt::format("unknown object {}: {}", inQuotes(name),
                                  nearNames(name, known, "the scene has no objects")));
}

// By value: the name may be the one that the object holds, and goes with it.
void Scene::remove(std::string name) { // NOLINT(performance-unnecessary-value-param)
    if (my_unresolved.remove(name))
        return;
    VObject& gone = object(name);
    my_muted.erase(gone.number());
    destroy(gone);
    my_objects_by_name.erase(name);
    my_revision = nextRevision(); // the list of objects is swept when it is next asked for
}

VParameter& Scene::parameter(const std::string& object_name, const std::string& name) const {
    const VObject& owner = object(object_name);
    if (VParameter* const found = owner.findParameter(name))
        return *found;
    std::vector<std::string> known;
    for (const auto& entry : owner.parameters())
        known.push_back(entry.parameter->Name());
    throw UnknownName(fmt::format("unknown parameter {}: {}", inQuotes(owner.Name() + "." + name),
                                  nearNames(name, known, "the object has no parameters")));
}

void Scene::connect(const std::string& object_name, const std::string& parameter_name,
                    const std::string& source_object, const std::string& source_parameter) {
    const VParameter& follower_parameter = parameter(object_name, parameter_name);
    VParameter& source = parameter(source_object, source_parameter);
    VObject& following = object(object_name);
    const std::string follower = inQuotes(object_name + "." + parameter_name);
    const std::string followed = inQuotes(source_object + "." + source_parameter);
    if (follower_parameter.type() != source.type())
        throw WrongType(fmt::format("{} takes {}, but {} is {}; they stay unconnected", follower,
                                    valueForm(follower_parameter.type()), followed,
                                    valueForm(source.type())));
    if (const std::string reason = tooLongChain(follower_parameter, source); !reason.empty())
        throw Error(fmt::format("{} cannot follow {}: {}", follower, followed, reason));
    if (!ModuleCall(following, "connectInput").run([&] {
            return following.connectInput(parameter_name, source);
        }))
        throw Error(
            fmt::format("{} cannot follow {}: that one follows it already, or the input takes no connections",
                        follower, followed));
    my_unresolved.disconnect(following.number(), parameter_name);
}

std::string Scene::tooLongChain(const VParameter& follower, const VParameter& source) const {
    int above = 1; // how many the follower would read its value through
    for (const VParameter* next = source.source(); next; next = next->source(), ++above)
        if (next == &follower)
            return {}; // a circle, which is refused as such
    if (above > max_chain_length)
        return "it " + tooLongChainText();
    for (const auto& object : objects())
        for (const auto& [parameter, expert_level] : object->parameters()) {
            int length = above;
            const VParameter* next = parameter.get();
            for (; next && next != &follower; next = next->source())
                ++length;
            if (next && length > max_chain_length)
                return fmt::format("{} {}", inQuotes(object->Name() + "." + parameter->Name()),
                                   tooLongChainText());
        }
    return {};
}

void Scene::setParameter(const std::string& object_name, const std::string& parameter_name,
                         const Qelt::VValueBase& value, const std::string& view_name) {
    VParameter& changed = parameter(object_name, parameter_name);
    const auto refuse = [&](const std::string& expected) {
        refuseValue(object_name, changed, view_name, expected, value.Text());
    };
    if (value.type() != changed.type())
        refuse(valueForm(changed.type()));
    if (!isFinite(value))
        refuse("finite numbers");
    if (!view_name.empty())
        view(view_name)->createVariable(changed, value.clone());
    else if (!changed.setGlobalValue(value))
        refuse(valueForm(changed.type()));
}

void Scene::setParameterText(const std::string& object_name, const std::string& parameter_name,
                             const std::string& text, const std::string& view_name) {
    const VParameter& changed = parameter(object_name, parameter_name);
    const ModuleCall call(object(object_name), "setValueFromText");
    const StrongPtr<Qelt::VValueBase> value = call.run([&] { return changed.DefaultValue().clone(); });
    if (!call.run([&] { return value->setValueFromText(text); }))
        refuseValue(object_name, changed, view_name, valueForm(changed.type()), text);
    setParameter(object_name, parameter_name, *value, view_name);
}

void Scene::refuseValue(const std::string& object_name, const VParameter& changed,
                        const std::string& view_name, const std::string& expected,
                        const std::string& found) const {
    const Qelt::VValueBase* const kept =
        view_name.empty() ? &changed.globalValue() : changed.getLocalValue(*view(view_name));
    throw InvalidValue(fmt::format("{} takes {}, found {}{}", inQuotes(object_name + "." + changed.Name()),
                                   expected, inQuotes(found),
                                   kept ? "; it keeps " + inQuotes(kept->Text()) : ""));
}

void Scene::resetParameter(const std::string& object_name, const std::string& parameter_name,
                           const std::string& view_name) {
    VParameter& changed = parameter(object_name, parameter_name);
    if (view_name.empty())
        changed.setGlobalValue(changed.DefaultValue());
    else
        view(view_name)->removeVariable(changed);
}

void Scene::disconnect(const std::string& object_name, const std::string& parameter_name) {
    parameter(object_name, parameter_name).setSource({});
    my_unresolved.disconnect(object(object_name).number(), parameter_name);
}

void Scene::setMuted(const std::string& object_name, bool muted) {
    const std::uint64_t number = object(object_name).number();
    if (muted)
        my_muted.insert(number);
    else
        my_muted.erase(number);
    my_revision = nextRevision();
}

bool Scene::isMuted(const VObject& object) const {
    return my_muted.contains(object.number());
}

void Scene::solo(const std::string& light) {
    if (!light.empty() && !isLight(object(light)))
        throw WrongType(inQuotes(light) + " is not a light, so it cannot shine alone");
    my_solo = light;
    my_solo_number = light.empty() ? 0 : object(light).number();
    my_unresolved.solo.clear();
    my_revision = nextRevision();
}

VObject* Scene::soloLight() const {
    VObject* const found = my_solo.empty() ? nullptr : find(my_solo);
    return found && found->number() == my_solo_number ? found : nullptr; // another may have its name by now
}

bool Scene::isEnabled(const VObject& object) const {
    const VObject* const alone = soloLight();
    return alone && isLight(object) ? &object == alone : !isMuted(object);
}

Qelt::ValuePool& Scene::addView(const std::string& name) {
    if (name.empty())
        throw Error("a view needs a name");
    for (const NamedView& view : my_views)
        if (view.first == name)
            throw Error(fmt::format("cannot add the view {}: the scene already has one of this name",
                                    inQuotes(name)));
    return *my_views.emplace_back(name, Tessan::makeStrong<Qelt::ValuePool>()).second.get();
}

const StrongPtr<Qelt::ValuePool>& Scene::view(const std::string& name) const {
    for (const NamedView& view : my_views)
        if (view.first == name)
            return view.second;
    std::vector<std::string> known;
    for (const NamedView& view : my_views)
        known.push_back(view.first);
    throw UnknownName(
        fmt::format("unknown view {}: {}", inQuotes(name), nearNames(name, known, "the scene has no views")));
}

void Scene::removeView(const std::string& name) {
    view(name); // throws where there is none
    std::erase_if(my_views, [&](const NamedView& view) { return view.first == name; });
}

const std::vector<StrongPtr<VObject>>& Scene::objects() const {
    dropTheGone();
    return my_objects;
}

bool Scene::hasLight() const {
    const auto& living = objects();
    return std::any_of(living.begin(), living.end(),
                       [](const StrongPtr<VObject>& object) { return isLight(*object); });
}

unsigned long Scene::revision() const {
    dropTheGone();
    return my_revision;
}

void Scene::dropTheGone() const {
    if (std::erase_if(my_objects, [](const auto& object) { return !object; }) == 0)
        return;
    std::erase_if(my_objects_by_name, [](const auto& entry) { return !entry.second; });
    my_revision = nextRevision();
}

void Scene::addMesh(Mesh mesh) {
    validate(mesh);
    if (const auto ball = korl::boundingBall(std::span(&mesh, 1)))
        my_meshes_ball = my_meshes_ball ? merged(*my_meshes_ball, *ball) : ball;
    my_meshes.push_back(std::make_shared<const Mesh>(std::move(mesh)));
}

std::optional<Ball> Scene::boundingBall() const {
    std::optional<Ball> all = my_meshes_ball;
    for (const auto& object : objects()) {
        const auto* const renderable = dynamic_cast<const Qelt::RenderAble*>(object.get());
        if (Orvid::Ball drawn; renderable && ModuleCall(*renderable, "getBoundingBall").run([&] {
                return renderable->getBoundingBall(drawn);
            })) {
            const Ball ball{{drawn.center.x, drawn.center.y, drawn.center.z}, drawn.radius};
            all = all ? merged(*all, ball) : ball;
        }
    }
    return all;
}

} // namespace korl
