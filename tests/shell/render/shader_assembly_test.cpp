#include "shell/base/error.hpp"

#include "shell/render/shader_assembly.hpp"
#include "shell/render/shader_errors.hpp"
#include "tests/support/error_of.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korl {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// Tabs, two empty lines in front and blanks before the "=", as light sources write them.
const std::string even_snippet = "\n\nuniform vec4 EvenColor$$         = vec4(1,1,1,1);\n\n"
                                 "void\tgetLight_$$(in vec3 vertex,\n"
                                 "\t\t    out vec3 light_incidence,\n"
                                 "\t\t    out vec3 intensity,\n"
                                 "\t\t    out vec3 specular_intensity\n"
                                 "\t\t    )\n\n"
                                 "{\n\tlight_incidence = vec3(0,0,0);\n"
                                 "\tintensity = EvenColor$$.rgb;\n"
                                 "\tspecular_intensity = vec3(0,0,0);\n}\n\n";

const std::string viewer_snippet =
    "#pragma import \"getViewDir\"\n"
    "void getLight_$$(in vec3 vertex, out vec3 light_incidence, out vec3 intensity, "
    "out vec3 specular_intensity)\n"
    "{ light_incidence = getViewDir(); intensity = specular_intensity = vec3(1); }";

AssembledShader assemble(std::vector<LightSnippet> snippets, int version = default_glsl_version) {
    return assembleShader(snippets, version);
}

std::string errorOf(const std::vector<LightSnippet>& snippets, int version = default_glsl_version) {
    return korl::test::errorOf([&] { assembleShader(snippets, version); });
}

int countOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::string linesOf(const std::string& text, int first, int count) {
    std::size_t begin = 0;
    for (int line = 1; line < first; ++line)
        begin = text.find('\n', begin) + 1;
    std::size_t end = begin;
    for (int line = 0; line < count; ++line)
        end = text.find('\n', end) + 1;
    return text.substr(begin, end - begin);
}

TEST(ApplySuffixTest, ReplacesEachPairFromTheLeft) {
    EXPECT_EQ(applySuffix("getLight_$$", "L1"), "getLight_L1");
    EXPECT_EQ(applySuffix("$$ a $$b$$", "L12"), "L12 a L12bL12");
    EXPECT_EQ(applySuffix("$$$", "L1"), "L1$");
    EXPECT_EQ(applySuffix("$$$$", "L1"), "L1L1");
    EXPECT_EQ(applySuffix("a$b $ c", "L1"), "a$b $ c");
    EXPECT_EQ(applySuffix("", "L1"), "");
    EXPECT_EQ(applySuffix("$$", "$$"), "$$");
}

TEST(AssembleShaderTest, SnippetIsThereByteForByteButForItsSuffix) {
    const AssembledShader shader =
        assemble({{"a", even_snippet}, {"b", viewer_snippet}, {"c", viewer_snippet}});
    ASSERT_EQ(shader.sections.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        const SnippetSection& section = shader.sections[i];
        const std::string expected =
            applySuffix(i == 0 ? even_snippet : viewer_snippet + "\n", section.suffix);
        EXPECT_EQ(linesOf(shader.fragment, section.first_line, section.line_count), expected);
        EXPECT_EQ(section.light_name, std::string(1, static_cast<char>('a' + i)));
    }
    EXPECT_EQ(shader.sections[0].suffix, "L1");
    EXPECT_EQ(shader.sections[1].suffix, "L2");
    EXPECT_EQ(shader.sections[2].suffix, "L3");
    EXPECT_THAT(shader.fragment, HasSubstr("\n    getLight_L2(korl_scene_position,"));
    EXPECT_THAT(shader.fragment, Not(HasSubstr("$$")));
}

TEST(AssembleShaderTest, LightsAreCalledInTheirOrder) {
    const AssembledShader shader = assemble({{"a", even_snippet}, {"b", even_snippet}});
    EXPECT_LT(shader.fragment.find("\n    getLight_L1("), shader.fragment.find("\n    getLight_L2("));
}

