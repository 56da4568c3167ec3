// The steps in which a creator makes an object, told by everyone who takes part.

#include "load_order.hpp"
#include "tests/support/captured_trace.hpp"
#include "tests/support/loaded_module.hpp"

#include <sorvik/creator.hpp>
#include <sorvik/vprintf.hpp>

#include <cstdio>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace {

using korl::test::LoadedModule;
using korl::test::traceOf;
using Qelt::VCreator;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Tessan::StrongPtr;

std::string stateOf(const VObject& object) {
    return object.Name() + (object.creator() ? " of " + object.creator()->keyname("/") : " of nobody") +
           (object.processesRequests() ? ", answering" : ", not answering") + "\n";
}

void record(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

/// Tells of every object that is made.
struct Shell : Qelt::VActionNotifier {
    void objectCreated(const StrongPtr<VObject>& object, Qelt::VContext* context,
                       VCreatorBase& creator) override {
        record((context == &caller ? "for the caller by " : "for nobody by ") + creator.keyname("/") + ": " +
               stateOf(*object));
    }
    Qelt::VContext caller;
};

/// An object that tells what happens to it, and throws if that is its name.
struct TellingObject : VObject {
    TellingObject(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {
        record("made: " + stateOf(*this));
        if (name == "throwing")
            throw std::runtime_error("nothing comes of it");
    }
    void setup() override { record("set up: " + stateOf(*this)); }
};

TEST(Creation, StepsComeInTheirOrder) {
    Shell shell;
    VCreator<TellingObject, void> creator(std::string("Teller"), 0);
    EXPECT_EQ(traceOf(100, [&] { creator.create("it", &shell.caller); }),
              "VCreator::create(it)\n"
              "made: it of nobody, not answering\n"
              "VCreator::create(it) got derived object\n"
              "set up: it of Teller, not answering\n"
              "for the caller by Teller: it of Teller, answering\n");
}

TEST(Creation, OfEveryTypeEndsWithItsAnnouncement) {
    Shell shell;
    const LoadedModule module;
    for (VCreatorBase* const creator : VCreatorBase::catalogue()) {
        const std::string key = creator->keyname("/");
        EXPECT_EQ(traceOf(100, [&] { creator->create("it", &shell.caller); }),
                  "VCreator::create(it)\n"
                  "VCreator::create(it) got derived object\n"
                  "for the caller by " +
                      key + ": it of " + key + ", answering\n");
    }
}

TEST(Creation, EndsWithAnExceptionOfTheConstructor) {
    const Shell shell;
    VCreator<TellingObject, void> creator(std::string("Teller"), 0);
    EXPECT_EQ(traceOf(100, [&] { EXPECT_THROW(creator.create("throwing"), std::runtime_error); }),
              "VCreator::create(throwing)\n"
              "made: throwing of nobody, not answering\n");
    EXPECT_TRUE(VObject::members().empty());
}

TEST(CreationDeathTest, TraceOfTheCreatorsIsFlushedAtOnce) {
    std::string last;
    {
        const LoadedModule module;
        last = korl::test::traceOfMaking(*korl::test::creatorsInLoadOrder().back());
    }
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            static char buffer[65536];
            std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
            Qelt::setVerbosity(100);
            const LoadedModule module;
            _exit(0); // which leaves behind whatever is still in the buffer
        },
        testing::ExitedWithCode(0),
        testing::AllOf(testing::HasSubstr("VCreator::VCreator(Headlight,-3000)\n"), testing::EndsWith(last)));
}

} // namespace
