#include "shell/render/shader_path.hpp"

#include "shell/base/error.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/render/gl_error.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/material.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/render/uniform_check.hpp"
#include "shell/render/uniform_values.hpp"

#include <glm/gtc/type_ptr.hpp>

#include <cstring>
#include <fmt/core.h>
#include <optional>
#include <string_view>
#include <utility>

namespace korl {

namespace {

/// So many programs at most are kept for combinations of snippets that may come up again.
constexpr std::size_t max_programs = 64;
constexpr std::size_t max_assignments = 1024;

/// Keeps what a fixed-function light set-up may change, and brings it back.
class SavedLightState {
public:
    SavedLightState() { glPushAttrib(GL_LIGHTING_BIT | GL_ENABLE_BIT | GL_TRANSFORM_BIT); }
    ~SavedLightState() { glPopAttrib(); }
    SavedLightState(const SavedLightState&) = delete;
    SavedLightState& operator=(const SavedLightState&) = delete;
};

/// Uses a program, however what it is used for ends.
class ProgramInUse {
public:
    explicit ProgramInUse(const Program& program) { glUseProgram(program.name()); }
    ~ProgramInUse() { glUseProgram(0); }
    ProgramInUse(const ProgramInUse&) = delete;
    ProgramInUse& operator=(const ProgramInUse&) = delete;
};

/// From so many light sources of one snippet on a loop is as fast to draw, and faster to compile. (Measured
/// on a software rasteriser, where it costs half as much again for a single light.)
constexpr std::size_t min_loop_count = 4;

/// The snippets that a frame's shader is made of, and the light sources that each of them serves.
struct GroupedSnippets {
    std::vector<LightSnippet> snippets;
    std::vector<std::vector<std::size_t>> sources;
};

/// Puts the light sources that share a snippet together, at the place of the first of them, where it pays and
/// the snippet allows it. @param texts the snippets of the frame's light sources.
GroupedSnippets groupSnippets(const View& view, std::span<const std::string> texts) {
    std::unordered_map<std::string_view, std::size_t> counts, loops;
    for (const std::string& text : texts)
        ++counts[text];
    GroupedSnippets grouped;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto loop = loops.find(texts[i]);
        if (loop != loops.end()) {
            grouped.sources[loop->second].push_back(i);
            continue;
        }
        const bool is_repeated = counts[texts[i]] >= min_loop_count && canRepeat(texts[i]);
        if (is_repeated)
            loops[texts[i]] = grouped.snippets.size();
        grouped.snippets.push_back({view.ownerOf(i).Name(), texts[i], is_repeated});
        grouped.sources.push_back({i});
    }
    return grouped;
}

Error wrongType(const std::string& light, const std::string& uniform,
                const Qelt::RenderNamespace::UniformValue& value) {
    return Error(fmt::format("light {}: its uniform {} = {} is of another type than its snippet declares",
                             inQuotes(light), inQuotes(uniform), uniformText(value)));
}

void reportUniforms(const Qelt::RenderAble& light, const UniformMismatch& mismatch, Reports& reports) {
    const auto warn = [&](const std::string& text, const char* kind) {
        if (!text.empty())
            reports.once(light.number(), kind,
                         [&] { return fmt::format("light {} {}", inQuotes(light.Name()), text); });
    };
    warn(undeclaredText(mismatch), "uniform not declared");
    warn(unwrittenText(mismatch), "uniform not written");
}

} // namespace

AssembledShader assembleFrame(const View& view) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < view.sources().size(); ++i)
        texts.push_back(snippetOf(*view.sources()[i].get(), view.ownerOf(i).Name()));
    return assembleShader(groupSnippets(view, texts).snippets);
}

void ShaderPath::fillUniforms(View& view, const Viewpoint& viewpoint) {
    for (const View::Member& member : view.members()) {
        if (member.shader_light)
            continue;
        const SavedLightState saved;
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(glm::value_ptr(viewpoint.view));
        view.context().setLightNumber(1);
        ModuleCall(*member.object, "environment_render").run([&] {
            member.object->environment_render(view.context());
        });
        requireNoGLError("light", member.object->Name());
    }
    view.fillUniforms();
}

