// What the module asks of the shell at load and unload, call by call. The functions of the shell that are
// defined here stand before those of its libraries, write down that they were called, and do nothing else.

#include "tests/support/loaded_module.hpp"

#include <orvid/rgba_float.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>
#include <sorvik/slot_creator.hpp>
#include <sorvik/value_creator.hpp>

#include <cstdarg>
#include <cstdio>
#include <gmock/gmock.h>
#include <stdexcept>
#include <utility>

namespace {

std::vector<std::string> calls;
bool unloading_throws = false;

} // namespace

void VInitialization::initPlugin(int reason, const char* name, const char* version_key) {
    calls.push_back("initPlugin " + std::to_string(reason) + " " + name + " " + version_key);
    if (reason == unloading && unloading_throws)
        throw std::runtime_error("the shell is upset");
}

void Qelt::Vprintf(int verbosity, const char* format, ...) {
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    calls.push_back("Vprintf " + std::to_string(verbosity) + " " + text);
}

void Qelt::VValueCreator::registerCreator(const VValueCreator&, const std::string& type_name) {
    calls.push_back("registerCreator " + type_name);
}

void Qelt::TypedSlotCreator::registerTypedSlotCreator(const std::type_info& type, const TypedSlotCreator&,
                                                      const std::string& name) {
    calls.push_back("registerTypedSlotCreator " + Tessan::Typename(type) + " " + name);
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
    calls.push_back("qRegisterResourceData " + std::to_string(version));
    return true;
}

__attribute__((visibility("default"))) bool
qUnregisterResourceData(int version, const unsigned char*, const unsigned char*, const unsigned char*) {
    calls.push_back("qUnregisterResourceData " + std::to_string(version));
    return true;
}

namespace {

using testing::ElementsAre;

TEST(LoadOrder, AnnouncesThenRegistersAndWithdrawsInReverse) {
    korl::test::LoadedModule module;
    const std::string color = "Orvid::rgba_float_t", number = "double";
    const std::string point = "Orvid::PhysicalSpace::point";
    const std::string vector = "Orvid::PhysicalSpace::vector";
    const auto made = [](const std::string& creator) {
        return "Vprintf 100 VCreator::VCreator(" + creator + ")\n";
    };
    const auto slots = [](const std::string& type) {
        return "registerTypedSlotCreator " + type + " " + type;
    };
    EXPECT_THAT(std::exchange(calls, {}),
                ElementsAre("initPlugin 0 tovek_light KORL_API_VERSION", made("Headlight,-3000"),
                            made("Scenery/Headlight,2000"), "registerCreator " + number, slots(number),
                            slots(point), made("Scenery/Torch,0"), slots(vector), made("Scenery/Sun,0"),
                            made("Scenery/DistanceLight,0"), "registerCreator " + color, slots(color),
                            made("Scenery/DirectionalLight,0"), "qRegisterResourceData 3",
                            made("Scenery/AmbientLight,0")));
    module.unload();
    const auto withdrawn = [](const std::string& type) {
        return "unregisterTypedSlotCreator " + type + " " + type;
    };
    const auto deleted = [](const std::string& type, int creators) {
        return "deleteAllInstances " + type + " of " + std::to_string(creators) + " creators";
    };
    EXPECT_THAT(std::exchange(calls, {}),
                ElementsAre(deleted("AmbientLight", 7), "qUnregisterResourceData 3",
                            deleted("DirectionalLight", 6), withdrawn(color),
                            deleted("MyLightSource", 5),    // the class of the DistanceLight
                            deleted("DirectionalLight", 4), // that of the Sun
                            withdrawn(vector), deleted("Torch", 3), withdrawn(point), withdrawn(number),
                            deleted("Headlight", 2), deleted("Headlight", 1),
                            "initPlugin 1 tovek_light KORL_API_VERSION"));
    EXPECT_TRUE(Qelt::VCreatorBase::catalogue().empty());
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
