#include "shell/render/result_check.hpp"

#include "shell/base/printable.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/render/uniform_values.hpp"
#include "shell/scene/vectors.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <string>
#include <vector>

namespace korl {

using Qelt::RenderNamespace::UniformMap;

namespace {

constexpr std::size_t max_remembered = 4096;
constexpr const char* not_finite = "result not finite";

bool sameValues(const UniformMap& a, const UniformMap& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.first == y.first && sameBits(x.second, y.second);
    });
}

bool areFinite(const UniformMap& uniforms) {
    return std::all_of(uniforms.begin(), uniforms.end(),
                       [](const auto& uniform) { return isFinite(uniform.second); });
}

/// Where a light is not finite, and what it gives there.
struct Failures {
    std::size_t count = 0, vertices = 0;
    glm::vec3 first_at{0};
    LightSample first{};
};

std::string reportText(const std::string& light, const Failures& failures) {
    const bool everywhere = failures.count == failures.vertices;
    return fmt::format(
        "light {} adds nothing on the shader path{}: its result is not finite there, at ({}) the direction "
        "({}), the intensity ({}) and the specular intensity ({}); check its parameters and where it stands",
        inQuotes(light),
        everywhere ? "" : fmt::format(" at {} of {} vertices", failures.count, failures.vertices),
        componentsText(failures.first_at), componentsText(failures.first.incidence),
        componentsText(failures.first.intensity), componentsText(failures.first.specular_intensity));
}

} // namespace

void ResultCheck::check(const View& view, const glm::vec3& eye, const MeshBufferCache& meshes,
                        LightSampler& sampler, Reports& reports) {
    const std::size_t count = view.sources().size();
    if (my_checked.size() > max_remembered + count)
        my_checked.clear(); // most are of light sources long gone
    bool has_evaluated_again = false;
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t i = (my_turn + step) % count;
        const auto& source = *view.sources()[i].get();
        const auto [known, is_new] = my_checked.try_emplace({source.serialNumber(), &view});
        Checked& checked = known->second;
        const bool has_changed = checked.meshes_revision != meshes.revision() ||
                                 (checked.depends_on_eye && checked.eye != eye) ||
                                 !sameValues(checked.uniforms, source.uniforms());
        if (!is_new && (!has_changed || has_evaluated_again))
            continue;
        if (is_new)
            checked.depends_on_eye =
                snippetOf(source, view.ownerOf(i).Name()).find("getViewDir") != std::string::npos;
        checked.uniforms = source.uniforms();
        checked.meshes_revision = meshes.revision();
        checked.eye = eye;
        if (!areFinite(source.uniforms()) || reports.wasTold(view.ownerOf(i).number(), not_finite))
            continue;
        evaluate(view, i, eye, meshes, sampler, reports);
        if (!is_new) {
            has_evaluated_again = true;
            my_turn = i + 1;
        }
    }
}

void ResultCheck::evaluate(const View& view, std::size_t source, const glm::vec3& eye,
                           const MeshBufferCache& meshes, LightSampler& sampler, Reports& reports) {
    const Qelt::RenderAble& light = view.ownerOf(source);
    Failures failures;
    for (const auto& [mesh, buffers] : meshes.entries()) {
        if (buffers->positionCount() > LightSampler::maxPoints())
            continue;
        const std::vector<LightSample> samples = sampler.sample(
            *view.sources()[source].get(), light.Name(), buffers->positions(), buffers->positionCount(), eye);
        failures.vertices += samples.size();
        for (std::size_t k = 0; k < samples.size(); ++k)
            if (!samples[k].isFinite() && failures.count++ == 0) {
                failures.first_at = mesh->positions[k];
                failures.first = samples[k];
            }
    }
    if (failures.count > 0)
        reports.once(light.number(), not_finite, [&] { return reportText(light.Name(), failures); });
}

} // namespace korl