void ShaderPath::draw(const View& view, const Viewpoint& viewpoint, const MeshBufferCache& meshes,
                      Reports& reports) {
    const ProgramAssignment& assignment = assignmentFor(view, reports);
    const LightingProgram& lighting = *assignment.lighting;
    reportNotFinite(view, reports);
    {
        const ProgramInUse in_use(lighting.program);
        glUniformMatrix4fv(lighting.view, 1, GL_FALSE, glm::value_ptr(viewpoint.view));
        glUniformMatrix4fv(lighting.projection, 1, GL_FALSE, glm::value_ptr(viewpoint.projection));
        glUniform3fv(lighting.eye, 1, glm::value_ptr(viewpoint.eye));
        glUniform1f(lighting.specular, material_specular);
        glUniform1f(lighting.shininess, material_shininess);
        uploadLights(view, assignment);
        for (const auto& [mesh, buffers] : meshes.entries())
            buffers->drawWithAttributes();
    }
    my_result_check.check(view, viewpoint.eye, meshes, my_sampler, reports);
}

const ShaderPath::ProgramAssignment& ShaderPath::assignmentFor(const View& view, Reports& reports) {
    my_serials.clear();
    for (const auto& source : view.sources())
        my_serials.push_back(source->serialNumber());
    if (const auto known = my_assignments.find(my_serials); known != my_assignments.end())
        return known->second;

    if (my_programs.size() >= max_programs || my_assignments.size() >= max_assignments) {
        my_assignments.clear();
        my_programs.clear();
        my_snippets.clear();
    }
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < view.sources().size(); ++i) {
        auto known = my_snippets.find(my_serials[i]);
        if (known == my_snippets.end()) {
            const auto& source = *view.sources()[i].get();
            known = my_snippets.emplace(my_serials[i], snippetOf(source, view.ownerOf(i).Name())).first;
            reportUniforms(view.ownerOf(i), compareUniforms(known->second, source.uniforms()), reports);
        }
        texts.push_back(known->second);
    }
    GroupedSnippets grouped = groupSnippets(view, texts);
    ProgramAssignment assignment{nullptr, std::move(grouped.sources)};
    const AssembledShader shader = assembleShader(grouped.snippets);
    auto& lighting = my_programs[shader.fragment];
    if (!lighting)
        lighting = build(shader, grouped.snippets, view, assignment.sources);
    assignment.lighting = lighting.get();
    return my_assignments[my_serials] = std::move(assignment);
}

std::unique_ptr<ShaderPath::LightingProgram>
ShaderPath::build(const AssembledShader& shader, std::span<const LightSnippet> snippets, const View& view,
                  const std::vector<std::vector<std::size_t>>& sources) {
    Program program = buildLightingProgram(shader);
    ++my_compile_count;
    const auto location = [&](const std::string& name) { return program.uniformLocation(name); };
    std::vector<Section> sections;
    for (std::size_t i = 0; i < shader.sections.size(); ++i) {
        const SnippetSection& from = shader.sections[i];
        Section& section = sections.emplace_back();
        section.suffix = from.suffix;
        section.is_repeated = snippets[i].is_repeated;
        if (!section.is_repeated)
            continue;
        section.variables = from.uniforms;
        section.first = location("korl_first_" + from.suffix);
        section.count = location("korl_count_" + from.suffix);
        for (const UniformDeclaration& variable : from.uniforms)
            section.declared_values.push_back(my_sampler.declaredValue(
                *view.sources()[sources[i].front()].get(), from.light_name, variable.name));
    }
    const GLint view_matrix = location("korl_view"), projection = location("korl_projection");
    const GLint eye = location("korl_eye"), specular = location("korl_specular");
    const GLint shininess = location("korl_shininess"), lights = location("korl_lights");
    return std::make_unique<LightingProgram>(LightingProgram{
        std::move(program), view_matrix, projection, eye, specular, shininess, lights, std::move(sections)});
}

void ShaderPath::reportNotFinite(const View& view, Reports& reports) const {
    for (std::size_t i = 0; i < view.sources().size(); ++i)
        for (const auto& [name, value] : view.sources()[i]->uniforms())
            if (!isFinite(value))
                reports.once(view.ownerOf(i).number(), "uniform not finite",
                             [&, &uniform = name, &held = value] {
                                 return fmt::format(
                                     "light {} adds nothing on the shader path: its {} is not finite ({}); "
                                     "check its parameters",
                                     inQuotes(view.ownerOf(i).Name()), inQuotes(uniform), uniformText(held));
                             });
}