TEST(AssembleShaderTest, ImportIsDefinedOnceBeforeAllSnippetsAndItsLinesStay) {
    const AssembledShader shader =
        assemble({{"a", even_snippet}, {"b", viewer_snippet}, {"c", viewer_snippet}});
    EXPECT_EQ(countOf(shader.fragment, "vec3 getViewDir()"), 1);
    EXPECT_LT(shader.fragment.find("vec3 getViewDir()"), shader.fragment.find("EvenColorL1"));
    EXPECT_EQ(countOf(shader.fragment, "#pragma import \"getViewDir\"\n"), 2);
}

TEST(AssembleShaderTest, WithoutImportNothingIsDefinedForIt) {
    const std::string commented = "// #pragma import \"getViewDir\"\n/*\n#pragma import \"nonsense\"\n*/\n" +
                                  even_snippet + "\n#pragma importance \"x\"\n#pragma optimize(on)\n";
    const AssembledShader shader = assemble({{"a", commented}});
    EXPECT_THAT(shader.fragment, Not(HasSubstr("vec3 getViewDir()")));
}

TEST(AssembleShaderTest, ImportLineMayHaveBlanks) {
    const AssembledShader shader =
        assemble({{"a", " \t#  pragma\timport\t\"getViewDir\" \r\n" + even_snippet}});
    EXPECT_EQ(countOf(shader.fragment, "vec3 getViewDir()"), 1);
}

TEST(AssembleShaderTest, TextDependsOnSnippetsAndNotOnNames) {
    const AssembledShader first = assemble({{"a", even_snippet}, {"b", viewer_snippet}});
    const AssembledShader same = assemble({{"x", even_snippet}, {"y\n}", viewer_snippet}});
    EXPECT_EQ(first.fragment, same.fragment);
    EXPECT_EQ(first.vertex, same.vertex);
    EXPECT_NE(first.fragment, assemble({{"a", viewer_snippet}, {"b", even_snippet}}).fragment);
}

TEST(AssembleShaderTest, FirstLineNamesTheVersion) {
    for (const int version : glsl_versions) {
        const std::string line = "#version " + std::to_string(version) + "\n";
        const AssembledShader shader = assemble({}, version);
        EXPECT_EQ(shader.vertex.substr(0, line.size()), line);
        EXPECT_EQ(shader.fragment.substr(0, line.size()), line);
    }
}

