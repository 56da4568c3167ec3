#include "shell/render/shader_assembly.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/render/glsl_text.hpp"
#include "shell/render/shader_text.hpp"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace korl {

using namespace shader_text;

namespace {

/// The name that a line imports, none where the line is not an import; throws where it can't be read.
std::optional<std::string> importedName(std::string_view line, const std::string& light_name) {
    std::string_view rest = trimmed(line);
    if (!rest.starts_with('#'))
        return {};
    rest.remove_prefix(1);
    if (!takeWord(rest, "pragma") || !takeWord(rest, "import"))
        return {};
    rest = trimmed(rest);
    const bool is_quoted = rest.size() > 2 && rest.front() == '"' && rest.find('"', 1) == rest.size() - 1;
    if (!is_quoted) {
        throw Error(fmt::format("the light {} has an import that can't be read: {}\n"
                                "Write it as: #pragma import \"NAME\"",
                                inQuotes(light_name), trimmed(line)));
    }
    return std::string(rest.substr(1, rest.size() - 2));
}

std::string knownImports() {
    std::string names;
    for (const ImportableFunction& function : importable_functions)
        names += (names.empty() ? "" : ", ") + std::string(function.name);
    return names;
}

void collectImports(const LightSnippet& snippet, std::string_view uncommented,
                    std::set<std::string>& imports) {
    for (int line = 1; line <= lineCount(uncommented); ++line) {
        const std::optional<std::string> name = importedName(lineOf(uncommented, line), snippet.light_name);
        if (!name)
            continue;
        const bool is_known =
            std::any_of(importable_functions.begin(), importable_functions.end(),
                        [&](const ImportableFunction& known) { return known.name == *name; });
        if (!is_known) {
            throw Error(fmt::format("the light {} imports {}, which the shell does not have.\n"
                                    "What it can import: {}",
                                    inQuotes(snippet.light_name), inQuotes(*name), knownImports()));
        }
        imports.insert(*name);
    }
}

/// Whether the text has the name, a parameter list and an opening brace after each other.
bool definesFunction(std::string_view uncommented, std::string_view name) {
    const auto skipBlanks = [&](std::size_t i) { return uncommented.find_first_not_of(" \t\r\n\v\f", i); };
    for (std::size_t at = uncommented.find(name); at != std::string_view::npos;
         at = uncommented.find(name, at + 1)) {
        if (at > 0 && isNameCharacter(uncommented[at - 1]))
            continue;
        const std::size_t open = skipBlanks(at + name.size());
        if (open == std::string_view::npos || uncommented[open] != '(')
            continue;
        const std::size_t close = uncommented.find(')', open);
        const std::size_t body = close == std::string_view::npos ? close : skipBlanks(close + 1);
        if (body != std::string_view::npos && uncommented[body] == '{')
            return true;
    }
    return false;
}

void requireVersion(int glsl_version, std::span<const LightSnippet> snippets) {
    if (std::find(glsl_versions.begin(), glsl_versions.end(), glsl_version) == glsl_versions.end()) {
        throw Error(fmt::format("a shader of GLSL version {} was asked for, which the shell can't assemble.\n"
                                "Take one of: {}",
                                glsl_version, fmt::join(glsl_versions, ", ")));
    }
    for (const LightSnippet& snippet : snippets) {
        if (snippet.is_repeated && (glsl_version < 330 || !canRepeat(snippet.text))) {
            throw Error(
                fmt::format("the GLSL snippet of the light {} can't stand for many lights: that takes "
                            "GLSL version 330, and uniforms that are plain floats or vectors.",
                            inQuotes(snippet.light_name)));
        }
    }
}

/// The names of all functions that the snippets import. Throws Error where one is unknown or can't be read,
/// and for a snippet without its function.
std::set<std::string> checkedImports(std::span<const LightSnippet> snippets) {
    std::set<std::string> imports;
    for (const LightSnippet& snippet : snippets) {
        const std::string uncommented = withoutComments(snippet.text).text;
        collectImports(snippet, uncommented, imports);
        if (!definesFunction(uncommented, "getLight_$$")) {
            throw Error(fmt::format(
                "the GLSL snippet of the light {} does not define the function getLight_$$.\n"
                "It must define: void getLight_$$(in vec3 vertex, out vec3 light_incidence, out vec3 "
                "intensity, out vec3 specular_intensity)",
                inQuotes(snippet.light_name)));
        }
    }
    return imports;
}

void defineImports(const std::set<std::string>& imports, std::string& fragment) {
    for (const ImportableFunction& function : importable_functions)
        if (imports.contains(std::string(function.name)))
            fragment += function.definition;
}

/// The function that fills a repeated snippet's variables from the buffer, and the uniforms that say where.
std::string loader(const SnippetSection& section) {
    std::string text = fmt::format("uniform int korl_first_{0};\nuniform int korl_count_{0};\n"
                                   "void korl_load_{0}(int texel)\n{{\n",
                                   section.suffix);
    for (std::size_t i = 0; i < section.uniforms.size(); ++i) {
        constexpr std::array swizzles{"x", "xy", "xyz", "xyzw"};
        const UniformDeclaration& uniform = section.uniforms[i];
        text += fmt::format("    {} = texelFetch(korl_lights, texel + {}).{};\n",
                            applySuffix(uniform.name, section.suffix), i,
                            swizzles[static_cast<std::size_t>(uniform.size - 1)]);
    }
    return text + "}\n";
}

/// Puts a snippet under a suffix of its own behind the text so far.
const SnippetSection& appendSnippet(const LightSnippet& snippet, AssembledShader& shader) {
    std::string text = snippet.text;
    std::vector<UniformDeclaration> variables;
    if (snippet.is_repeated) {
        variables = floatUniforms(text).value();
        for (const UniformDeclaration& uniform : variables) // the columns stay as they are
            text.replace(uniform.at, std::string_view("uniform").size(), "       ");
    }
    const std::string suffix = fmt::format("L{}", shader.sections.size() + 1);
    text = applySuffix(text, suffix);
    SnippetSection& section = shader.sections.emplace_back(SnippetSection{
        snippet.light_name, suffix, lineCount(shader.fragment) + 1, lineCount(text), std::move(variables)});
    shader.fragment += text;
    if (!text.ends_with('\n'))
        shader.fragment += '\n';
    if (snippet.is_repeated)
        shader.fragment += loader(section);
    return section;
}

/// Adds what a light source gives to the sum.
std::string call(const SnippetSection& section, const std::string& indentation) {
    return fmt::format(
        "\n{0}getLight_{1}(korl_scene_position, korl_incidence, korl_intensity, korl_specular_intensity);\n"
        "{0}korl_sum += korl_contribution(korl_incidence, korl_intensity, korl_specular_intensity);\n",
        indentation, section.suffix);
}

std::string repeatedCall(const SnippetSection& section) {
    return fmt::format("\n    for (int korl_i = 0; korl_i < korl_count_{0}; ++korl_i)\n    {{\n"
                       "        korl_load_{0}(korl_first_{0} + korl_i * {1});{2}    }}\n",
                       section.suffix, section.uniforms.size(), call(section, "        "));
}

} // namespace

