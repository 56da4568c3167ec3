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
class SeventhLightGLTest : public AddingALightGLTest {
protected:
    /// Builds the module with the light of the page, and the light's tests as a library.
    void build() {
        install();
        fs::create_directories(folder / "navigation");
        fs::copy(fs::path(PROJECT_SOURCE_DIR) / "navigation/light", folder / "navigation/light");
        follow("navigation/light/");
        follow("tests/navigation/light/");
        // In the place of this project's own build files, which would build all of it.
        korl::test::writeBytes(folder / "CMakeLists.txt", R"(
cmake_minimum_required(VERSION 3.25)
project(seven LANGUAGES CXX)
find_package(korl REQUIRED)
find_package(OpenGL REQUIRED COMPONENTS OpenGL)
find_package(Qt5Core REQUIRED)
find_package(GTest REQUIRED)
file(GLOB sources navigation/light/*.cpp)
korl_module(tovek_light SOURCES ${sources} LINK OpenGL::OpenGL Qt5::Core)
target_compile_options(tovek_light PRIVATE -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
target_compile_definitions(tovek_light PRIVATE QT_NO_VERSION_TAGGING)
target_precompile_headers(tovek_light PRIVATE <doltra/shader_light.hpp> <palune/geometry_traits.hpp>)
target_include_directories(tovek_light PRIVATE ${BUILT}/navigation/light)
# The tests that are built already take it in. They have GoogleTest in them.
add_library(light_tests MODULE tests/navigation/light/lamp_test.cpp)
set_target_properties(light_tests PROPERTIES PREFIX "" SUFFIX "")
target_include_directories(light_tests PRIVATE
    ${ORIGINAL} $<TARGET_PROPERTY:GTest::gtest,INTERFACE_INCLUDE_DIRECTORIES>)
target_link_libraries(light_tests PRIVATE korl::doltra)
target_compile_definitions(light_tests PRIVATE TOVEK_LIGHT_MODULE="$<TARGET_FILE:tovek_light>")
)");
        run("cmake -S . -B build -G Ninja -DCMAKE_PREFIX_PATH='" + installation +
            "' -DORIGINAL='" PROJECT_SOURCE_DIR "' -DBUILT='" PROJECT_BINARY_DIR "'\ncmake --build build\n");
        fs::copy_file(folder / "navigation/light/load_order.inc", folder / "build/load_order.inc");
    }

    /// Runs tests of this project for that build. @returns what they print.
    std::string test(const std::string& program, const std::string& filter = "*") {
        return run("export KORL_TEST_MODULE_FOLDER=\"$PWD/build\" KORL_PLUGIN_PATH=\"$PWD/build\"\n'" +
                   program + "' --gtest_brief=1 --gtest_filter='" + filter + "'\n");
    }
};

TEST_F(SeventhLightGLTest, PassesEveryTestWithOneFileOneLineAndOneTest) {
    build();
    EXPECT_THAT(test(LIGHT_TEST), HasSubstr("[  PASSED  ]"));
    EXPECT_THAT(run("KORL_TEST_MODULE_FOLDER=build '" LIGHT_TEST "' --gtest_list_tests\n"),
                testing::AllOf(HasSubstr("\nLamp."), HasSubstr("/Lamp ")));
    test(ORDER_TEST);
    test(STEADY_FRAME_TEST);
    test(PROGRAM_TEST, "KorlProgram.*:BadInput.*:PrintedTextTest.Messages*:ShadowedTypes.*");
    test(GALLERY_TEST, "GalleryGLTest.*");
    test(ROUND_TRIP_TEST);
    run("export KORL_PLUGIN_PATH=\"$PWD/build\" PYTHONPATH='" PYTHON_PACKAGE "' PYTHONDONTWRITEBYTECODE=1 "
        "KORL_PROGRAM='" KORL_PROGRAM "' KORL_README='" PROJECT_SOURCE_DIR "/README.md'\n"
        "for test in objects documents; do " PYTHON " '" PROJECT_SOURCE_DIR
        "'/tests/shell/python/test_$test.py; done\n");
}
#endif

} // namespace