TEST(AssembleShaderTest, ErrorsSayWhatToDo) {
    const std::string needed = "\nIt must define: void getLight_$$(in vec3 vertex, out vec3 light_incidence, "
                               "out vec3 intensity, out vec3 specular_intensity)";
    const std::string undefined =
        "the GLSL snippet of the light \"lamp\" does not define the function getLight_$$." + needed;
    const std::string body = "(in vec3 a, out vec3 b, out vec3 c, out vec3 d) {}";
    struct Row {
        std::string snippet;
        std::string message;
    };
    const std::vector<Row> rows{
        {"", undefined},
        {"void getLight_" + body, undefined},
        {"void getLight_L1" + body, undefined},
        {"void getLight_$$(in vec3 a);", undefined},
        {"void getLight_$$", undefined},
        {"void getLight_$$(", undefined},
        {"// void getLight_$$" + body, undefined},
        {"/* void getLight_$$" + body, undefined},
        {"void forgetLight_$$" + body, undefined},
        {"#pragma import \"getSun\"\n" + even_snippet,
         "the light \"lamp\" imports \"getSun\", which the shell does not have.\nWhat it can import: "
         "getViewDir"},
        {"#pragma import getViewDir\n" + even_snippet,
         "the light \"lamp\" has an import that can't be read: #pragma import getViewDir\n"
         "Write it as: #pragma import \"NAME\""},
        {"#pragma import \"a\" \"b\"\n" + even_snippet,
         "the light \"lamp\" has an import that can't be read: #pragma import \"a\" \"b\"\n"
         "Write it as: #pragma import \"NAME\""},
        {"#pragma import\n" + even_snippet,
         "the light \"lamp\" has an import that can't be read: #pragma import\n"
         "Write it as: #pragma import \"NAME\""},
        {"#pragma import \"\n" + even_snippet,
         "the light \"lamp\" has an import that can't be read: #pragma import \"\n"
         "Write it as: #pragma import \"NAME\""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorOf({{"first", even_snippet}, {"lamp", row.snippet}}), row.message) << row.snippet;
    EXPECT_EQ(errorOf({}, 140),
              "a shader of GLSL version 140 was asked for, which the shell can't assemble.\n"
              "Take one of: 120, 130, 330, 450");
}

TEST(AssembleShaderTest, DefinitionIsFoundBehindAMention) {
    EXPECT_EQ(errorOf({{"lamp", "void getLight_$$(in vec3 a, out vec3 b, out vec3 c, out vec3 d);\n" +
                                    even_snippet}}),
              "no error");
}

TEST(LocateTest, LinesOfASnippetAreItsOwnAndNoOthers) {
    const AssembledShader shader = assemble({{"a", even_snippet}, {"b", viewer_snippet}});
    const SnippetSection& a = shader.sections[0];
    const SnippetSection& b = shader.sections[1];
    EXPECT_EQ(b.first_line, a.first_line + a.line_count);
    EXPECT_EQ(a.line_count, 16);
    EXPECT_EQ(b.line_count, 3);
    EXPECT_EQ(locate(shader, a.first_line - 1), std::nullopt);
    EXPECT_EQ(locate(shader, a.first_line), (SourceLocation{"a", 1}));
    EXPECT_EQ(locate(shader, b.first_line - 1), (SourceLocation{"a", 16}));
    EXPECT_EQ(locate(shader, b.first_line), (SourceLocation{"b", 1}));
    EXPECT_EQ(locate(shader, b.first_line + 2), (SourceLocation{"b", 3}));
    EXPECT_EQ(locate(shader, b.first_line + 3), std::nullopt);
    EXPECT_EQ(locate(shader, 0), std::nullopt);
}

TEST(CompileErrorTextTest, EveryDriversFormLeadsToTheLight) {
    const AssembledShader shader = assemble({{"a", even_snippet}, {"b", viewer_snippet}});
    const std::string line = std::to_string(shader.sections[0].first_line + 12); // the 13th of the light "a"
    const std::string said = "the GLSL snippet of the light \"a\" does not compile, line 13: "
                             "intensity = EvenColorL1.rgb;\nThe driver says: ";
    const std::vector<std::string> forms{"0:" + line + "(3): error: 'x' undeclared",
                                         "0(" + line + ") : error C1503: undefined variable \"x\"",
                                         "ERROR: 0:" + line + ": 'x' : undeclared identifier"};
    for (const std::string& form : forms) {
        EXPECT_EQ(compileErrorText(shader, form), said + form);
        EXPECT_EQ(compileErrorText(shader, "Shader info\n\n" + form + "\r\n"), said + form);
    }
}

TEST(CompileErrorTextTest, WarningsAndTheShellsOwnLinesArePassedOver) {
    const AssembledShader shader = assemble({{"a", even_snippet}, {"b", viewer_snippet}});
    const auto at = [&](std::size_t section, int line) {
        return "0:" + std::to_string(shader.sections[section].first_line + line - 1);
    };
    const std::string error = at(1, 3) + "(1): error: no";
    const std::string log = at(0, 13) + "(1): warning: error-prone\n0(" +
                            std::to_string(shader.sections[0].first_line) +
                            ") : warning C7050: x\nWARNING: " + at(0, 1) + ": x\n0:1(1): error: early\n" +
                            error + "\n" + at(0, 5) + "(1): error: later\n";
    EXPECT_EQ(
        compileErrorText(shader, log),
        "the GLSL snippet of the light \"b\" does not compile, line 3: { light_incidence = getViewDir(); "
        "intensity = specular_intensity = vec3(1); }\nThe driver says: " +
            error);
}

TEST(CompileErrorTextTest, WithoutALineTheDriversWordsRemain) {
    const AssembledShader shader = assemble({{"a", even_snippet}});
    const std::string said =
        "the lighting shader does not compile, and the driver names no line of a light's snippet.\n"
        "The driver says: ";
    EXPECT_EQ(compileErrorText(shader, "out of registers\n"), said + "out of registers");
    EXPECT_EQ(compileErrorText(shader, "0:1(1): error: x\nmore\n"), said + "0:1(1): error: x");
    EXPECT_EQ(compileErrorText(shader, ""), said + "nothing");
    EXPECT_EQ(compileErrorText(shader, "\n \n"), said + "nothing");
    EXPECT_EQ(compileErrorText(shader, "0:99999999999999(1): error: x"),
              said + "0:99999999999999(1): error: x");
}

TEST(CompileErrorTextTest, SnippetLeftOpenIsNamedInsteadOfTheOneBehindIt) {
    struct Row {
        std::string tail;
        std::string open;
    };
    const std::vector<Row> rows{{"void f$$() {\n", "2 \"{\" but 1 \"}\""},
                                {"float f$$ = (1.0;\n", "5 \"(\" but 4 \")\""},
                                {"float f$$[2;\n", "1 \"[\" but 0 \"]\""},
                                {"/* { never closed", "a comment that is never closed"}};
    for (const Row& row : rows) {
        const AssembledShader shader = assemble({{"open", even_snippet + row.tail}, {"b", even_snippet}});
        const std::string error =
            "0:" + std::to_string(shader.sections[1].first_line + 4) + "(1): error: unexpected";
        EXPECT_EQ(compileErrorText(shader, error),
                  "the GLSL snippet of the light \"open\" does not compile: it has " + row.open +
                      ".\nThe driver says: " + error);
    }
    const AssembledShader closed = assemble({{"a", "/* } */ // (\n" + even_snippet}});
    EXPECT_THAT(
        compileErrorText(closed, "0:" + std::to_string(closed.sections[0].first_line) + "(1): error: x"),
        HasSubstr("line 1: /* } */ // ("));
}

const std::string two_uniforms = "uniform vec3 A$$ = vec3(1);\n/* uniform */ uniform float B$$;\n"
                                 "void getLight_$$(in vec3 v, out vec3 i, out vec3 d, out vec3 s)\n"
                                 "{ i = A$$; d = s = vec3(B$$); }\n";

TEST(RepeatedSnippets, StandInTheShaderOnceWithVariablesForUniforms) {
    const AssembledShader shader =
        assemble({{"a", even_snippet}, {"b", two_uniforms, true}, {"c", viewer_snippet, true}});
    ASSERT_EQ(shader.sections.size(), 3u);
    EXPECT_TRUE(shader.sections[0].uniforms.empty());
    ASSERT_EQ(shader.sections[1].uniforms.size(), 2u);
    EXPECT_EQ(shader.sections[1].uniforms[0].name, "A$$");
    EXPECT_EQ(shader.sections[1].uniforms[1].name, "B$$");
    EXPECT_EQ(linesOf(shader.fragment, shader.sections[1].first_line, 2),
              "        vec3 AL2 = vec3(1);\n/* uniform */         float BL2;\n");
    EXPECT_EQ(countOf(shader.fragment, "AL2 = texelFetch(korl_lights, texel + 0).xyz;"), 1);
    EXPECT_EQ(countOf(shader.fragment, "BL2 = texelFetch(korl_lights, texel + 1).x;"), 1);
    EXPECT_EQ(countOf(shader.fragment, "korl_load_L2(korl_first_L2 + korl_i * 2);"), 1);
    EXPECT_EQ(countOf(shader.fragment, "korl_i < korl_count_L3"), 1);
    EXPECT_EQ(countOf(shader.fragment, "uniform samplerBuffer korl_lights;"), 1);
    EXPECT_EQ(locate(shader, shader.sections[1].first_line + 1), (SourceLocation{"b", 2}));
}

TEST(RepeatedSnippets, AreRefusedWhereTheyCannotBe) {
    const std::string message = "the GLSL snippet of the light \"a\" can't stand for many lights: that takes "
                                "GLSL version 330, and uniforms that are plain floats or vectors.";
    EXPECT_EQ(errorOf({{"a", even_snippet, true}}, 130), message);
    EXPECT_EQ(errorOf({{"a", "uniform int N$$;\n" + even_snippet, true}}), message);
    EXPECT_TRUE(canRepeat(even_snippet));
    EXPECT_FALSE(canRepeat("uniform int N$$;\n" + even_snippet));
}

} // namespace
} // namespace korl
