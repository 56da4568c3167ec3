#include "shell/explain/light_diagnosis.hpp"

#include "shell/base/error.hpp"
#include "shell/explain/number_text.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>
#include <limits>

namespace korl {

namespace {

/// Below this a light does not make anything bright by itself: white surfaces that face it every way reflect
/// half of it in the mean, and a picture is dark up to 0.1.
constexpr float weak_intensity = 0.2f;
/// A light of which less than this is left is called too far away.
constexpr float low_attenuation = 0.25f;
/// The cosine to the normal below which light only grazes: about 6 degrees.
constexpr float grazing_cosine = 0.1f;

/// A light that faces less than this share of what is seen faces away.
constexpr float hardly_lit = 0.25f;
/// One that travels upwards is not a cause of darkness where it lights as much as this.
constexpr float mostly_lit = 0.5f;

float largestComponent(const glm::vec3& value) {
    return std::max({value.x, value.y, value.z});
}

/// What the samples of a light at the judged places have in common.
struct LightStats {
    std::size_t finite = 0;         ///< places where all that it gives is finite
    std::size_t faced = 0;          ///< places of which it faces the front
    float intensity = 0;            ///< the largest component of all
    float lowest = 0;               ///< the smallest component of all, 0 or below
    float specular = 0;             ///< likewise of the highlights
    float cosine = -1;              ///< the largest
    std::size_t brightest_part = 0; ///< where the largest intensity is found
    std::size_t brightest_place = 0;
    glm::vec3 travel{0};      ///< the direction of the first directed sample, of unit length
    bool is_directed = false; ///< at least one sample has a direction
    bool is_parallel = true;  ///< all directed samples have the same one
};

LightStats statsOf(const LightParts& parts, std::span<const SurfacePoint> points) {
    LightStats stats;
    float max_strength = -std::numeric_limits<float>::infinity();
    for (std::size_t place = 0; place < points.size(); ++place) {
        const bool is_finite =
            std::all_of(parts.begin(), parts.end(), [&](const auto& part) { return part[place].isFinite(); });
        if (!is_finite)
            continue;
        ++stats.finite;
        bool is_faced = false;
        for (std::size_t part = 0; part < parts.size(); ++part) {
            const LightSample& light = parts[part][place];
            const float strength = largestComponent(light.intensity);
            if (strength > max_strength) {
                max_strength = strength;
                stats.brightest_part = part;
                stats.brightest_place = place;
            }
            stats.intensity = std::max(stats.intensity, strength);
            stats.lowest = std::min({stats.lowest, light.intensity.x, light.intensity.y, light.intensity.z});
            stats.specular = std::max(stats.specular, largestComponent(light.specular_intensity));
            const bool gives_any =
                light.intensity != glm::vec3(0) || light.specular_intensity != glm::vec3(0);
            if (!gives_any)
                continue;
            const float cosine = cosineOfIncidence(points[place], light);
            is_faced = is_faced || cosine > 0;
            stats.cosine = std::max(stats.cosine, cosine);
            if (light.incidence == glm::vec3(0)) {
                stats.is_parallel = false;
                continue;
            }
            const glm::vec3 travel = glm::normalize(light.incidence);
            if (!stats.is_directed)
                stats.travel = travel;
            stats.is_directed = true;
            stats.is_parallel = stats.is_parallel && glm::distance(stats.travel, travel) < 1e-4f;
        }
        stats.faced += is_faced ? 1 : 0;
    }
    return stats;
}

/// Where a light has all of its strength, found by going from a point against its direction.
struct Source {
    float strength; ///< the largest intensity on the way
    float distance; ///< of the place where it is found
};

/// Tries distances that double from a fraction of the scene's size on, then looks closer between the
/// neighbours of the best one. No more is taken for granted than that the intensity rises on the way to the
/// source.
Source findSource(const SampleFunction& sample, std::size_t part, const glm::vec3& from,
                  const glm::vec3& travel, float size) {
    std::vector<float> distances{0};
    for (int doublings = -10; doublings <= 30; ++doublings)
        distances.push_back(std::ldexp(size, doublings));
    Source best{0, 0};
    for (int round = 0; round < 4; ++round) {
        std::vector<glm::vec3> points;
        points.reserve(distances.size());
        for (const float distance : distances)
            points.push_back(from - distance * travel);
        const auto samples = sample(points).at(part);
        std::size_t best_at = 0;
        float strongest = -1;
        for (std::size_t i = 0; i < samples.size(); ++i)
            if (const float strength = largestComponent(samples[i].intensity);
                samples[i].isFinite() && strength > strongest) {
                strongest = strength;
                best_at = i;
            }
        if (strongest > best.strength)
            best = {strongest, distances[best_at]};
        const float near = distances[best_at == 0 ? 0 : best_at - 1];
        const float far = distances[std::min(best_at + 1, distances.size() - 1)];
        constexpr int steps = 64;
        distances.clear();
        for (int step = 0; step <= steps; ++step)
            distances.push_back(near + (far - near) * static_cast<float>(step) / steps);
    }
    return best;
}

void addNotFinite(LightExplanation& light, const LightStats& stats, const SamplePoints& samples) {
    const std::size_t total = samples.points.size(), bad = total - stats.finite;
    if (bad == 0)
        return;
    const std::string where = samples.is_pixel ? "at the pixel"
                              : bad == total   ? "everywhere on the meshes"
                                               : fmt::format("at {} of {} places on the meshes", bad, total);
    light.findings.push_back(
        {FindingKind::not_finite,
         fmt::format("gives numbers that are not finite {}, and so adds nothing there", where),
         2 * bad > total});
}

/// What there is to say of a light's strength. @returns whether there is any that could fall on a surface.
bool addStrength(LightExplanation& light, const LightStats& stats, const SamplePoints& samples) {
    const char* const at = samples.is_pixel ? "the pixel" : "the meshes";
    if (stats.lowest < 0)
        light.findings.push_back(
            {FindingKind::negative_intensity,
             fmt::format("takes light away: its intensity is {} at {}", numberText(stats.lowest), at)});
    const bool is_far = light.attenuation && *light.attenuation < low_attenuation;
    if (is_far && stats.intensity < weak_intensity)
        light.findings.push_back(
            {FindingKind::too_far,
             fmt::format("is too far away: at a distance of {} its light is down to {} of its strength, an "
                         "intensity of {}",
                         numberText(*light.distance), numberText(*light.attenuation),
                         numberText(stats.intensity))});
    else if (stats.intensity == 0 && stats.lowest == 0)
        light.findings.push_back(
            {FindingKind::zero_intensity,
             stats.specular > 0 ? "has zero intensity; only its highlights have any" : "has zero intensity"});
    else if (stats.intensity < weak_intensity && stats.lowest == 0)
        light.findings.push_back({FindingKind::weak, fmt::format("is weak: its intensity is at most {} at {}",
                                                                 numberText(stats.intensity), at)});
    return stats.intensity > 0;
}

void addDirection(LightExplanation& light, const LightStats& stats, const SamplePoints& samples) {
    const float lit = *light.lit_share;
    if (stats.is_directed && stats.is_parallel && stats.travel.z > 0) {
        const float angle = glm::degrees(std::asin(std::min(stats.travel.z, 1.0f)));
        light.findings.push_back(
            {FindingKind::below_horizon,
             fmt::format("is {} degrees below the horizon and shines upwards", numberText(angle)),
             lit < mostly_lit});
    }
    if (lit < hardly_lit) {
        const std::string what = samples.is_pixel ? "the surface at the pixel"
                                 : lit == 0       ? "all that is seen of the meshes"
                                                  : numberText(100 * (1 - lit)) + " % of what is seen";
        light.findings.push_back(
            {FindingKind::facing_away,
             fmt::format("faces away from {}: it falls on the back of the surface", what)});
    } else if (stats.cosine < grazing_cosine) {
        light.findings.push_back(
            {FindingKind::grazing,
             fmt::format("only grazes {}, at most {} degrees from the surface",
                         samples.is_pixel ? "the surface at the pixel" : "all that is seen of the meshes",
                         numberText(glm::degrees(std::asin(stats.cosine))))});
    }
}

} // namespace

void diagnoseLight(LightExplanation& light, const SampleFunction& sample, const SamplePoints& samples) {
    if (samples.points.empty())
        return;
    std::vector<glm::vec3> positions;
    for (const SurfacePoint& point : samples.points)
        positions.push_back(point.position);
    try {
        const LightParts parts = sample(positions);
        const LightStats stats = statsOf(parts, samples.points);
        if (samples.is_pixel) {
            light.contribution.emplace();
            for (const auto& part : parts)
                *light.contribution += reflect(samples.points.front(), part.front(), samples.eye);
        }
        addNotFinite(light, stats, samples);
        if (stats.finite == 0 || parts.empty())
            return;
        light.intensity = stats.intensity;
        light.lit_share = static_cast<float>(stats.faced) / static_cast<float>(stats.finite);
        const glm::vec3 incidence = parts[stats.brightest_part][stats.brightest_place].incidence;
        if (incidence != glm::vec3(0)) {
            const Source source = findSource(sample, stats.brightest_part, positions[stats.brightest_place],
                                             glm::normalize(incidence), samples.size);
            // A light that is as strong here as anywhere has no place from which it weakens.
            if (source.strength > 1.001f * std::max(stats.intensity, 0.0f)) {
                light.attenuation = std::max(stats.intensity, 0.0f) / source.strength;
                light.distance = source.distance;
            }
        }
        if (addStrength(light, stats, samples))
            addDirection(light, stats, samples);
    } catch (const Error& error) {
        light.findings.push_back({FindingKind::shader_failed,
                                  fmt::format("has a shader that the driver refuses: {}", error.what())});
    }
}

} // namespace korl
