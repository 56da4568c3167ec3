#include "shell/mesh/mesh.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <glm/geometric.hpp>
#include <unordered_map>

namespace korl {

namespace {

bool isFinite(const glm::vec3& value) {
    return std::isfinite(value.x) && std::isfinite(value.y) && std::isfinite(value.z);
}

/// The length in double precision, where the squares of floats neither overflow nor vanish.
double lengthOf(const glm::vec3& value) {
    return glm::length(glm::dvec3(value));
}

bool hasUnitLength(const glm::vec3& value) {
    return std::abs(lengthOf(value) - 1) <= 0.001;
}

bool isColor(const glm::vec3& value) {
    const auto isComponent = [](float component) { return component >= 0 && component <= 1; };
    return isComponent(value.x) && isComponent(value.y) && isComponent(value.z);
}

std::string text(const glm::vec3& value) {
    return fmt::format("({:g}, {:g}, {:g})", value.x, value.y, value.z);
}

[[noreturn]] void fail(const Mesh& mesh, const std::string& what) {
    throw InvalidValue(fmt::format("the mesh {} is damaged: {}", inQuotes(mesh.name), what));
}

void requireAsManyAsPositions(const Mesh& mesh, std::size_t count, const std::string& what) {
    if (count != mesh.positions.size())
        fail(mesh, fmt::format("it has {} positions, but {} {}", mesh.positions.size(), count, what));
}

template <class Condition>
void requireEach(const Mesh& mesh, const std::vector<glm::vec3>& values, const std::string& what,
                 const std::string& expected, Condition isGood) {
    const auto bad = std::find_if_not(values.begin(), values.end(), isGood);
    if (bad != values.end())
        fail(mesh, fmt::format("{} {} is {}, expected {}", what, bad - values.begin(), text(*bad), expected));
}

bool isUsableNormal(const glm::vec3& value) {
    return isFinite(value) && lengthOf(value) > 0;
}

struct PositionHash {
    std::size_t operator()(const glm::vec3& position) const {
        const std::hash<float> hash;
        return (hash(position.x) * 31 + hash(position.y)) * 31 + hash(position.z);
    }
};

using NormalSums = std::unordered_map<glm::vec3, glm::dvec3, PositionHash>;

/// At each place of the mesh, the normals of the triangles that meet there, each as long as twice its area.
NormalSums sumNormals(const Mesh& mesh) {
    NormalSums sums;
    sums.reserve(mesh.positions.size());
    for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
        const glm::vec3& a = mesh.positions[mesh.triangles[i]];
        const glm::vec3& b = mesh.positions[mesh.triangles[i + 1]];
        const glm::vec3& c = mesh.positions[mesh.triangles[i + 2]];
        const glm::dvec3 normal = glm::cross(glm::dvec3(b) - glm::dvec3(a), glm::dvec3(c) - glm::dvec3(a));
        for (const glm::vec3& corner : {a, b, c})
            sums[corner] += normal;
    }
    return sums;
}

} // namespace

std::optional<Ball> boundingBall(std::span<const Mesh> meshes) {
    std::optional<glm::dvec3> low, high;
    for (const Mesh& mesh : meshes) {
        for (const glm::dvec3 position : mesh.positions) {
            low = low ? glm::min(*low, position) : position;
            high = high ? glm::max(*high, position) : position;
        }
    }
    if (!low)
        return std::nullopt;
    const glm::dvec3 center = (*low + *high) / 2.0;
    double radius = 0;
    for (const Mesh& mesh : meshes)
        for (const glm::dvec3 position : mesh.positions)
            radius = std::max(radius, glm::distance(position, center));
    return Ball{center, radius};
}

void validate(const Mesh& mesh) {
    requireAsManyAsPositions(mesh, mesh.normals.size(), "normals");
    if (!mesh.colors.empty())
        requireAsManyAsPositions(mesh, mesh.colors.size(), "colors");
    requireEach(mesh, mesh.positions, "position", "finite numbers", isFinite);
    requireEach(mesh, mesh.normals, "normal", "unit length", hasUnitLength);
    requireEach(mesh, mesh.colors, "color", "components from 0 to 1", isColor);
    if (mesh.triangles.size() % 3 != 0)
        fail(mesh, fmt::format("its {} indices are not three for each triangle", mesh.triangles.size()));
    const auto beyond = std::find_if(mesh.triangles.begin(), mesh.triangles.end(),
                                     [&](std::uint32_t index) { return index >= mesh.positions.size(); });
    if (beyond != mesh.triangles.end())
        fail(mesh, fmt::format("triangle {} leads to position {}, but there are {}",
                               (beyond - mesh.triangles.begin()) / 3, *beyond, mesh.positions.size()));
}

void addMissingNormals(Mesh& mesh) {
    mesh.normals.resize(mesh.positions.size(), glm::vec3(0));
    const bool all_usable = std::all_of(mesh.normals.begin(), mesh.normals.end(), isUsableNormal);
    const NormalSums sums = all_usable ? NormalSums() : sumNormals(mesh);
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
        glm::dvec3 normal = mesh.normals[i];
        if (!isUsableNormal(mesh.normals[i])) {
            const auto sum = sums.find(mesh.positions[i]);
            normal = sum == sums.end() ? glm::dvec3(0) : sum->second;
        }
        const double length = glm::length(normal);
        mesh.normals[i] = length > 0 ? glm::vec3(normal / length) : glm::vec3(0, 0, 1);
    }
}

} // namespace korl
