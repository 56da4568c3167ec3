#include "shell/render/shader_path.hpp"

#include "shell/error.hpp"
#include "shell/render/gl_error.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/material.hpp"
#include "shell/render/uniform_values.hpp"

#include <glm/gtc/type_ptr.hpp>

namespace korl {

namespace {

/// So many programs at most are kept for combinations of snippets that may come up again.
constexpr std::size_t most_programs = 64;
constexpr std::size_t most_lineups = 1024;

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

} // namespace

AssembledShader assembleFrame(const View& view) {
    std::vector<LightSnippet> snippets;
    for (std::size_t i = 0; i < view.sources().size(); ++i)
        snippets.push_back({view.ownerOf(i).Name(), view.sources()[i]->snippet()});
    return assembleShader(snippets);
}

void ShaderPath::fillUniforms(View& view, const Viewpoint& viewpoint) {
    for (const View::Member& member : view.members()) {
        if (member.shader_light)
            continue;
        const SavedLightState saved;
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(glm::value_ptr(viewpoint.view));
        view.context().setLightNumber(1);
        member.object->environment_render(view.context());
        requireNoGLError("light", member.object->Name());
    }
    view.fillUniforms();
}

void ShaderPath::draw(const View& view, const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes,
                      Reports& reports) {
    LightingProgram& lighting = programFor(view);
    const ProgramInUse in_use(lighting.program);
    glUniformMatrix4fv(lighting.view, 1, GL_FALSE, glm::value_ptr(viewpoint.view));
    glUniformMatrix4fv(lighting.projection, 1, GL_FALSE, glm::value_ptr(viewpoint.projection));
    glUniform3fv(lighting.eye, 1, glm::value_ptr(viewpoint.eye));
    glUniform1f(lighting.specular, material_specular);
    glUniform1f(lighting.shininess, material_shininess);
    uploadLights(view, lighting, reports);
    for (const auto& [mesh, buffers] : meshes)
        buffers->drawWithAttributes();
}

ShaderPath::LightingProgram& ShaderPath::programFor(const View& view) {
    my_serials.clear();
    for (const auto& source : view.sources())
        my_serials.push_back(source->serialNumber());
    if (const auto known = my_lineups.find(my_serials); known != my_lineups.end())
        return *known->second;

    if (my_programs.size() >= most_programs || my_lineups.size() >= most_lineups) {
        my_lineups.clear();
        my_programs.clear();
        my_snippets.clear();
    }
    std::vector<LightSnippet> snippets;
    for (std::size_t i = 0; i < view.sources().size(); ++i) {
        const auto [snippet, missing] = my_snippets.try_emplace(my_serials[i]);
        if (missing)
            snippet->second = view.sources()[i]->snippet();
        snippets.push_back({view.ownerOf(i).Name(), snippet->second});
    }
    const AssembledShader shader = assembleShader(snippets);
    auto& lighting = my_programs[shader.fragment];
    if (!lighting) {
        Program program = buildLightingProgram(shader);
        ++my_compile_count;
        const auto location = [&](const char* name) { return program.uniformLocation(name); };
        const GLint view_matrix = location("korl_view"), projection = location("korl_projection");
        const GLint eye = location("korl_eye"), specular = location("korl_specular");
        const GLint shininess = location("korl_shininess");
        lighting = std::make_unique<LightingProgram>(
            LightingProgram{std::move(program), view_matrix, projection, eye, specular, shininess, {}, {}});
        for (const SnippetSection& section : shader.sections)
            lighting->suffixes.push_back(section.suffix);
        lighting->uniforms.resize(shader.sections.size());
    }
    my_lineups[my_serials] = lighting.get();
    return *lighting;
}

void ShaderPath::uploadLights(const View& view, LightingProgram& lighting, Reports& reports) {
    for (std::size_t i = 0; i < view.sources().size(); ++i)
        for (const auto& [name, value] : view.sources()[i]->uniforms()) {
            auto& uniforms = lighting.uniforms[i];
            auto uniform = uniforms.find(name);
            if (uniform == uniforms.end()) {
                const GLint location =
                    lighting.program.uniformLocation(applySuffix(name, lighting.suffixes[i]));
                uniform = uniforms.emplace(name, Uniform{location, false, {}}).first;
            }
            Uniform& known = uniform->second;
            if (!isFinite(value))
                reports.once(view.ownerOf(i).number(), "uniform not finite",
                             [&, &name = name, &value = value] {
                                 return "light \"" + view.ownerOf(i).Name() +
                                        "\" adds nothing on the shader path: its \"" + name +
                                        "\" is not finite (" + uniformText(value) + "); check its parameters";
                             });
            if (known.location < 0 || (known.uploaded && sameBits(known.value, value)))
                continue; // the program does without it, or has it already
            uploadUniform(known.location, value);
            if (const GLenum problem = glGetError(); problem != GL_NO_ERROR)
                throw Error("light \"" + view.ownerOf(i).Name() + "\": its uniform \"" + name +
                            "\" = " + uniformText(value) + " is of another type than its snippet declares");
            known.value = value;
            known.uploaded = true;
            ++my_upload_count;
        }
}

} // namespace korl
