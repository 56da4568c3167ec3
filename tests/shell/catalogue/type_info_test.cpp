#include "shell/catalogue/parameter_notes.hpp"
#include "shell/catalogue/type_info.hpp"
#include "shell/catalogue/type_names.hpp"

#include "tests/support/plain_object.hpp"

#include <gtest/gtest.h>

namespace {

struct Described : korl::test::PlainObject {
    Described(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {
        findParameter("strength")->setProperty("max", Qelt::VValue<double>(2));
        findParameter("strength")->setProperty("unit", Qelt::VValue<std::string>("lux"));
        findParameter("strength")->setProperty("description", Qelt::VValue<std::string>("how bright it is"));
    }
    Qelt::TypedSlot<double> latitude{this, "latitude", 0};
};

TEST(TypeInfoTest, SaysWhatATypeDeclares) {
    using Property = Qelt::VCreatorPropertyBase;
    const Qelt::VCreator<Described, void> first{
        Qelt::VCreatorProperties(Property(Property::Kind::name, "Thing")) +
            Property(Property::Kind::description, "A thing.") + Property(Property::Kind::category, "Things"),
        0};
    const Qelt::VCreator<Described, void> shadowed{std::string("Thing"), 1};
    EXPECT_EQ(korl::typeNames(), std::vector<std::string>{"Thing"});
    const auto types = korl::knownTypes();
    ASSERT_EQ(types.size(), 1u);
    EXPECT_EQ(types[0].name, "Thing");
    EXPECT_EQ(types[0].category, "Things");
    EXPECT_EQ(types[0].description, "A thing.");
    ASSERT_EQ(types[0].parameters.size(), 5u);
    const korl::ParameterInfo& strength = types[0].parameters[0];
    EXPECT_EQ(strength.name, "strength");
    EXPECT_EQ(strength.kind, "double");
    EXPECT_EQ(strength.default_text, "0.5");
    EXPECT_EQ(strength.minimum, std::nullopt);
    EXPECT_EQ(strength.maximum, "2");
    EXPECT_EQ(strength.unit, "lux");
    EXPECT_EQ(strength.description, "how bright it is");
    EXPECT_EQ(types[0].parameters[3].kind, "vector");
    EXPECT_EQ(types[0].parameters[3].expert_level, 3);
    EXPECT_EQ(types[0].parameters[4].unit, "") << "the notes are on the program's own lights";
    EXPECT_EQ(types[0].parameters[4].description, "");
    EXPECT_TRUE(Qelt::VObject::members().empty()); // the sample has gone
}

TEST(TypeInfoTest, SaysTheRangeInWords) {
    korl::ParameterInfo parameter{"p", "double", "0", {}, {}, "", 0, ""};
    EXPECT_EQ(korl::rangeText(parameter), "");
    parameter.maximum = "24";
    EXPECT_EQ(korl::rangeText(parameter), "up to 24");
    parameter.minimum = "-1";
    EXPECT_EQ(korl::rangeText(parameter), "-1 to 24");
    parameter.maximum = std::nullopt;
    EXPECT_EQ(korl::rangeText(parameter), "from -1");
}

TEST(TypeInfoTest, NotesAreOnTheLightsAlone) {
    EXPECT_EQ(korl::noteOn("Sun", "latitude").unit, "degrees");
    EXPECT_EQ(korl::noteOn("Sun", "altitude").unit, "");
    EXPECT_EQ(korl::noteOn("Moon", "latitude").description, "");
}

} // namespace
