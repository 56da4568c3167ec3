// What every light type of the module has in common.

#include "every_light.hpp"

#include <tessan/ageable.hpp>

#include <string>

namespace korl::test {

namespace {

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

TEST_P(EveryLight, SnippetDefinesOneLightingFunction) {
    const std::string snippet = light.source().snippet();
    EXPECT_EQ(occurrences(snippet, "getLight_$$"), 1u);
    EXPECT_EQ(occurrences(snippet, "void\tgetLight_$$("), 1u);
    EXPECT_EQ(light.source().snippet(), snippet);
}

TEST_P(EveryLight, UniformsAreSpeltAsInTheSnippet) {
    light.light.environment_render(light.context); // where some lights write them
    const auto& source = light.source();
    EXPECT_FALSE(source.uniforms().empty());
    for (const auto& [name, value] : source.uniforms()) {
        EXPECT_TRUE(name.ends_with("$$")) << name;
        std::size_t declarations = 0;
        for (const char* const type : {"vec4", "vec3", "float"})
            declarations += occurrences(source.snippet(), std::string("uniform ") + type + " " + name + " ");
        EXPECT_EQ(declarations, 1u) << name;
    }
}

TEST_P(EveryLight, StartsWithTheValuesThatItsMakerPrefers) {
    Qelt::VCreationPreferences preferences;
    for (const ParameterAnswers& parameter : GetParam().parameters)
        preferences.prefer(parameter.name, parameter.value);
    const auto made = Qelt::VCreatorBase::find(GetParam().type)->create("made", nullptr, preferences);
    for (const ParameterAnswers& parameter : GetParam().parameters)
        EXPECT_EQ(made->findParameter(parameter.name)->globalValue().Text(), parameter.value)
            << parameter.name;
}

TEST_P(EveryLight, LightSourceTakesTheTimeOfItsMaking) {
    Tessan::Ageable clock;
    clock.grow();
    ModuleLight young(GetParam().type);
    EXPECT_EQ(young.source().age(), Tessan::Ageable::GlobalTime.load());
}

TEST_P(EveryLight, EachContextHasItsOwnLightSourceUnlessDeclaredOtherwise) {
    auto& source = light.source();
    auto& other = light.otherSource();
    EXPECT_EQ(&light.source(), &source); // from frame to frame
    source.uniforms()["Own$$"] = 7;
    EXPECT_EQ(&source == &other, GetParam().has_one_source);
    EXPECT_EQ(source.serialNumber() == other.serialNumber(), GetParam().has_one_source);
    EXPECT_EQ(other.uniforms().contains("Own$$"), GetParam().has_one_source);
}

FOR_EVERY_LIGHT(EveryLight);

} // namespace

} // namespace korl::test
