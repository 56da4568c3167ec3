#include "shell/base/module_call.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/loaded_modules.hpp"

#include <sorvik/object.hpp>

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <thread>
#include <typeinfo>
#include <unistd.h>

namespace korl {
namespace {

struct Lamp : Qelt::VObject {
    explicit Lamp(const std::string& name) : VObject(name, 0, {}) {}
};

/// A call of an operation of an object whose class is this test's own.
template <class Work>
std::string errorOf(const std::string& name, Work work) {
    const Lamp object(name);
    return korl::test::errorOf([&] { ModuleCall(object, "illuminate").run(work); });
}

TEST(ModuleCallTest, GivesWhatTheCallGives) {
    const std::string module = "lamps";
    int number = 0;
    int& same = ModuleCall(module, "initialisation").run([&]() -> int& { return number; });
    EXPECT_EQ(&same, &number);
}

TEST(ModuleCallTest, SaysWhereAnExceptionCameFrom) {
    EXPECT_EQ(errorOf("lamp", [] { throw std::runtime_error("no oil"); }),
              "illuminate of \"lamp\" threw the exception \"no oil\"; report it to the author of the module");
    EXPECT_EQ(errorOf("lamp\n2", [] { throw std::runtime_error("no\x1b[31m oil"); }),
              "illuminate of \"lamp\\n2\" threw the exception \"no\\x1b[31m oil\"; report it to the author "
              "of the module");
    EXPECT_EQ(errorOf("lamp", [] { throw 5; }), "illuminate of \"lamp\" threw something that is not an "
                                                "exception; report it to the author of the module");
    EXPECT_EQ(errorOf("lamp", [] { throw Error("the shell's own"); }), "the shell's own");
}

TEST(ModuleCallTest, NamesTheModuleOfTheClass) {
    const int handle = 0;
    const Lamp object("lamp");
    enterModule("lamps", &handle, &typeid(object)); // the library of this test
    EXPECT_EQ(errorOf("lamp", [] { throw std::bad_cast(); }),
              "illuminate of \"lamp\" in the module \"lamps\" threw the exception \"std::bad_cast\"; report "
              "it to the author of the module");
    EXPECT_EQ(
        errorOf("lamp", [] { throw std::bad_alloc(); }), // nobody's fault
        "illuminate of \"lamp\" in the module \"lamps\" failed: there is not enough memory for this; take "
        "a smaller picture or model, fewer jobs at once, or let the program have more (ulimit -v)");
    leaveModule(&handle);
}

void exitInACall() {
    reportExitsOfModules();
    reportExitsOfModules(); // each time that a module is loaded
    const Lamp object("lamp\n");
    const std::string module = "lamps";
    const ModuleCall outer(module, "initialisation");
    const ModuleCall call(object, "update");
    std::exit(0);
}

TEST(ModuleCallDeathTest, AnExitInACallIsToldAndFails) {
    EXPECT_EXIT(exitInACall(), testing::ExitedWithCode(1),
                "^korl: update of \"lamp\\?\" called exit; the program ends with its work undone\n$");
}

TEST(ModuleCallDeathTest, OtherExitsStayAsTheyAre) {
    const auto exit = [] {
        reportExitsOfModules();
        const std::string module = "lamps";
        ModuleCall(module, "initialisation").run([] {});
        const ModuleCall call(module, "unloading");
        std::thread([] { std::exit(3); }).join(); // which is in no call
    };
    EXPECT_EXIT(exit(), testing::ExitedWithCode(3), "^$");
}

void endInACall(int signal) {
    reportSignalsOfModules();
    const std::string module = "lamps";
    const ModuleCall call(module, "initialisation");
    std::raise(signal);
}

TEST(ModuleCallDeathTest, ASignalInACallIsToldAndTakesItsCourse) {
    EXPECT_EXIT(endInACall(SIGABRT), testing::KilledBySignal(SIGABRT),
                "^korl: initialisation in the module \"lamps\" ended with signal 6 \\(Aborted\\); report it "
                "to the author of the module\n$");
}

TEST(ModuleCallDeathTest, ALongNameLeavesRoomForWhatHappened) {
    const auto abort = [] {
        reportSignalsOfModules();
        const Lamp object(std::string(5000, 'x'));
        const ModuleCall call(object, "update");
        std::raise(SIGABRT);
    };
    EXPECT_EXIT(abort(), testing::KilledBySignal(SIGABRT),
                "^korl: update of \"x+\" ended with signal 6 .*author of the module\n$");
}

TEST(ModuleCallDeathTest, OtherSignalsStayAsTheyAre) {
    const auto abort = [] {
        reportSignalsOfModules();
        std::raise(SIGABRT);
    };
    EXPECT_EXIT(abort(), testing::KilledBySignal(SIGABRT), "^$");
    const auto abortWithHandler = [] {
        std::signal(SIGABRT, [](int) { ::_exit(7); });
        endInACall(SIGABRT);
    };
    EXPECT_EXIT(abortWithHandler(), testing::ExitedWithCode(7), "^$");
}

} // namespace
} // namespace korl
