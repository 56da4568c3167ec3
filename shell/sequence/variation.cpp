#include "shell/sequence/variation.hpp"

#include "shell/error.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene/value_kind.hpp"

#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>
#include <vector>

namespace korl {

namespace {

constexpr const char* sun_type = "Sun";
constexpr const char* sun_parameter = "timeofday";

bool isSun(const Qelt::VObject& object) {
    const Qelt::VCreatorBase* const creator = object.creator().get();
    return creator && creator->Name() == sun_type;
}

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
    const std::vector<double> numbers = numbersIn(text);
    if (numbers.empty() || !parameter.DefaultValue().clone()->setValueFromText(text))
        throw Error("cannot vary \"" + name + "\": it takes " + valueForm(parameter.type()) + ", found \"" +
                    text + "\"");
    if (!std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); }))
        throw Error("cannot vary \"" + name + "\": it takes finite numbers, found \"" + text + "\"");
}

} // namespace

Variation parseVariation(const std::string& text) {
    Variation variation;
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.rfind('.', equals);
    if (equals == std::string::npos || dot == std::string::npos || dot == 0 || dot + 1 == equals ||
        !readEnds(variation, text.substr(equals + 1)))
        throw Error("a variation is NAME.PARAM=FROM:TO such as \"sun.timeofday=6:18\", found \"" + text +
                    "\"");
    variation.object = text.substr(0, dot);
    variation.parameter = text.substr(dot + 1, equals - dot - 1);
    return variation;
}

Variation sunTime(const Scene& scene, const std::string& hours) {
    const auto& objects = scene.objects();
    const auto sun =
        std::find_if(objects.begin(), objects.end(), [](const auto& object) { return isSun(*object.get()); });
    if (sun == objects.end())
        throw Error("the time of the sun cannot be varied: the scene has no Sun; add one");
    Variation variation{(*sun)->Name(), sun_parameter, "", ""};
    if (!readEnds(variation, hours))
        throw Error("the time of the sun is FROM:TO in hours, such as \"6:18\", found \"" + hours + "\"");
    return variation;
}

void validate(const Variation& variation, const Scene& scene, const std::string& view) {
    const Qelt::VParameter& parameter = scene.parameter(variation.object, variation.parameter);
    const std::string name = variation.object + "." + variation.parameter;
    validateEnd(name, parameter, variation.from);
    validateEnd(name, parameter, variation.to);
    // A view's own value goes before what the parameter follows, so there it would be seen.
    if (view.empty() && parameter.hasSource()) {
        const Qelt::VParameter* const source = parameter.source();
        const Qelt::VObject* const owner = source ? source->creator() : nullptr;
        throw Error("cannot vary \"" + name + "\": it follows " +
                    (owner ? "\"" + owner->Name() + "." + source->Name() + "\"; vary that one"
                           : std::string("a parameter that is gone; end that first")));
    }
}

std::string valueAt(const Variation& variation, int frame, int frames) {
    if (frame == 0)
        return variation.from;
    if (frame == frames - 1)
        return variation.to;
    std::vector<double> values = numbersIn(variation.from);
    const std::vector<double> ends = numbersIn(variation.to);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double a = values[i], b = ends[i];
        const double value = a + (b - a) * frame / (frames - 1);
        // Ends so far apart that their difference is beyond double take the way that needs none.
        values[i] = std::isfinite(value) ? value : std::lerp(a, b, static_cast<double>(frame) / (frames - 1));
    }
    return Qelt::componentsToText(values);
}

bool isSolarTime(const Variation& variation, const Scene& scene) {
    const Qelt::VObject* const object = scene.find(variation.object);
    return object && isSun(*object) && variation.parameter == sun_parameter;
}

} // namespace korl
