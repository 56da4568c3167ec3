// What the module asks of the shell at load and unload, call by call. The functions of the shell that are
// defined here stand before those of its libraries, write down that they were called, and do nothing else.

#include "load_order.hpp"
#include "tests/support/loaded_module.hpp"

#include <orvid/rgba_float.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>
#include <sorvik/slot_creator.hpp>
#include <sorvik/value_creator.hpp>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Tessan::StrongPtr;

std::vector<std::string> calls;
bool unloading_throws = false;
std::string failing_call; ///< The call that throws; empty for none.

void registerAs(const std::string& call) {
    calls.push_back(call);
    if (call == failing_call)
        throw std::runtime_error("the shell refuses: " + call);
}

/// A hook that the module has put into the list of what is run when it is unloaded.
struct Hook {
    void (*function)(void*);
    void* argument;
    std::string name;
};

/// How many there were since the test began.
int hooks = 0;

void runHook(void* hook) {
    const std::unique_ptr<Hook> run(static_cast<Hook*>(hook));
    calls.push_back("at unload: " + run->name);
    run->function(run->argument);
}

bool isOfTheModule(const void* library) {
    Dl_info found{};
    return library && dladdr(library, &found) != 0 && korl::test::moduleFile() == found.dli_fname;
}

} // namespace

/// The runtime's own: through it go the destructors of static objects and the functions given to `atexit`.
extern "C" __attribute__((visibility("default"))) int __cxa_atexit(void (*function)(void*), void* argument,
                                                                   void* library) {
    using Register = int(void (*)(void*), void*, void*);
    static auto* const runtime = reinterpret_cast<Register*>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    if (!isOfTheModule(library))
        return runtime(function, argument, library);
    const std::string name = "hook " + std::to_string(++hooks);
    calls.push_back("registered: " + name);
    return runtime(&runHook, new Hook{function, argument, name}, library);
}

void VInitialization::initPlugin(int reason, const char* name, const char* version_key) {
    registerAs("initPlugin " + std::to_string(reason) + " " + name + " " + version_key);
    if (reason == unloading && unloading_throws)
        throw std::runtime_error("the shell is upset");
}

void Qelt::Vprintf(int verbosity, const char* format, ...) {
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    registerAs("Vprintf " + std::to_string(verbosity) + " " + text);
}

void Qelt::VValueCreator::registerCreator(const VValueCreator&, const std::string& type_name) {
    registerAs("registerCreator " + type_name);
}

void Qelt::TypedSlotCreator::registerTypedSlotCreator(const std::type_info& type, const TypedSlotCreator&,
                                                      const std::string& name) {
    registerAs("registerTypedSlotCreator " + Tessan::Typename(type) + " " + name);
}

bool Qelt::TypedSlotCreator::unregisterTypedSlotCreator(const std::type_info& type, const TypedSlotCreator&,
                                                        const std::string& name) {
    calls.push_back("unregisterTypedSlotCreator " + Tessan::Typename(type) + " " + name);
    return true;
}

std::size_t Qelt::VCreatorBase::deleteAllInstances(const std::type_info& type) {
    const std::string name = Tessan::Typename(type);
    calls.push_back("deleteAllInstances " + name.substr(name.rfind(':') + 1) + " of " +
                    std::to_string(VCreatorBase::catalogue().size()) + " creators");
    return 0;
}

// Those of the Qt resource system likewise.
__attribute__((visibility("default"))) bool
qRegisterResourceData(int version, const unsigned char*, const unsigned char*, const unsigned char*) {
    registerAs("qRegisterResourceData " + std::to_string(version));
    return true;
}

__attribute__((visibility("default"))) bool
qUnregisterResourceData(int version, const unsigned char*, const unsigned char*, const unsigned char*) {
    calls.push_back("qUnregisterResourceData " + std::to_string(version));
    return true;
}

