// docs/adding-a-light.md, followed to the letter: its files are written, its commands run.

#include "tests/support/read_picture.hpp"
#include "tests/support/run_program.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using korl::test::bytesOf;
using korl::test::ProgramResult;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::HasSubstr;

/// A block of the page: what stands behind its language ("file=PATH", "append=PATH", "run"), and its lines.
struct Block {
    std::string use, text;
};

std::vector<Block> blocksOfThePage() {
    std::vector<Block> blocks;
    std::istringstream page(bytesOf(fs::path(PROJECT_SOURCE_DIR) / "docs/adding-a-light.md"));
    bool inside = false;
    for (std::string line; std::getline(page, line);)
        if (line.starts_with("```")) {
            inside = !inside;
            if (inside)
                blocks.push_back({line.substr(std::min(line.size(), line.find(' ') + 1)), ""});
        } else if (inside) {
            blocks.back().text += line + "\n";
        }
    return blocks;
}

class AddingALightGLTest : public testing::Test {
protected:
    /// Runs lines of a shell in the test's folder, to the first that fails. @returns what they print.
    std::string run(const std::string& lines) {
        const std::string script =
            "exec 2>&1; set -e; cd '" + folder.path().string() + "'; " + settings + lines;
        const ProgramResult result = runProgram("/bin/sh", {"-c", script});
        EXPECT_EQ(result.exit_code, 0) << lines << result.output;
        return result.output;
    }

    /// Does what the blocks of the page say that have to do with a folder.
    std::string follow(const std::string& below) {
        std::string output;
        for (const Block& block : blocksOfThePage()) {
            const auto path = folder.path() / block.use.substr(block.use.find('=') + 1);
            if (block.use == "file=" + below + path.filename().string()) {
                fs::create_directories(path.parent_path());
                korl::test::writeBytes(path, block.text);
            } else if (block.use.starts_with("append=" + below)) {
                korl::test::writeBytes(path, bytesOf(path) + block.text);
            } else if (block.use == "run" &&
                       block.text.starts_with("cmake -S " + below.substr(0, below.size() - 1))) {
                std::string lines = block.text;
                for (std::size_t at; (at = lines.find("FOLDER")) != std::string::npos;)
                    lines.replace(at, 6, installation);
                output += run(lines);
            }
        }
        return output;
    }

    void install() {
        run(std::string(CMAKE_PROGRAM) + " --install '" PROJECT_BINARY_DIR "' --prefix '" + installation +
            "'\n");
    }

    TemporaryFolder folder;
    const std::string installation = folder / "installation";
    /// The compiler and flags that this program was built with, as CMake takes them from the environment.
    const std::string settings = "export CXX='" CXX_COMPILER "' CXXFLAGS='" CXX_FLAGS "'; ";
};

TEST_F(AddingALightGLTest, ModuleOfItsOwnIsBuiltListedAndRendered) {
    install();
    const std::string output = follow("lamp/");
    EXPECT_THAT(output, HasSubstr("A light that shines all around."));
    EXPECT_THAT(output, testing::Not(HasSubstr("Typeslot has a problem")));

    const korl::Image image = korl::test::readPicture(folder / "lamp.png");
    const std::size_t width = static_cast<std::size_t>(image.width), half = width / 2;
    std::size_t bright = 0, unlike = 0;
    for (std::size_t y = 0; y < static_cast<std::size_t>(image.height); ++y)
        for (std::size_t x = 0; x < half; ++x) {
            const int left = image.pixels[4 * (y * width + x)],
                      right = image.pixels[4 * (y * width + half + x)];
            bright += left > 100;
            unlike += std::abs(left - right) > 24;
        }
    const std::size_t all = half * static_cast<std::size_t>(image.height);
    EXPECT_GT(bright, all / 100); // most of it is background
    EXPECT_LT(unlike, all / 50);  // the snippet and the fixed-function light show the same

    run("cmake --install lamp/build --prefix '" + installation + "'\n");
    EXPECT_THAT(run("'" + installation + "/bin/korl' types\n"), HasSubstr("\nLamp "));
}

#ifndef KORL_SANITIZED // the module's own sources are built with sanitizers for the tests of the module
TEST_F(AddingALightGLTest, SeventhLightOfTheModuleIsOneFileAndOneLine) {
    install();
    const fs::path light = folder.path() / "navigation/light";
    fs::create_directories(light);
    for (const auto& entry : fs::directory_iterator(fs::path(PROJECT_SOURCE_DIR) / "navigation/light"))
        if (entry.is_regular_file())
            fs::copy_file(entry.path(), light / entry.path().filename());
    follow("navigation/light/");
    follow("tests/navigation/light/");
    // In the place of this project's own build files, which would build all of it.
    korl::test::writeBytes(folder.path() / "CMakeLists.txt", R"(
cmake_minimum_required(VERSION 3.25)
project(seven LANGUAGES CXX)
find_package(korl REQUIRED)
find_package(OpenGL REQUIRED COMPONENTS OpenGL)
find_package(Qt5Core REQUIRED)
find_package(GTest REQUIRED)
file(GLOB sources navigation/light/*.cpp)
korl_module(tovek_light SOURCES ${sources} LINK OpenGL::OpenGL Qt5::Core)
target_precompile_headers(tovek_light PRIVATE <doltra/shader_light_source.hpp> <palune/geometry_traits.hpp>)
target_include_directories(tovek_light PRIVATE ${BUILT}/navigation/light)
add_executable(lamp_test tests/navigation/light/lamp_test.cpp ${ORIGINAL}/tests/support/gl_recorder.cpp)
target_include_directories(lamp_test PRIVATE ${ORIGINAL})
target_link_libraries(lamp_test PRIVATE korl::doltra GTest::gmock GTest::gtest_main ${CMAKE_DL_LIBS})
target_compile_definitions(lamp_test PRIVATE TOVEK_LIGHT_MODULE="$<TARGET_FILE:tovek_light>")
set_target_properties(lamp_test PROPERTIES ENABLE_EXPORTS ON)
)");
    run("cmake -S . -B build -G Ninja -DCMAKE_PREFIX_PATH='" + installation +
        "' -DORIGINAL='" PROJECT_SOURCE_DIR "' -DBUILT='" PROJECT_BINARY_DIR "'\ncmake --build build\n");
    const std::string types = run("KORL_PLUGIN_PATH=build '" + installation + "/bin/korl' types\n");
    for (const char* const type :
         {"AmbientLight", "DirectionalLight", "DistanceLight", "Sun", "Torch", "Headlight", "Lamp"})
        EXPECT_THAT(types, HasSubstr("\n" + std::string(type) + " "));
    EXPECT_THAT(run("build/lamp_test\n"), HasSubstr("[  PASSED  ] 3 tests."));
}
#endif

} // namespace
