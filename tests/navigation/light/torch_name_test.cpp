// The torch takes the name of its type from that of its source file, which is included here for that.

#include "navigation/light/Torch.cpp" // NOLINT(bugprone-suspicious-include)

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace tovek {

namespace {

TEST(TorchName, IsTheFilesWithoutFolderAndExtension) {
    const std::pair<std::string, std::string> table[]{
        {"Torch.cpp", "Torch"},
        {"navigation/light/Torch.cpp", "Torch"},
        {R"(navigation\light\Torch.cpp)", "Torch"},
        {R"(C:\korl\navigation\light\Torch.cpp)", "Torch"},
        {R"(C:\korl\navigation/light/Torch.cpp)", "Torch"},
        {R"(/korl/light\Torch.cpp)", R"(light\Torch)"}, // a slash goes before
        {R"(C:\korl.light\Torch)", "Torch"},
        {"/korl.light/Torch", "Torch"},
        {"light/Old.Torch.cpp", "Old.Torch"},
        {"light/", ""},
        {"", ""},
    };
    for (const auto& [path, name] : table)
        EXPECT_EQ(typeNameOf(path), name) << path;
}

} // namespace

} // namespace tovek