namespace {

/// What the module does at load, and how it is taken back at unload; empty where there is nothing to take
/// back.
struct Step {
    std::string call, withdrawal;
};

/// The steps for the types of a unit's parameters that no unit before it has.
void addTypes(std::vector<Step>& steps, const Qelt::VObject& light, std::set<std::string>& known) {
    for (const auto& entry : light.parameters()) {
        const std::string type = Tessan::Typename(entry.parameter->type());
        if (!known.insert(type).second)
            continue;
        if (type == "double" || type == "Orvid::rgba_float_t")
            steps.push_back({"registerCreator " + type, ""});
        steps.push_back({"registerTypedSlotCreator " + type + " " + type,
                         "unregisterTypedSlotCreator " + type + " " + type});
    }
}

/// The steps as the list of units and the lights themselves have them.
std::vector<Step> stepsOfTheUnits() {
    const korl::test::LoadedModule module;
    std::vector<Step> steps{
        {"initPlugin 0 tovek_light KORL_API_VERSION", "initPlugin 1 tovek_light KORL_API_VERSION"}};
    std::set<std::string> known;
    int creators = 0;
    const auto all = korl::test::creatorsInLoadOrder();
    for (const std::string& unit : korl::test::unitsInLoadOrder()) {
        if (unit == "Resource")
            steps.push_back({"qRegisterResourceData 3", "qUnregisterResourceData 3"});
        StrongPtr<Qelt::VObject> light;
        for (Qelt::VCreatorBase* const creator : all)
            if (creator->Name() == unit) {
                light = creator->create("light");
                const std::string type = Tessan::Typename(creator->type());
                steps.push_back({"Vprintf 100 " + korl::test::traceOfMaking(*creator),
                                 "deleteAllInstances " + type.substr(type.rfind(':') + 1) + " of " +
                                     std::to_string(++creators) + " creators"});
            }
        if (light)
            addTypes(steps, *light, known);
    }
    return steps;
}

const std::vector<Step>& steps() {
    static const std::vector<Step> found = [] {
        std::vector<Step> all = stepsOfTheUnits();
        calls.clear(); // those that finding out took
        return all;
    }();
    return found;
}

/// What takes back the first steps, in reverse.
std::vector<std::string> withdrawalOf(std::size_t count) {
    std::vector<std::string> withdrawal;
    for (std::size_t i = count; i-- > 0;)
        if (!steps()[i].withdrawal.empty())
            withdrawal.push_back(steps()[i].withdrawal);
    return withdrawal;
}

TEST(LoadOrder, UnitsComeInTheirOrder) {
    const std::vector<std::string> expected{"Headlight",        "Torch",    "Sun",         "DistanceLight",
                                            "DirectionalLight", "Resource", "AmbientLight"};
    std::vector<std::string> units = korl::test::unitsInLoadOrder();
    std::erase_if(units, [&](const std::string& unit) { // others may stand anywhere
        return std::find(expected.begin(), expected.end(), unit) == expected.end();
    });
    EXPECT_EQ(units, expected);
}

TEST(LoadOrder, AnnouncesThenRegistersAndWithdrawsInReverse) {
    std::vector<std::string> expected{"registered: hook 1"}; // which is empty
    for (const Step& step : steps())
        expected.push_back(step.call);
    hooks = 0;
    korl::test::LoadedModule module;
    expected.emplace_back("registered: hook 2");
    EXPECT_EQ(std::exchange(calls, {}), expected);

    module.unload();
    expected = withdrawalOf(steps().size());
    expected.insert(expected.begin(), "at unload: hook 2");
    expected.emplace_back("at unload: hook 1");
    EXPECT_EQ(std::exchange(calls, {}), expected);
    EXPECT_TRUE(Qelt::VCreatorBase::catalogue().empty());
}

/// Loads the module, prints what it did after the call that throws, and ends the process, in which the loader
/// has been left in the middle of its work.
[[noreturn]] void loadUntil(const std::string& call) {
    failing_call = call;
    // It is declared as a function that doesn't throw, but lets exceptions of initialisers through.
    void* (*const volatile load)(const char*, int) = &dlopen;
    try {
        load(korl::test::moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        bool after = false;
        for (const std::string& made : calls) {
            if (after)
                std::fprintf(stderr, "%s\n", made.c_str());
            after = after || made == call;
        }
        std::_Exit(Qelt::VCreatorBase::catalogue().empty() ? 0 : 1);
    }
    std::_Exit(2);
}

TEST(LoadOrderDeathTest, WhatWasRegisteredIsWithdrawnWhereTheShellRefuses) {
    for (std::size_t i = 0; i < steps().size(); ++i) {
        const std::string call = steps()[i].call;
        std::string expected = "the shell refuses: " + call + "\n";
        for (const std::string& withdrawal : withdrawalOf(i))
            expected += withdrawal + "\n";
        EXPECT_EXIT(loadUntil(call), testing::ExitedWithCode(0), testing::Eq(expected));
    }
}

TEST(LoadOrderDeathTest, ExceptionFromTheShellAtUnloadEndsTheProcess) {
    EXPECT_DEATH(
        {
            korl::test::LoadedModule module;
            unloading_throws = true;
            module.unload();
        },
        "the shell is upset");
}

} // namespace