void ShaderPath::resetToDeclared(const Qelt::RenderNamespace::LightSource& source,
                                 const std::string& light_name, Section& section) {
    for (auto& [name, uniform] : section.uniforms) {
        if (!uniform.uploaded || source.uniforms().contains(name))
            continue;
        const std::optional<UniformFloats> held = floatsOf(uniform.value);
        if (!held)
            continue;
        uploadFloats(uniform.location, {held->size, my_sampler.declaredValue(source, light_name, name)});
        uniform.uploaded = false;
    }
}

void ShaderPath::uploadSingle(const View& view, std::size_t source, const LightingProgram& lighting,
                              Section& section) {
    const auto& light_source = *view.sources()[source].get();
    if (section.served != light_source.serialNumber()) {
        section.served = light_source.serialNumber();
        resetToDeclared(light_source, view.ownerOf(source).Name(), section);
    }
    for (const auto& [name, value] : light_source.uniforms()) {
        auto uniform = section.uniforms.find(name);
        if (uniform == section.uniforms.end()) {
            const GLint location = lighting.program.uniformLocation(applySuffix(name, section.suffix));
            uniform = section.uniforms.emplace(name, Uniform{location, false, {}}).first;
        }
        Uniform& known = uniform->second;
        if (known.location < 0 || (known.uploaded && sameBits(known.value, value)))
            continue; // the program does without it, or has it already
        uploadUniform(known.location, value);
        if (glGetError() != GL_NO_ERROR)
            throw wrongType(view.ownerOf(source).Name(), name, value);
        known.value = value;
        known.uploaded = true;
        ++my_upload_count;
    }
}

void ShaderPath::packInstances(const View& view, const std::vector<std::size_t>& sources,
                               const Section& section) {
    for (const std::size_t source : sources) {
        const auto& uniforms = view.sources()[source]->uniforms();
        for (std::size_t i = 0; i < section.variables.size(); ++i) {
            const UniformDeclaration& variable = section.variables[i];
            const auto held = uniforms.find(variable.name);
            if (held == uniforms.end()) {
                my_texels->values.push_back(section.declared_values[i]);
                continue;
            }
            const std::optional<UniformFloats> floats = floatsOf(held->second);
            if (!floats || floats->size != variable.size)
                throw wrongType(view.ownerOf(source).Name(), variable.name, held->second);
            my_texels->values.push_back(floats->values);
        }
    }
}

void ShaderPath::uploadLights(const View& view, const ProgramAssignment& assignment) {
    LightingProgram& lighting = *assignment.lighting;
    if (lighting.lights >= 0 && !my_texels)
        my_texels = std::make_unique<LightTexels>();
    if (my_texels)
        my_texels->values.clear();
    for (std::size_t i = 0; i < lighting.sections.size(); ++i) {
        Section& section = lighting.sections[i];
        const std::vector<std::size_t>& sources = assignment.sources[i];
        if (!section.is_repeated) {
            uploadSingle(view, sources.front(), lighting, section);
            continue;
        }
        if (section.first >= 0)
            glUniform1i(section.first, static_cast<GLint>(my_texels->values.size()));
        glUniform1i(section.count, static_cast<GLint>(sources.size()));
        if (section.first >= 0)
            packInstances(view, sources, section);
    }
    if (lighting.lights >= 0)
        my_upload_count += my_texels->bind(lighting.lights) ? 1 : 0;
}

bool ShaderPath::LightTexels::bind(GLint sampler) {
    GLint max_values = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &max_values);
    if (values.size() > static_cast<std::size_t>(max_values))
        throw Error(fmt::format("the lights of the scene have {} values, but this driver holds at most {}; "
                                "mute or remove some of them",
                                values.size(), max_values));
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_BUFFER, texture.name());
    glUniform1i(sampler, 0);
    const auto size = values.size() * sizeof(values.front());
    if (values.size() == uploaded.size() && std::memcmp(values.data(), uploaded.data(), size) == 0)
        return false;
    glBindBuffer(GL_TEXTURE_BUFFER, buffer.name());
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(size), values.data(), GL_DYNAMIC_DRAW);
    glTexBuffer(GL_TEXTURE_BUFFER, GL_RGBA32F, buffer.name());
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    uploaded = values;
    return true;
}

} // namespace korl
