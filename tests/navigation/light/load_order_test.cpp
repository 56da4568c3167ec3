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

namespace {

using testing::ElementsAre;

TEST(LoadOrder, AnnouncesThenRegistersAndWithdrawsInReverse) {
    korl::test::LoadedModule module;
    EXPECT_THAT(std::exchange(calls, {}),
                ElementsAre("initPlugin 0 tovek_light KORL_API_VERSION",
                            "Vprintf 100 VCreator::VCreator(Scenery/AmbientLight,0)\n",
                            "registerCreator Orvid::rgba_float_t",
                            "registerTypedSlotCreator Orvid::rgba_float_t Orvid::rgba_float_t"));
    module.unload();
    EXPECT_THAT(std::exchange(calls, {}),
                ElementsAre("unregisterTypedSlotCreator Orvid::rgba_float_t Orvid::rgba_float_t",
                            "deleteAllInstances AmbientLight of 1 creators",
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
