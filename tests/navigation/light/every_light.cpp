#include "every_light.hpp"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <stdexcept>

namespace korl::test {

std::vector<LightDeclaration>& declaredLights() {
    static std::vector<LightDeclaration> lights;
    return lights;
}

void setValues(ModuleLight& light, const LightDeclaration& declared, const std::string& except) {
    for (const ParameterAnswers& parameter : declared.parameters)
        if (parameter.name != except) {
            EXPECT_TRUE(light.parameter(parameter.name).setGlobalValueFromText(parameter.value))
                << parameter.name << " = " << parameter.value;
        }
}

namespace {

/// The tests of lights that only another build of the module has come with it, as a library.
const bool other_tests_loaded = [] {
    const std::string tests = otherModuleFolder() + "/light_tests";
    if (otherModuleFolder().empty() || !std::filesystem::exists(tests))
        return false;
    if (!dlopen(tests.c_str(), RTLD_NOW | RTLD_LOCAL))
        throw std::runtime_error(dlerror());
    return true;
}();

TEST(EveryType, IsDeclared) {
    const LoadedModule module;
    std::vector<std::string> types, declared;
    for (const Qelt::VCreatorBase* const creator : Qelt::VCreatorBase::catalogue())
        types.push_back(creator->Name());
    std::sort(types.begin(), types.end());
    types.erase(std::unique(types.begin(), types.end()), types.end());
    for (const LightDeclaration& light : declaredLights())
        declared.push_back(light.type);
    std::sort(declared.begin(), declared.end());
    EXPECT_EQ(declared, types);
}

} // namespace

} // namespace korl::test
