#include "shell/render/view.hpp"

#include "shell/base/error.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/scene/scene.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace korl {

View::View(Tessan::StrongPtr<Qelt::ValuePool> pool)
    : my_pool(std::move(pool)), my_request(my_pool), my_context(my_pool) {}

void View::gatherMembers(const Scene& scene) {
    if (my_scene == &scene && my_scene_revision == scene.revision())
        return;
    my_members.clear();
    for (const auto& object : scene.objects())
        if (auto* const renderable = dynamic_cast<Qelt::RenderAble*>(object.get());
            renderable && scene.isEnabled(*object))
            my_members.push_back(
                {renderable, dynamic_cast<const Qelt::ShaderLightSource*>(renderable), 0, 0});
    std::stable_sort(my_members.begin(), my_members.end(), [](const Member& a, const Member& b) {
        return a.object->priority() < b.object->priority();
    });
    my_scene = &scene;
    my_scene_revision = scene.revision();
}

void View::beginFrame(const Scene& scene, double time) {
    gatherMembers(scene);
    my_context.beginRendering();
    for (const Member& member : my_members)
        if (member.object->processesRequests() && !ModuleCall(*member.object, "update").run([&] {
                return member.object->request(my_request, time);
            }))
            throw Error(inQuotes(member.object->Name()) +
                        " could not be brought up to date for the rendering");
    for (Member& member : my_members) {
        member.first_source = my_context.enabledLightSources().size();
        ModuleCall(*member.object, "illuminate").run([&] { member.object->illuminate(my_context); });
        member.source_count = my_context.enabledLightSources().size() - member.first_source;
    }
}

void View::fillUniforms() {
    for (const Member& member : my_members) {
        if (!member.shader_light)
            continue;
        for (std::size_t i = 0; i < member.source_count; ++i)
            ModuleCall(*member.object, "fillUniforms").run([&] {
                member.shader_light->updateLightAtRendering(
                    my_context.enabledLightSources()[member.first_source + i]->uniforms(), my_context);
            });
    }
}

void View::endFrame() noexcept {
    my_context.beginRendering();
}

Frame::Frame(View& view, const Scene& scene, double time) : my_view(view) {
    try {
        view.beginFrame(scene, time);
    } catch (...) {
        view.endFrame();
        throw;
    }
}

const Qelt::RenderAble& View::ownerOf(std::size_t source) const {
    for (const Member& member : my_members)
        if (source >= member.first_source && source - member.first_source < member.source_count)
            return *member.object;
    throw std::out_of_range("View::ownerOf: the frame has no such light source");
}

} // namespace korl
