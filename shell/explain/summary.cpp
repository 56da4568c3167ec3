#include "shell/explain/summary.hpp"

#include "shell/base/printable.hpp"
#include "shell/explain/number_text.hpp"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace korl {

namespace {

/// The names and the words of the kinds, in their order.
struct KindWords {
    const char* name;
    const char* plural; ///< what is said of several lights
};

const KindWords& wordsOf(FindingKind kind) {
    static constexpr std::array<KindWords, 21> words{{
        {"no_lights", ""},
        {"no_mesh_in_view", ""},
        {"normals_missing", ""},
        {"normals_inverted", ""},
        {"black_surface", ""},
        {"overexposed", ""},
        {"shader_failed", "have shaders that the driver refuses"},
        {"not_finite", "give numbers that are not finite"},
        {"muted", "are muted"},
        {"silenced", "are silenced, since another light shines alone"},
        {"left_out", "are left out, since OpenGL's lights are all held by those before them"},
        {"no_opengl_light", "set up no OpenGL light"},
        {"below_horizon", "shine upwards from below the horizon"},
        {"facing_away", "face away from what is seen"},
        {"too_far", "are too far away"},
        {"zero_intensity", "have zero intensity"},
        {"negative_intensity", "take light away"},
        {"weak", "are weak"},
        {"grazing", "only graze what is seen"},
        {"uniform_undeclared", ""},
        {"uniform_unwritten", ""},
    }};
    return words.at(static_cast<std::size_t>(kind));
}

/// The lights by what keeps each of them from the picture.
using Groups = std::map<FindingKind, std::vector<const LightExplanation*>>;

Groups groupsOf(const Explanation& explanation, bool is_about_normals) {
    Groups groups;
    for (const LightExplanation& light : explanation.lights) {
        if (light.findings.empty() || !light.findings.front().is_cause)
            continue;
        const FindingKind kind = light.findings.front().kind;
        // Where a mesh has wrong normals, it is for these that lights seem to stand behind it.
        if (is_about_normals && (kind == FindingKind::facing_away || kind == FindingKind::grazing))
            continue;
        groups[kind].push_back(&light);
    }
    return groups;
}

/// What is said of the lights of a group, such as: the lights "a" and "b" are muted.
std::string sentenceOf(FindingKind kind, const std::vector<const LightExplanation*>& lights) {
    constexpr std::size_t max_names = 5;
    const auto nameAt = [&](std::size_t i) { return inQuotes(lights[i]->name); };
    if (lights.size() == 1) {
        const std::string& text = lights.front()->findings.front().text;
        // Of a shader that fails, the driver's many words stay with the light.
        const std::size_t end = kind == FindingKind::shader_failed ? text.find(':') : text.find('\n');
        return fmt::format("the light {} {}", nameAt(0), text.substr(0, end));
    }
    std::string names = nameAt(0);
    const std::size_t named = std::min(lights.size(), max_names);
    for (std::size_t i = 1; i < named; ++i)
        names += (i + 1 == lights.size() ? " and " : ", ") + nameAt(i);
    if (lights.size() > named)
        names += fmt::format(" and {} more", lights.size() - named);
    return fmt::format("the lights {} {}", names, wordsOf(kind).plural);
}

} // namespace

std::string nameOf(FindingKind kind) {
    return wordsOf(kind).name;
}

void summarize(Explanation& explanation) {
    const auto& pixel = explanation.pixel;
    const std::string what = pixel ? fmt::format("The pixel {},{}", pixel->x, pixel->y) : "The picture";
    const auto isOf = [](FindingKind kind) {
        return [kind](const Finding& finding) { return finding.kind == kind && finding.is_cause; };
    };
    const auto has = [&](FindingKind kind) {
        return std::any_of(explanation.scene.begin(), explanation.scene.end(), isOf(kind));
    };
    if (pixel && !pixel->surface) {
        explanation.causes = {FindingKind::no_mesh_in_view};
        explanation.summary = what + " shows the background: no mesh is in view there.";
        return;
    }
    if (!explanation.is_dark && !has(FindingKind::no_mesh_in_view)) {
        explanation.summary =
            fmt::format("{} is not dark: its brightness is {}{} (0 black, 1 white).", what,
                        numberText(explanation.brightness), pixel ? "" : " in the mean of what shows a mesh");
        return;
    }
    explanation.is_dark = true;
    std::vector<std::string> sentences;
    for (const Finding& finding : explanation.scene)
        if (finding.is_cause) {
            explanation.causes.push_back(finding.kind);
            sentences.push_back(finding.text);
        }
    if (!has(FindingKind::no_mesh_in_view)) {
        const bool is_about_normals = has(FindingKind::normals_inverted) || has(FindingKind::normals_missing);
        for (const auto& [kind, lights] : groupsOf(explanation, is_about_normals)) {
            explanation.causes.push_back(kind);
            sentences.push_back(sentenceOf(kind, lights));
        }
    }
    const std::string reasons = fmt::format("{}", fmt::join(sentences, "; and "));
    if (!explanation.failure.empty())
        explanation.summary = sentences.empty() ? fmt::format("There is no picture: {}.", explanation.failure)
                                                : fmt::format("There is no picture, because {}.", reasons);
    else if (sentences.empty())
        explanation.summary = what + " is dark, but nothing keeps its lights from it: what they give is "
                                     "little for the colours and the slopes of its surfaces.";
    else
        explanation.summary = fmt::format("{} is dark because {}.", what, reasons);
}

} // namespace korl
