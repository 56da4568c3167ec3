#include "shell/animation/variation.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/scene/light.hpp"
#include "shell/scene/scene.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>
#include <limits>
#include <numbers>
#include <sstream>
#include <vector>

namespace korl {

namespace {

constexpr const char* sun_parameter = "timeofday";

std::size_t countOfWords(const std::string& text) {
    std::istringstream words(text);
    std::size_t count = 0;
    for (std::string word; words >> word;)
        ++count;
    return count;
}

/// The numbers of a text form; none for one that has other words in it.
std::vector<double> numbersIn(const std::string& text) {
    std::vector<double> numbers(countOfWords(text));
    return Qelt::componentsFromText(numbers, text) ? numbers : std::vector<double>();
}

/// Reads "FROM:TO" into a variation. @returns false for any other form.
bool readEnds(Variation& variation, const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size() || colon != text.rfind(':'))
        return false;
    variation.from = text.substr(0, colon);
    variation.to = text.substr(colon + 1);
    return true;
}

void validateEnd(const std::string& name, const Qelt::VParameter& parameter, const std::string& text) {
    const auto value = parameter.DefaultValue().clone();
    if (numberCount(parameter.type()) == 0 || !value->setValueFromText(text))
        throw Error(fmt::format("cannot vary {}: it takes {}, found {}", inQuotes(name),
                                valueForm(parameter.type()), inQuotes(text)));
    if (!isFinite(*value))
        throw Error(
            fmt::format("cannot vary {}: it takes finite numbers, found {}", inQuotes(name), inQuotes(text)));
}

// The lengths of vectors, which are squared on the way, are within a long double's range whatever they are.
using LongVector = std::array<long double, 3>;

LongVector longVector(const std::vector<double>& values) {
    return {values[0], values[1], values[2]};
}

long double dot(const LongVector& a, const LongVector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// a + factor b, of unit length where it is not zero.
LongVector unitSum(const LongVector& a, long double factor, const LongVector& b) {
    LongVector sum{a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
    if (const long double length = std::sqrt(dot(sum, sum)); length > 0)
        for (long double& component : sum)
            component /= length;
    return sum;
}

/// Whether the way from one vector to another is through zero, but for the rounding of its ends.
bool isThroughZero(const LongVector& a, const LongVector& b) {
    constexpr long double tolerance = 1e-12L;
    const LongVector unit_a = unitSum(a, 0, a), unit_b = unitSum(b, 0, b);
    const LongVector off{unit_a[0] + unit_b[0], unit_a[1] + unit_b[1], unit_a[2] + unit_b[2]};
    return dot(unit_a, unit_a) > 0 && dot(unit_b, unit_b) > 0 && dot(off, off) < tolerance * tolerance;
}

/// Where the great circle from a to the opposite b is after a share of it, 0 to 1 (see valueAt).
std::vector<double> onGreatCircle(const LongVector& a, const LongVector& b, long double share) {
    constexpr long double pi = std::numbers::pi_v<long double>;
    constexpr LongVector down{0, 0, -1}, from_the_viewer{0, -1, 0};
    const LongVector start = unitSum(a, 0, a);
    const bool is_vertical = std::hypot(start[0], start[1]) < 1e-9L;
    const LongVector& wanted = is_vertical ? from_the_viewer : down;
    const LongVector middle = unitSum(wanted, -dot(wanted, start), start);
    const long double length_a = std::sqrt(dot(a, a)), length_b = std::sqrt(dot(b, b));
    const long double length = length_a + (length_b - length_a) * share;
    const long double along = std::sin(pi * (0.5L - share)); // exactly 0 half way
    const long double across = std::sin(pi * share);
    constexpr long double max_double = std::numeric_limits<double>::max();
    std::vector<double> values;
    for (std::size_t i = 0; i < 3; ++i)
        values.push_back(static_cast<double>(
            std::clamp((along * start[i] + across * middle[i]) * length, -max_double, max_double)));
    return values;
}

} // namespace

Variation parseVariation(const std::string& text) {
    Variation variation;
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.rfind('.', equals);
    if (equals == std::string::npos || dot == std::string::npos || dot == 0 || dot + 1 == equals ||
        !readEnds(variation, text.substr(equals + 1)))
        throw Error("a variation is NAME.PARAM=FROM:TO such as \"sun.timeofday=6:18\", found " +
                    inQuotes(text));
    variation.object = text.substr(0, dot);
    variation.parameter = text.substr(dot + 1, equals - dot - 1);
    return variation;
}

Variation sunTime(const Scene& scene, const std::string& hours) {
    const auto& objects = scene.objects();
    const auto sun = std::find_if(objects.begin(), objects.end(),
                                  [](const auto& object) { return hasSolarTime(*object); });
    if (sun == objects.end())
        throw Error("the time of the sun cannot be varied: the scene has no Sun; add one");
    Variation variation{(*sun)->Name(), sun_parameter, "", ""};
    if (!readEnds(variation, hours))
        throw Error("the time of the sun is FROM:TO in hours, such as \"6:18\", found " + inQuotes(hours));
    return variation;
}

void validate(const Variation& variation, const Scene& scene, const std::string& view) {
    const Qelt::VParameter& parameter = scene.parameter(variation.object, variation.parameter);
    const std::string name = fmt::format("{}.{}", variation.object, variation.parameter);
    validateEnd(name, parameter, variation.from);
    validateEnd(name, parameter, variation.to);
    // A view's own value goes before what the parameter follows, so there it would be seen.
    if (view.empty() && parameter.hasSource()) {
        const Qelt::VParameter* const source = parameter.source();
        const Qelt::VObject* const owner = source ? source->creator() : nullptr;
        throw Error(fmt::format("cannot vary {}: it follows {}", inQuotes(name),
                                owner ? inQuotes(fmt::format("{}.{}", owner->Name(), source->Name())) +
                                            "; vary that one"
                                      : "a parameter that is gone; end that first"));
    }
}

std::string valueAt(const Variation& variation, int frame, int frames, bool is_direction) {
    if (frame == 0)
        return variation.from;
    if (frame == frames - 1)
        return variation.to;
    std::vector<double> values = numbersIn(variation.from);
    const std::vector<double> ends = numbersIn(variation.to);
    if (is_direction && isThroughZero(longVector(values), longVector(ends)))
        return Qelt::componentsToText(onGreatCircle(longVector(values), longVector(ends),
                                                    static_cast<long double>(frame) / (frames - 1)));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double a = values[i], b = ends[i];
        const double value = a + (b - a) * frame / (frames - 1);
        // Ends so far apart that their difference is beyond double take the way that needs none.
        values[i] = std::isfinite(value) ? value : std::lerp(a, b, static_cast<double>(frame) / (frames - 1));
    }
    return Qelt::componentsToText(values);
}

bool isDirection(const Variation& variation, const Scene& scene) {
    return valueKind(scene.parameter(variation.object, variation.parameter).type()) == "vector";
}

bool isSolarTime(const Variation& variation, const Scene& scene) {
    const Qelt::VObject* const object = scene.find(variation.object);
    return object && hasSolarTime(*object) && variation.parameter == sun_parameter;
}

} // namespace korl
