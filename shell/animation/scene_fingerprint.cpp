#include "shell/animation/scene_fingerprint.hpp"

#include "shell/catalogue/type_names.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/creator.hpp>

#include <cstring>
#include <string>

namespace korl {

namespace {

void add(Fingerprint& sum, const glm::dvec3& point) {
    sum.add(point.x);
    sum.add(point.y);
    sum.add(point.z);
}

template <class T>
void add(Fingerprint& sum, const std::vector<T>& list) {
    sum.add(static_cast<double>(list.size()));
    sum.addBytes(list.data(), list.size() * sizeof(T));
}

void add(Fingerprint& sum, const Qelt::VParameter& parameter, const Scene& scene) {
    sum.add(parameter.Name());
    sum.add(parameter.globalValue().Text());
    const Qelt::VParameter* const source = parameter.source();
    const Qelt::VObject* const owner = source ? source->creator() : nullptr;
    sum.add(owner ? owner->Name() : "");
    sum.add(owner ? source->Name() : "");
    for (const auto& [name, pool] : scene.views())
        if (pool->ownsVariable(parameter)) {
            sum.add(name);
            sum.add(pool->retrieveValue(parameter)->Text());
        }
}

void add(Fingerprint& sum, const Qelt::VObject& object, const Scene& scene) {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    sum.add(creator ? typeName(*creator) : "");
    sum.add(object.Name());
    sum.add(scene.isEnabled(object) ? "shown" : "hidden");
    for (const auto& entry : object.parameters())
        add(sum, *entry.parameter.get(), scene);
}

} // namespace

void Fingerprint::addBytes(const void* bytes, std::size_t count) {
    constexpr std::uint64_t prime = 0x100000001b3;
    const auto* const first = static_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < count; ++i)
        my_value = (my_value ^ first[i]) * prime;
}

void Fingerprint::add(double number) {
    addBytes(&number, sizeof number);
}

void Fingerprint::add(std::string_view text) {
    add(static_cast<double>(text.size()));
    addBytes(text.data(), text.size());
}

std::uint64_t fingerprintOf(const Scene& scene) {
    Fingerprint sum;
    for (const auto& object : scene.objects())
        add(sum, *object.get(), scene);
    for (const auto& mesh : scene.meshes()) {
        add(sum, mesh->positions);
        add(sum, mesh->normals);
        add(sum, mesh->colors);
        add(sum, mesh->triangles);
    }
    sum.add(scene.camera ? "camera" : "fitted");
    if (scene.camera) {
        add(sum, scene.camera->position);
        add(sum, scene.camera->target);
        add(sum, scene.camera->up);
        sum.add(scene.camera->fov_degrees);
    }
    for (const float channel :
         {scene.background.r, scene.background.g, scene.background.b, scene.background.a})
        sum.add(static_cast<double>(channel));
    return sum.value();
}

} // namespace korl
