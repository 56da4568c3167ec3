// What the program prints of texts that come from modules and files, and where.

#include "tests/support/module_types.hpp"
#include "tests/support/run_program.hpp"

#include <gmock/gmock.h>

namespace {

using korl::test::ProgramResult;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What the module's texts have behind their first word, as it is shown and as it is.
const std::string shown = R"(\x1b[31m\x07\nkorl is fine\x7f\u009b)";
const std::string raw = "\x1b[31m\a\nkorl is fine\x7f\xc2\x9b";
const std::string json = R"(\u001b[31m\u0007\nkorl is fine\u007f\u009b)";

class PrintedTextTest : public testing::Test {
protected:
    static ProgramResult korl(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--plugin", KORL_BROKEN_PLUGINS "/rude_texts.so"});
        return runProgram(KORL_PROGRAM, arguments);
    }

    static void expectNoControls(const std::string& text) {
        for (const char c : text)
            EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != '\x7f')) << text;
        EXPECT_THAT(text, Not(HasSubstr("\xc2\x9b")));
        EXPECT_THAT(text, Not(HasSubstr("\nkorl is fine")));
    }

    static std::string withoutLoading(const std::string& errors) {
        const std::string printed = "printed while loading\n";
        EXPECT_THAT(errors, StartsWith(printed));
        return errors.substr(std::min(printed.size(), errors.size()));
    }

    const TemporaryFolder folder;
};

TEST_F(PrintedTextTest, TablesEscapeWhatModulesSay) {
    const ProgramResult types = korl({"types"});
    EXPECT_EQ(types.exit_code, 0);
    EXPECT_THAT(types.output, HasSubstr("\nType" + shown + "  Category" + shown + "  1"));
    EXPECT_THAT(types.output, HasSubstr("  Description" + shown + "\n"));
    expectNoControls(types.output);
    EXPECT_EQ(korl({"accepts", "Type" + raw}).output, "VALUE   INPUTS" + std::string(shown.size() - 2, ' ') +
                                                          "  OFFERED\n" + "double  slot" + shown + "  -\n");
}

TEST_F(PrintedTextTest, DescribeKeepsTheLinesOfHelpAlone) {
    const ProgramResult result = korl({"describe", "Type" + raw});
    EXPECT_THAT(result.output, StartsWith("Type" + shown + " (Category" + shown + "/Type" + shown +
                                          "): help\\x1b[31m\\x07\nkorl is fine\\x7f\\u009b\n\n"));
    EXPECT_THAT(result.output, HasSubstr("\nslot" + shown + "  double"));
}

TEST_F(PrintedTextTest, MessagesEscapeNamesAndExceptions) {
    EXPECT_EQ(withoutLoading(korl({"describe", "Nothing" + raw}).errors),
              "korl: unknown type \"Nothing" + shown + "\": did you mean \"Type" + shown +
                  "\"? There are: " + korl::test::listOfModuleTypes() + ", Type" + shown + ".\n");
    EXPECT_EQ(
        withoutLoading(
            korl({"save", "-o", folder / "s", "--light", "AmbientLight:a" + raw, "--set", "b.c=1"}).errors),
        "korl: unknown object \"b\": there are: a" + shown + ".\n");
    EXPECT_EQ(withoutLoading(korl({"save", "-o", folder / "s", "--no-default-light", "--light",
                                   "Type" + raw + ":r", "--set", "r.slot" + raw + "=" + raw})
                                 .errors),
              "korl: \"r.slot" + shown + "\" takes a double, one number, found \"" + shown +
                  "\"; it keeps \"1\"\n");
}

TEST_F(PrintedTextTest, MessagesOnSceneFilesEscapeWhatTheyQuote) {
    struct Case {
        std::string scene, message;
    };
    const std::string file = (folder / "scene\nkorl: fine.json").string();
    const std::string name = folder.path().string() + "/scene\\nkorl: fine.json";
    const std::vector<Case> table{
        {R"({"korl": 1, "views": ["v)" + json + R"(", "v)" + json + R"("]})",
         name + ": /views/1: the view \"v" + shown + "\" stands twice in the list"},
        {R"({"korl": 1, "a)" + json + R"(": 1})",
         name + ": /a" + shown +
             ": unknown key; there are: korl, plugins, background, camera, views, solo, objects, meshes."},
        {R"({"korl": 1, "camera": {"position": "0 0 1", "target": "0 0 0", "fov": [)"
         "\n"
         R"(1]}})",
         name + ": /camera/fov: expected degrees, found [\\n1]"},
        {R"({"korl": 1, "background": ")" + json + R"("})",
         name + ": /background: \"" + shown +
             "\" is not a colour; write \"#rrggbb\", \"#rrggbbaa\", or three or four numbers from 0 to 1 "
             "such as \"0.1 0.1 0.12\""},
    };
    for (const auto& [scene, message] : table) {
        folder.write("scene\nkorl: fine.json", scene);
        const ProgramResult result = runProgram(KORL_PROGRAM, {"save", file, "-o", folder / "out.json"});
        EXPECT_EQ(result.errors, "korl: " + message + "\n");
        EXPECT_EQ(result.exit_code, 1);
    }
}

