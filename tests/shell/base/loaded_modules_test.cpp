#include "shell/base/loaded_modules.hpp"

#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

#include <gtest/gtest.h>

namespace korl {
namespace {

const void* addressOf(auto* function) {
    return reinterpret_cast<const void*>(function);
}

TEST(LoadedModulesTest, NamesWhatLiesInALibraryWhileItIsEntered) {
    const void* const entered = addressOf(&VInitialization::initPlugin);
    const void* const beside = addressOf(&Qelt::verbosity); // in the same library
    const int first_handle = 0, second_handle = 0;
    EXPECT_EQ(moduleAt(beside), "");
    enterModule("lamps", &first_handle, entered);
    enterModule("lamps", &second_handle, entered); // by another set of plug-ins
    EXPECT_EQ(moduleAt(beside), "lamps");
    EXPECT_EQ(moduleAt(addressOf(&addressOf<void()>)), "");
    EXPECT_EQ(moduleAt(nullptr), "");
    leaveModule(&first_handle);
    EXPECT_EQ(moduleAt(beside), "lamps");
    leaveModule(&second_handle);
    EXPECT_EQ(moduleAt(beside), "");
    leaveModule(&second_handle); // one that is not there
}

} // namespace
} // namespace korl
