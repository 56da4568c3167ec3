// What is said of a parameter that a slot cannot hold, and of slots that objects get by the name of a type.

#include "tests/support/plain_object.hpp"
#include "tests/support/recorded_reports.hpp"

#include <gmock/gmock.h>

namespace {

using korl::test::PlainObject;
using Orvid::PhysicalSpace;
using Qelt::TypedSlot;
using Qelt::TypedSlotCreator;
using Qelt::TypedSlotCreatorOf;
using Qelt::VParameter;
using Qelt::VSlotGlobals;
using Qelt::VValue;
using Qelt::VValueBase;
using Tessan::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SlotReport, ParameterOfTheSlotsValueTypeButAnotherClassIsToldApart) {
    PlainObject object("o");
    const StrongPtr<VParameter> general(
        new VParameter(StrongPtr<VValueBase>(new VValue<double>(1)), "general"));
    VSlotGlobals::addParameter(object, "general", 0, general);
    korl::test::RecordedReports recorded;
    const TypedSlot<double> slot(&object, "general", 2.0);
    EXPECT_EQ(slot.parameter(), nullptr);
    EXPECT_THAT(
        recorded.places,
        ElementsAre("TypedSlot(VObject*that, const string&name, const T&initialValue, int expertLevel"));
    EXPECT_THAT(recorded.messages,
                ElementsAre("parameter \"general\" has a double, but is a Qelt::VParameter, not "
                            "a Qelt::VValueParameter<double>"));
}

template <class T>
void expectInputByName(const std::string& type_name) {
    const TypedSlotCreatorOf<T> creator;
    TypedSlotCreator::registerTypedSlotCreator(typeid(T), creator, Tessan::Typename(typeid(T)));
    PlainObject object("o");
    Qelt::VSlot* const input = object.InputCreation(type_name, "input");
    ASSERT_NE(input, nullptr) << type_name;
    EXPECT_TRUE(input->type() == typeid(T));
    TypedSlotCreator::unregisterTypedSlotCreator(typeid(T), creator, Tessan::Typename(typeid(T)));
}

TEST(InputCreation, FindsPointsAndVectorsByTheNamesThatUsersWrite) {
    expectInputByName<PhysicalSpace::point>("Orvid::PhysicalSpace::point");
    expectInputByName<PhysicalSpace::vector>("Orvid::PhysicalSpace::vector");
}

TEST(InputCreation, MakesSlotsThatHaveTheirCreatorWhateverTheLibraryRegistered) {
    const TypedSlotCreatorOf<double> creator;
    TypedSlotCreator::registerTypedSlotCreator(typeid(double), creator, "double");
    korl::test::RecordedReports recorded;
    testing::internal::CaptureStdout();
    {
        PlainObject object("o");
        object.InputCreation("double", "input");
        TypedSlotCreator::unregisterTypedSlotCreator(typeid(double), creator, "double");
    }
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_THAT(recorded.messages, IsEmpty());
}

} // namespace
