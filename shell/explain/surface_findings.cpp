#include "shell/explain/surface_findings.hpp"

#include "shell/base/printable.hpp"
#include "shell/explain/number_text.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <glm/geometric.hpp>

namespace korl {

namespace {

/// A smaller share of the picture than this counts as nothing.
constexpr float least_coverage = 0.001f;
constexpr float black_color = 0.05f;

std::string percent(std::size_t part, std::size_t whole) {
    return numberText(100 * static_cast<float>(part) / static_cast<float>(whole)) + " %";
}

/// The normal of a triangle by the order of its corners, as long as twice its area.
glm::dvec3 faceNormal(const Mesh& mesh, std::size_t first_corner) {
    const auto corner = [&](std::size_t i) {
        return glm::dvec3(mesh.positions[mesh.triangles[first_corner + i]]);
    };
    return glm::cross(corner(1) - corner(0), corner(2) - corner(0));
}

/// Whether the normals of most of a mesh's area point away from the fronts of its triangles.
bool opposesTriangles(const Mesh& mesh) {
    double along = 0;
    for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
        const glm::dvec3 face = faceNormal(mesh, i);
        glm::dvec3 normals(0);
        for (std::size_t k = 0; k < 3; ++k)
            normals += glm::dvec3(mesh.normals[mesh.triangles[i + k]]);
        along += std::copysign(glm::length(face), glm::dot(face, normals));
    }
    return along < 0;
}

/// Whether all normals of a mesh are the same one though its triangles face different ways.
bool hasOneNormalForAll(const Mesh& mesh) {
    if (mesh.normals.empty() ||
        std::any_of(mesh.normals.begin(), mesh.normals.end(),
                    [&](const glm::vec3& normal) { return normal != mesh.normals.front(); }))
        return false;
    const glm::dvec3 normal(mesh.normals.front());
    double across = 0, all = 0;
    for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
        const glm::dvec3 face = faceNormal(mesh, i);
        const double area = glm::length(face);
        all += area;
        if (std::abs(glm::dot(face, normal)) < 0.9 * area) // more than about 25 degrees off
            across += area;
    }
    return across > 0.1 * all;
}

Finding invertedNormals(const Mesh& mesh, std::size_t averted, std::size_t seen) {
    const char* const why = opposesTriangles(mesh)
                                ? "they are inverted, against the fronts of its triangles; turn them round"
                                : "it is seen from its back, or turned inside out; move the camera, or turn "
                                  "its normals round";
    return {FindingKind::normals_inverted,
            fmt::format("the normals of the mesh {} point away from the camera in {} of what is seen of it: "
                        "{}",
                        inQuotes(mesh.name), percent(averted, seen), why),
            2 * averted > seen};
}

} // namespace

std::vector<Finding> findOnSurfaces(GBuffer::Meshes meshes, float coverage,
                                    const std::vector<SurfacePoint>& seen, const glm::vec3& eye) {
    if (coverage < least_coverage) {
        const std::string text = meshes.empty()    ? "the scene has no mesh"
                                 : coverage > 0.0f ? "hardly any mesh is in view"
                                                   : "no mesh is in view: the camera looks past all of them";
        return {{FindingKind::no_mesh_in_view, text}};
    }
    std::vector<Finding> findings;
    std::size_t black = 0;
    std::vector<std::size_t> seen_of(meshes.size()), averted(meshes.size());
    for (const SurfacePoint& point : seen) {
        ++seen_of[point.mesh];
        averted[point.mesh] += glm::dot(point.normal, eye - point.position) < 0 ? 1 : 0;
        black += std::max({point.color.x, point.color.y, point.color.z}) < black_color ? 1 : 0;
    }
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        const Mesh& mesh = *meshes[i];
        const bool counts = 2 * seen_of[i] > seen.size(); // most of what is seen is of this mesh
        if (seen_of[i] > 0 && hasOneNormalForAll(mesh))
            findings.push_back({FindingKind::normals_missing,
                                fmt::format("the mesh {} has no normals of its own: all of them are {}, "
                                            "whichever way its triangles face; leave them out, and smooth "
                                            "ones are made",
                                            inQuotes(mesh.name), numberText(mesh.normals.front())),
                                counts});
        else if (4 * averted[i] > seen_of[i]) {
            Finding finding = invertedNormals(mesh, averted[i], seen_of[i]);
            finding.is_cause = finding.is_cause && counts;
            findings.push_back(std::move(finding));
        }
    }
    if (4 * black > seen.size())
        findings.push_back({FindingKind::black_surface,
                            percent(black, seen.size()) +
                                " of what is seen is black by its own colours, which no light makes brighter",
                            2 * black > seen.size()});
    return findings;
}

} // namespace korl
