#include "shell/mesh/builtin_scene.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <numbers>

namespace korl {

namespace {

using std::numbers::pi;

struct Vertex {
    glm::dvec3 position, normal, color;
};

/// Adds a surface that goes round the z axis or one beside it: rows from bottom to top as seen from outside,
/// each a ring of vertices, counter-clockwise from above. A ring of no extent closes the surface to a point.
void addSurface(Mesh& mesh, int rows, int segments,
                const std::function<Vertex(int row, double angle)>& vertexAt) {
    const auto first = static_cast<std::uint32_t>(mesh.positions.size());
    for (int row = 0; row < rows; ++row) {
        for (int segment = 0; segment < segments; ++segment) {
            const Vertex vertex = vertexAt(row, 2 * pi * segment / segments);
            mesh.positions.emplace_back(vertex.position);
            mesh.normals.emplace_back(vertex.normal);
            mesh.colors.emplace_back(vertex.color);
        }
    }
    const auto indexOf = [&](int row, int segment) {
        return first + static_cast<std::uint32_t>(row * segments + segment % segments);
    };
    const auto addTriangle = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        const auto& at = mesh.positions;
        if (at[a] != at[b] && at[b] != at[c] && at[c] != at[a])
            mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
    };
    for (int row = 0; row + 1 < rows; ++row) {
        for (int segment = 0; segment < segments; ++segment) {
            const std::uint32_t near_left = indexOf(row, segment), near_right = indexOf(row, segment + 1);
            const std::uint32_t far_left = indexOf(row + 1, segment),
                                far_right = indexOf(row + 1, segment + 1);
            addTriangle(near_left, near_right, far_right);
            addTriangle(near_left, far_right, far_left);
        }
    }
}

glm::dvec3 onRing(double radius, double angle, double z) {
    return {radius * std::cos(angle), radius * std::sin(angle), z};
}

/// A point of a profile that is turned round an axis.
struct ProfilePoint {
    double radius, z;
};
using Profile = std::vector<ProfilePoint>;

/// Adds what a profile sweeps over on its way round a vertical axis; its edges to other profiles are sharp.
/// @param profile from bottom to top as seen from outside, two points or more, no two neighbours equal.
/// @param color by height.
void addTurned(Mesh& mesh, const glm::dvec3& center, const Profile& profile, int segments,
               const std::function<glm::dvec3(double z)>& color) {
    const int last = static_cast<int>(profile.size()) - 1;
    addSurface(mesh, last + 1, segments, [&](int row, double angle) {
        const ProfilePoint& point = profile[static_cast<std::size_t>(row)];
        const ProfilePoint& before = profile[static_cast<std::size_t>(std::max(row - 1, 0))];
        const ProfilePoint& after = profile[static_cast<std::size_t>(std::min(row + 1, last))];
        const bool is_on_axis = point.radius < 1e-9;
        const glm::dvec3 normal =
            onRing(is_on_axis ? 0 : after.z - before.z, angle, before.radius - after.radius);
        return Vertex{center + onRing(point.radius, angle, point.z), glm::normalize(normal), color(point.z)};
    });
}

/// Part of a circle, from one angle to another; 0 leads outwards, pi / 2 upwards.
Profile arc(ProfilePoint center, double radius, double from, double to, int steps) {
    Profile profile;
    for (int step = 0; step <= steps; ++step) {
        const double angle = from + (to - from) * step / steps;
        profile.push_back({center.radius + radius * std::cos(angle), center.z + radius * std::sin(angle)});
    }
    return profile;
}

constexpr glm::dvec3 column_foot{0.2, -0.14, -0.22};
constexpr glm::dvec3 sphere_center{-0.17, 0.1, 0.05};
constexpr double sphere_radius = 0.16;

// The land

constexpr double land_radius = 0.5;
constexpr double land_bottom = -0.31;
constexpr int land_segments = 144;
constexpr int land_rings = 56;

/// Hills that flatten towards the foot of the column.
double landHeight(double x, double y) {
    const double hills = 0.032 * std::sin(7.5 * x + 1.1) * std::cos(6.5 * y - 0.4) +
                         0.017 * std::sin(12 * x - 9 * y + 2) + 0.006 * std::cos(21 * x + 17 * y);
    const double foot_distance = std::hypot(x - column_foot.x, y - column_foot.y) / 0.14;
    return column_foot.z + hills * (1 - std::exp(-std::pow(foot_distance, 4)));
}

glm::dvec3 landNormal(double x, double y) {
    constexpr double step = 1e-5;
    return glm::normalize(glm::dvec3(landHeight(x - step, y) - landHeight(x + step, y),
                                     landHeight(x, y - step) - landHeight(x, y + step), 2 * step));
}

/// Grass, lighter and drier on the heights, with bare earth on the steeper slopes.
/// @param place on the land.
glm::dvec3 landColor(const glm::dvec3& place, const glm::dvec3& normal) {
    constexpr glm::dvec3 valley{0.17, 0.33, 0.11}, height{0.46, 0.5, 0.22}, earth{0.42, 0.33, 0.2};
    const double patches = 0.12 * std::sin(31 * place.x + 4 * std::sin(13 * place.y)) *
                           std::sin(27 * place.y + 3 * std::cos(17 * place.x));
    const double dryness = glm::clamp(0.5 + (place.z - column_foot.z) / 0.09 + patches, 0.0, 1.0);
    const double bareness = glm::smoothstep(0.25, 0.6, 1 - std::pow(normal.z, 4));
    return glm::mix(glm::mix(valley, height, dryness), earth, bareness);
}

Mesh landscape() {
    constexpr glm::dvec3 soil{0.35, 0.25, 0.16};
    Mesh mesh;
    mesh.name = "landscape";
    addTurned(mesh, {0, 0, 0}, {{0, land_bottom}, {land_radius, land_bottom}}, land_segments,
              [=](double) { return soil; });
    addSurface(mesh, 2, land_segments, [&](int row, double angle) {
        const glm::dvec3 outward = onRing(1, angle, 0);
        const glm::dvec3 rim = land_radius * outward;
        return Vertex{{rim.x, rim.y, row == 0 ? land_bottom : landHeight(rim.x, rim.y)}, outward, soil};
    });
    addSurface(mesh, land_rings + 1, land_segments, [](int row, double angle) {
        glm::dvec3 place = onRing(land_radius * (land_rings - row) / land_rings, angle, 0);
        place.z = landHeight(place.x, place.y);
        const glm::dvec3 normal = landNormal(place.x, place.y);
        return Vertex{place, normal, landColor(place, normal)};
    });
    return mesh;
}

// The column

constexpr int column_segments = 64;

/// A shaft that swells a little on its way up and then narrows.
Profile shaft(double bottom, double top) {
    constexpr int steps = 24;
    Profile profile;
    for (int step = 0; step <= steps; ++step) {
        const double rise = static_cast<double>(step) / steps;
        profile.push_back({0.05 + 0.008 * rise - 0.016 * rise * rise, bottom + (top - bottom) * rise});
    }
    return profile;
}

Mesh column() {
    const auto sandstone = [](double z) {
        return glm::dvec3(0.78, 0.64, 0.44) * (1 + 0.05 * std::sin(70 * z + 2 * std::sin(23 * z)));
    };
    Mesh mesh;
    mesh.name = "column";
    // Heights above the ground; the foot goes into it.
    const std::vector<Profile> profiles{
        {{0, -0.02}, {0.09, -0.02}},     {{0.09, -0.02}, {0.09, 0.03}},
        {{0.09, 0.03}, {0.07, 0.03}},    arc({0.07, 0.045}, 0.015, -pi / 2, pi / 2, 16),
        {{0.07, 0.06}, {0.05, 0.06}},    shaft(0.06, 0.5),
        {{0.042, 0.5}, {0.05, 0.5}},     arc({0.05, 0.508}, 0.008, -pi / 2, pi / 2, 10),
        {{0.05, 0.516}, {0.042, 0.516}}, arc({0.042, 0.556}, 0.04, -pi / 2, 0, 16),
        {{0.082, 0.556}, {0.09, 0.556}}, {{0.09, 0.556}, {0.09, 0.585}},
        {{0.09, 0.585}, {0, 0.585}},
    };
    for (const Profile& profile : profiles)
        addTurned(mesh, column_foot, profile, column_segments, sandstone);
    return mesh;
}

// The sphere

Mesh sphere() {
    Mesh mesh;
    mesh.name = "sphere";
    addTurned(mesh, sphere_center, arc({0, 0}, sphere_radius, -pi / 2, pi / 2, 48), 96,
              [](double) { return glm::dvec3(1); });
    mesh.colors.clear();
    return mesh;
}

} // namespace

std::vector<Mesh> builtinScene() {
    std::vector<Mesh> meshes;
    meshes.push_back(landscape());
    meshes.push_back(column());
    meshes.push_back(sphere());
    for (Mesh& mesh : meshes)
        mesh.is_builtin = true;
    return meshes;
}

} // namespace korl