TEST_F(PrintedTextTest, MessagesOnOutputsEscapeTheirPaths) {
    const std::string at = folder.path().string() + "/";
    const std::string name = "a\nkorl: fine", escaped = at + "a\\nkorl: fine";
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Case> table{
        {{"render", "-o", at + name + ".b\a"},
         "cannot write " + escaped +
             ".b\\x07: a picture is written as PNG alone, to a name that ends in .png " +
             "or has no suffix, found \".b\\x07\""},
        {{"animate", "-o", at + name + "/f_#.png", "--frames", "1", "--no-default-light"},
         "cannot write " + escaped + "/f_#.png: the folder " + escaped + " does not exist; make it first"},
        {{"animate", "-o", at + name + ".mp4", "--no-default-light"},
         "cannot make the film " + escaped +
             ".mp4: there is no ffmpeg on the PATH; install it (on Debian the package ffmpeg), or write "
             "pictures, such as \"day_####.png\""},
    };
    for (const auto& [arguments, message] : table) {
        const ProgramResult result = runProgram(KORL_PROGRAM, arguments, {{"PATH", folder.path()}});
        EXPECT_EQ(result.errors, "korl: " + message + "\n");
        EXPECT_EQ(result.exit_code, 1);
    }
}

TEST_F(PrintedTextTest, WhatModulesPrintIsNotPartOfAnAnswer) {
    const ProgramResult script = korl({"script", "--light", "AmbientLight:a"});
    EXPECT_EQ(script.exit_code, 0) << script.errors;
    EXPECT_THAT(script.output, Not(HasSubstr("printed while loading")));
    EXPECT_EQ(script.errors, "printed while loading\n");
}

TEST_F(PrintedTextTest, AnAnswerThatCannotBeWrittenIsAnError) {
    const ProgramResult result = runProgram("/bin/sh", {"-c", "exec '" KORL_PROGRAM "' types >/dev/full"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, "korl: cannot write to standard output: No space left on device\n");
}

TEST_F(PrintedTextTest, AFileThatMayNotGrowIsAnErrorLikeAnyOther) {
    const std::string file = folder / "scene.json";
    const ProgramResult result =
        runProgram("/bin/sh", {"-c", "(ulimit -f 0; exec '" KORL_PROGRAM "' save --no-default-light -o '" +
                                         file + "') 2>&1 | cat"});
    EXPECT_EQ(result.output, "korl: cannot write " + file + ": File too large\n");
}

TEST_F(PrintedTextTest, ClosedStandardStreamsDoNotMatter) {
    for (const std::string closed : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
        const std::string file = folder / "scene.json";
        const ProgramResult result = runProgram(
            "/bin/sh", {"-c", "exec '" KORL_PROGRAM "' save --verbose 100 -o '" + file + "' " + closed});
        EXPECT_EQ(result.exit_code, 0) << closed << result.errors;
        // Nothing that is printed gets into the file, whose descriptor would be one of those otherwise.
        EXPECT_THAT(korl::test::bytesOf(file), StartsWith("{\n  \"korl\": 1,")) << closed;
        EXPECT_EQ(runProgram("/bin/sh", {"-c", "exec '" KORL_PROGRAM "' types " + closed}).exit_code, 0);
        std::filesystem::remove(file);
    }
}

class PrintedTextGLTest : public PrintedTextTest {};

TEST_F(PrintedTextGLTest, ExplanationsEscapeNamesAndAreAloneOnStandardOutput) {
    const std::vector<std::string> scene{"explain",   "--size", "16x12", "--light", "AmbientLight:a" + raw,
                                         "--verbose", "100"};
    const ProgramResult text = korl(scene);
    EXPECT_EQ(text.exit_code, 0) << text.errors;
    EXPECT_THAT(text.output, HasSubstr("\n  a" + shown + " (AmbientLight)\n"));
    expectNoControls(text.output);
    std::vector<std::string> as_json = scene;
    as_json.push_back("--json");
    const ProgramResult result = korl(as_json);
    EXPECT_THAT(result.output, StartsWith("{\n"));
    EXPECT_THAT(result.output, testing::EndsWith("}\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("VCreator::")));
    EXPECT_THAT(result.errors, HasSubstr("VCreator::create("));
}

TEST_F(PrintedTextGLTest, AModulesExceptionIsEscaped) {
    const ProgramResult result = korl(
        {"render", "--size", "8x8", "-o", folder / "p.png", "--no-default-light", "--light", "Type" + raw});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.errors, HasSubstr("thrown\\x1b[31m\\x07\\nkorl is fine\\x7f\\u009b\""));
}

TEST_F(PrintedTextGLTest, WhatIsWrittenIsToldWithoutControls) {
    const ProgramResult picture = runProgram(
        KORL_PROGRAM, {"render", "--no-default-light", "--size", "8x8", "-o", folder / "a\nkorl: fine.png"});
    EXPECT_EQ(picture.errors, "korl: wrote " + folder.path().string() + "/a\\nkorl: fine.png, 8x8 pixels\n");
    const ProgramResult sequence =
        runProgram(KORL_PROGRAM, {"animate", "--no-default-light", "--size", "8x8", "--frames", "1", "-o",
                                  folder / "a\nkorl: fine_#.png"});
    EXPECT_EQ(sequence.errors,
              "korl: wrote " + folder.path().string() + "/a\\nkorl: fine_#.png, 1 frame numbered from 1\n");
}

TEST_F(PrintedTextGLTest, OutOfMemoryIsToldWithWhatToDo) {
    const ProgramResult result =
        runProgram(KORL_PROGRAM, {"render", "--size", "8x8", "-o", folder / "p.png", "--plugin",
                                  KORL_BROKEN_PLUGINS "/failing_frames.so", "--no-default-light", "--light",
                                  "Moody:m", "--set", "m.mood=5"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, "korl: update of \"m\" in the module \"failing_frames\" failed: there is not "
                             "enough memory for this; take a smaller picture or model, "
                             "fewer jobs at once, or let the program have more (ulimit -v)\n");
}

} // namespace
