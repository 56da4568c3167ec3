#include "shell/render/glsl_text.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using korl::floatUniforms;

/// The names and sizes as "name:size name:size", or "none".
std::string described(std::string_view snippet) {
    const auto uniforms = floatUniforms(snippet);
    if (!uniforms)
        return "none";
    std::string text;
    for (const korl::UniformDeclaration& uniform : *uniforms) {
        EXPECT_EQ(snippet.substr(uniform.at, 7), "uniform");
        text += (text.empty() ? "" : " ") + uniform.name + ":" + std::to_string(uniform.size);
    }
    return text;
}

TEST(UniformNames, AreReadFromDeclarationsOfEveryForm) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", ""},
        {"void getLight_$$() { int uniformed = 1; }", ""},
        {"uniform float S$$;", "S$$"},
        {"uniform int A$$ = 3; uniform highp mat3 B$$ ; uniform vec4 C$$\n= vec4(1,2,3,4);", "A$$ B$$ C$$"},
        {"uniform float A$$ = max(1, 2), B$$[2] = float[2](1, 2), C$$;", "A$$ B$$ C$$"},
        {"layout(location = 3) uniform samplerBuffer Map;", "Map"},
        {"uniform struct Lamp { vec3 place, way; } L$$, M$$[3];", "L$$ M$$"},
        {"uniform Block$$ { vec3 place; float size; }; uniform float A$$;", "A$$"},
        {"uniform Block$$ { layout(offset = 16) vec3 place; };", ""},
        {"uniform float A$$[2] = {1, 2}; uniform vec2 B$$ = {1, 2}, C$$;", "A$$ B$$ C$$"},
        {"uniform struct Lamp { vec3 place; } L$$ = {{1, 2, 3}}, M$$;", "L$$ M$$"},
        {"// uniform float A$$;\n/* uniform float B$$; */ uniform float C$$;", "C$$"},
        {"#if 1\nuniform float A$$;\n#endif\n", "A$$"},
        {"#define DECLARE(name) uniform float name\nDECLARE(A$$);", ""},
        {"uniform float A$$", ""}, // not to its end, which no driver takes
    };
    for (const auto& [snippet, expected] : cases) {
        std::string names;
        for (const std::string& name : korl::uniformNames(snippet))
            names += (names.empty() ? "" : " ") + name;
        EXPECT_EQ(names, expected) << snippet;
    }
}

TEST(FloatUniforms, AreReadFromDeclarationsOfEveryForm) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", ""},
        {"void getLight_$$() {}", ""},
        {"uniform float S$$;", "S$$:1"},
        {"uniform vec2 A$$; uniform vec3 B$$ ; uniform vec4 C$$\n= vec4(1,2,3,4);", "A$$:2 B$$:3 C$$:4"},
        {"uniform\tvec3\n\tLong_Name$$=vec3(0, max(1,2), 0);", "Long_Name$$:3"},
        {"// uniform int Old$$;\nuniform float S$$; /* uniform mat4 M$$; */", "S$$:1"},
        {"const float uniform_scale = 1.0; void my_uniform() {} uniform float S$$;", "S$$:1"},
        {"uniform vec4 Name = vec4(1);", "Name:4"},
        {"#pragma import \"f\"\nuniform float S$$;\nconst float two$$ = 2.0;\nfloat half(float x);\n"
         "float half(float x) { float h = x; return h / 2.0; }\nconst float three$$ = 3;",
         "S$$:1"},
    };
    for (const auto& [snippet, expected] : cases)
        EXPECT_EQ(described(snippet), expected) << snippet;
}

TEST(FloatUniforms, AreNoneWhereADeclarationIsMoreThanAFloatOrVector) {
    for (const char* const snippet :
         {"uniform int N$$;", "uniform mat4 M$$;", "uniform sampler2D T$$;", "uniform float S$$[3];",
          "uniform float A$$, B$$;", "uniform float A$$ = 1.0, B$$ = 2.0;", "uniform highp float S$$;",
          "uniform Block$$ { float s; };", "uniform", "uniform float", "uniform float ;",
          "#define FAST\nuniform float S$$;", "#if 1\nuniform float S$$;\n#endif",
          " # define F\nuniform float S$$;", "uniform vec3 A$$; vec3 half$$ = A$$ * 0.5;",
          "uniform vec3 A$$; vec3 half$$ = vec3(A$$);", "float kept$$;",
          "void f() {}\nint count$$ = 0;\nuniform float S$$;", "uniform float S$$; uniform ivec2 I$$;"})
        EXPECT_EQ(described(snippet), "none") << snippet;
}

} // namespace
