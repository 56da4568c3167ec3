// What the program says when a module throws, exits or is ended by a signal, in each operation of its lights.

#include "tests/support/run_program.hpp"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using korl::test::ProgramResult;
using korl::test::runProgram;

class ModuleEndingsGLTest : public testing::Test {
protected:
    /// Draws a picture with a light that ends so in this operation.
    ProgramResult render(const std::string& operation, const std::string& end) const {
        const bool is_direct = operation == "snippet" || operation == "environment_render";
        return runProgram(KORL_PROGRAM,
                          {"render", "--plugin", KORL_BROKEN_PLUGINS "/odd_lights.so", "--size", "8x8",
                           "--light", std::string(is_direct ? "OddDirectLight" : "OddLight") + ":lamp", "-o",
                           picture, "--path", "both"},
                          {{"KORL_TEST_OPERATION", operation}, {"KORL_TEST_END", end}});
    }

    /// How messages speak of it.
    static std::string called(const std::string& operation) {
        return "korl: " + operation + " of \"" + (operation == "creation" ? "OddLight" : "lamp") +
               "\" in the module \"odd_lights\"";
    }

    void expect(const ProgramResult& result, int exit_code, const std::string& errors) const {
        EXPECT_EQ(result.errors, errors);
        EXPECT_EQ(result.exit_code, exit_code) << errors;
        EXPECT_EQ(std::filesystem::exists(picture), exit_code == 0);
    }

    const korl::test::TemporaryFolder folder;
    const std::string picture = folder / "picture.png";
};

const char* const operations[] = {"creation",     "update",  "illuminate",
                                  "fillUniforms", "snippet", "environment_render"};

TEST_F(ModuleEndingsGLTest, TheLightsAreInOrderWhenNothingIsAsked) {
    for (const std::string operation : {"update", "snippet"}) { // a light of each type
        expect(render(operation, ""), 0, "korl: wrote " + picture + ", 16x8 pixels\n");
        std::filesystem::remove(picture);
    }
}

TEST_F(ModuleEndingsGLTest, ExceptionsAreErrorsThatNameTheLight) {
    for (const std::string operation : operations)
        expect(render(operation, "throw"), 1,
               called(operation) +
                   " threw the exception \"this light\\nis odd\"; report it to the author of the module\n");
    expect(render("update", "throw a number"), 1,
           called("update") +
               " threw something that is not an exception; report it to the author of the module\n");
}

TEST_F(ModuleEndingsGLTest, AnExitIsAFailure) {
    for (const std::string operation : operations)
        expect(render(operation, "exit"), 1,
               called(operation) + " called exit; the program ends with its work undone\n");
}

TEST_F(ModuleEndingsGLTest, SignalsAreToldAndTakeTheirCourse) {
    for (const std::string operation : operations)
        expect(render(operation, "abort"), 128 + SIGABRT,
               called(operation) + " ended with signal 6 (Aborted); report it to the author of the module\n");
}

TEST_F(ModuleEndingsGLTest, ADestructorIsToldToo) {
    const ProgramResult result = render("destruction", "abort"); // when the picture is written
    EXPECT_EQ(result.errors, "korl: wrote " + picture + ", 16x8 pixels\n" + called("destruction") +
                                 " ended with signal 6 (Aborted); report it to the author of the module\n");
    EXPECT_EQ(result.exit_code, 128 + SIGABRT);
}

#ifndef KORL_SANITIZED // which has a word about these signals itself
TEST_F(ModuleEndingsGLTest, SegmentationFaultsAreToldEvenWhenTheStackIsFull) {
    for (const std::string end : {"segmentation fault", "stack overflow"})
        expect(render("illuminate", end), 128 + SIGSEGV,
               called("illuminate") +
                   " ended with signal 11 (Segmentation fault); report it to the author of the "
                   "module\n");
}
#endif

TEST(ModuleEndings, AStaticInitialiserEndsNothing) {
    const std::string thrower = KORL_BROKEN_PLUGINS "/throwing_initializer.so";
    const std::string odd = KORL_BROKEN_PLUGINS "/odd_initializer.so";
    const auto refusal = [](const std::string& file, const std::string& found) {
        return "korl: cannot load the plug-in \"" + file +
               "\": expected a module that can be loaded and unloaded, found "
               "one that " +
               found +
               " while it is loaded.\nFix the plug-in; if it worked before, build it or copy "
               "it again.\n";
    };
    const ProgramResult thrown = runProgram(KORL_PROGRAM, {"types", "--plugin", thrower});
    EXPECT_EQ(thrown.errors, refusal(thrower, "throws the exception \"the initialiser failed\""));
    EXPECT_EQ(thrown.output, "");
    EXPECT_EQ(thrown.exit_code, 1);
    const ProgramResult exited =
        runProgram(KORL_PROGRAM, {"types", "--plugin", odd}, {{"KORL_TEST_LOADING", "exit"}});
    EXPECT_EQ(exited.errors, refusal(odd, "ends the process with exit code 0"));
    EXPECT_EQ(exited.exit_code, 1);
}

} // namespace