std::string applySuffix(std::string_view name, std::string_view suffix) {
    constexpr std::string_view placeholder = "$$";
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = name.find(placeholder); at != std::string_view::npos;
         at = name.find(placeholder, done)) {
        result.append(name.substr(done, at - done)).append(suffix);
        done = at + placeholder.size();
    }
    return result.append(name.substr(done));
}

bool canRepeat(std::string_view snippet) {
    return floatUniforms(snippet).has_value();
}

AssembledShader assembleShader(std::span<const LightSnippet> snippets, int glsl_version) {
    requireVersion(glsl_version, snippets);
    const std::set<std::string> imports = checkedImports(snippets);

    const bool has_varyings = glsl_version < 130;
    AssembledShader shader;
    shader.vertex = fmt::format("#version {}\n{}{}", glsl_version,
                                has_varyings ? "#define korl_in attribute\n#define korl_out varying\n"
                                             : "#define korl_in in\n#define korl_out out\n",
                                vertex_body);
    shader.fragment =
        fmt::format("#version {}\n{}{}", glsl_version,
                    has_varyings ? "#define korl_in varying\n#define korl_fragment_color gl_FragColor\n"
                                 : "#define korl_in in\nout vec4 korl_fragment_color;\n",
                    fragment_inputs);
    if (std::any_of(snippets.begin(), snippets.end(),
                    [](const auto& snippet) { return snippet.is_repeated; }))
        shader.fragment += "uniform samplerBuffer korl_lights;\n";
    defineImports(imports, shader.fragment);

    std::string calls;
    for (const LightSnippet& snippet : snippets) {
        const SnippetSection& section = appendSnippet(snippet, shader);
        calls += snippet.is_repeated ? repeatedCall(section) : call(section, "    ");
    }
    shader.fragment.append(fragment_shading).append(calls).append(fragment_end);
    return shader;
}

AssembledShader assembleSampler(const LightSnippet& snippet) {
    const std::set<std::string> imports = checkedImports(std::span(&snippet, 1));
    AssembledShader shader;
    shader.vertex = std::string("#version 330\n").append(sampler_vertex);
    shader.fragment = std::string("#version 330\n").append(sampler_inputs);
    defineImports(imports, shader.fragment);
    appendSnippet(snippet, shader);
    shader.fragment += sampler_main;
    return shader;
}

} // namespace korl
