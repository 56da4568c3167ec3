#include "tests/support/recorded_reports.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using Tessan::SpeakPtr;

TEST(SpeakPtr, ReportsOnStandardErrorUnlessReplaced) {
    struct Case {
        void (SpeakPtr::*report)(const std::type_info&);
        const char* line;
    };
    const Case cases[] = {
        {&SpeakPtr::SelfConstruction,
         "a pointer to double was constructed from itself; it holds nothing [SelfConstruction]\n"},
        {&SpeakPtr::DynPtrInvalid,
         "a strong pointer to double was dereferenced, but its object is gone [DynPtrInvalid]\n"},
        {&SpeakPtr::InvalidWeakPtr,
         "a weak pointer to double was dereferenced, but its object is gone [InvalidWeakPtr]\n"},
        {&SpeakPtr::DestructionCancelled,
         "the destruction of double was cancelled, since a new strong pointer holds it "
         "[DestructionCancelled]\n"},
        {&SpeakPtr::WarningUnctionChange,
         "the reference count of double changed while it is being destroyed [WarningUnctionChange]\n"},
    };
    for (const Case& expected : cases) {
        testing::internal::CaptureStderr();
        (SpeakPtr::theSpeaker().*expected.report)(typeid(double));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), expected.line);
    }
    testing::internal::CaptureStderr();
    SpeakPtr::theSpeaker().printRS("what happened", "where");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "what happened [where]\n");
}

TEST(SpeakPtr, IsReplacedAndBroughtBack) {
    SpeakPtr& built_in = SpeakPtr::theSpeaker();
    struct Silent : SpeakPtr {
        void printRS(const std::string&, const char*) override {}
    } first, second;
    EXPECT_EQ(SpeakPtr::replaceSpeaker(&first), nullptr);
    EXPECT_EQ(&SpeakPtr::theSpeaker(), &first);
    EXPECT_EQ(SpeakPtr::replaceSpeaker(&second), &first);
    EXPECT_EQ(&SpeakPtr::theSpeaker(), &second);
    EXPECT_EQ(SpeakPtr::replaceSpeaker(nullptr), &second);
    EXPECT_EQ(&SpeakPtr::theSpeaker(), &built_in);
}

} // namespace
