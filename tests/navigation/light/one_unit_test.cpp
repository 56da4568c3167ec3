// Each unit brings all that its own light needs: the order of the units, or what another one registers, does
// not matter to it.

#include "tests/support/recorded_reports.hpp"

#include <sorvik/creator.hpp>
#include <sorvik/parameter.hpp>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Qelt::VCreatorBase;
using testing::IsEmpty;

std::vector<std::string> unitNames() {
    std::istringstream stream(UNITS);
    std::vector<std::string> names;
    for (std::string name; stream >> name;)
        names.push_back(name);
    return names;
}

class OneUnit : public testing::TestWithParam<std::string> {};

TEST_P(OneUnit, RegistersWhatItsLightNeeds) {
    const std::string& type = GetParam();
    const korl::test::RecordedReports recorded;
    void* const module = dlopen((ONE_UNIT_FOLDER "/" + type + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    {
        VCreatorBase* const creator = VCreatorBase::find(type);
        ASSERT_NE(creator, nullptr);
        EXPECT_TRUE(creator->create("light"));
    }
    EXPECT_THAT(recorded.messages, IsEmpty());
    dlclose(module);
    EXPECT_EQ(VCreatorBase::find(type), nullptr);
    EXPECT_THAT(recorded.messages, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Module, OneUnit, testing::ValuesIn(unitNames()),
                         [](const auto& unit) { return unit.param; });

} // namespace
