#include "shell/render/light_sampler.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/shader_assembly.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/render/uniform_values.hpp"
#include "shell/scene/vectors.hpp"

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <fmt/core.h>

namespace korl {

using Qelt::RenderNamespace::LightSource;

namespace {

constexpr int target_width = 512;
constexpr int max_rows = 512;
constexpr std::size_t max_programs = 256;

/// Of the target, for so many points.
int rowsOf(int points) {
    return (points + target_width - 1) / target_width;
}

/// Keeps framebuffer and state, sets what the sampler needs, and brings them back.
class SamplerState {
public:
    explicit SamplerState(const DrawingState& drawing) {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &my_draw_framebuffer);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &my_read_framebuffer);
        drawing.set();
        glDisable(GL_DEPTH_TEST);
    }
    ~SamplerState() {
        glUseProgram(0);
        glBindVertexArray(0);
        glBindTexture(GL_TEXTURE_BUFFER, 0);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(my_draw_framebuffer));
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(my_read_framebuffer));
        glPopAttrib();
    }
    SamplerState(const SamplerState&) = delete;
    SamplerState& operator=(const SamplerState&) = delete;

private:
    GLint my_draw_framebuffer = 0, my_read_framebuffer = 0;
};

/// The three outputs of the sampler for pixels of the target, row by row.
void readSamples(std::span<LightSample> samples) {
    const int rows = rowsOf(static_cast<int>(samples.size()));
    std::vector<glm::vec4> output(static_cast<std::size_t>(target_width) * static_cast<std::size_t>(rows));
    setReadingState();
    constexpr std::array members{&LightSample::incidence, &LightSample::intensity,
                                 &LightSample::specular_intensity};
    for (std::size_t i = 0; i < members.size(); ++i) {
        glReadBuffer(GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(i));
        glReadPixels(0, 0, target_width, rows, GL_RGBA, GL_FLOAT, output.data());
        for (std::size_t k = 0; k < samples.size(); ++k)
            samples[k].*members[i] = glm::vec3(output[k]);
    }
}

} // namespace

bool LightSample::isFinite() const {
    return korl::isFinite(incidence) && korl::isFinite(intensity) && korl::isFinite(specular_intensity);
}

std::vector<LightSample> LightSampler::sample(const LightSource& source, const std::string& light_name,
                                              std::span<const glm::vec3> points, const glm::vec3& eye) {
    const Buffer buffer;
    glBindBuffer(GL_TEXTURE_BUFFER, buffer.name());
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(points.size_bytes()), points.data(),
                 GL_STREAM_DRAW);
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    return sample(source, light_name, buffer, static_cast<int>(points.size()), eye);
}

std::vector<LightSample> LightSampler::sample(const LightSource& source, const std::string& light_name,
                                              const Buffer& points, int count, const glm::vec3& eye) {
    std::vector<LightSample> samples(static_cast<std::size_t>(count));
    if (samples.empty())
        return samples;
    if (count > maxPoints())
        throw Error(fmt::format("light {} cannot be evaluated at {} points at once: this driver's buffers "
                                "hold at most {}",
                                inQuotes(light_name), count, maxPoints()));
    if (!my_drawing_state)
        my_drawing_state.emplace();
    const SamplerState state(*my_drawing_state);
    const SnippetProgram& snippet_program = programFor(source, light_name);
    bindTarget(count);
    glUseProgram(snippet_program.program.name());
    glUniform3fv(snippet_program.program.uniformLocation("korl_eye"), 1, glm::value_ptr(eye));
    glUniform1i(snippet_program.program.uniformLocation("korl_target_width"), target_width);
    glUniform1i(snippet_program.program.uniformLocation("korl_points"), 0);
    for (const Declared& uniform : snippet_program.declared) // another light may have left its values there
        uploadFloats(uniform.location, {uniform.size, uniform.value});
    for (const auto& [name, value] : source.uniforms())
        uploadUniform(snippet_program.program.uniformLocation(applySuffix(name, snippet_program.suffix)),
                      value);
    if (glGetError() != GL_NO_ERROR)
        throw Error(fmt::format("light {}: one of its uniforms has a value of another type than its snippet "
                                "declares",
                                inQuotes(light_name)));

    const VertexArray no_attributes;
    glBindVertexArray(no_attributes.name());
    const Texture texels;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_BUFFER, texels.name());
    glTexBuffer(GL_TEXTURE_BUFFER, GL_R32F, points.name());
    const int capacity = target_width * my_target->rows;
    for (int first = 0; first < count; first += capacity) {
        const int drawn = std::min(capacity, count - first);
        glUniform1i(snippet_program.program.uniformLocation("korl_first_point"), first);
        glViewport(0, 0, target_width, rowsOf(drawn));
        glDrawArrays(GL_TRIANGLES, 0, 3);
        readSamples(
            std::span(samples).subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(drawn)));
    }
    return samples;
}

int LightSampler::maxPoints() {
    GLint max_texels = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &max_texels);
    return max_texels / 3; // a texel for each coordinate
}

std::array<float, 4> LightSampler::declaredValue(const LightSource& source, const std::string& light_name,
                                                 const std::string& uniform) {
    const auto& declared = programFor(source, light_name).declared;
    const auto found = std::find_if(declared.begin(), declared.end(),
                                    [&](const Declared& each) { return each.name == uniform; });
    return found == declared.end() ? std::array<float, 4>{} : found->value;
}

LightSampler::SnippetProgram& LightSampler::programFor(const LightSource& source,
                                                       const std::string& light_name) {
    const std::string snippet = snippetOf(source, light_name);
    if (const auto known = my_programs.find(snippet); known != my_programs.end())
        return known->second;
    const AssembledShader shader = assembleSampler({light_name, snippet});
    SnippetProgram snippet_program{buildLightingProgram(shader), shader.sections.front().suffix, {}};
    for (const UniformDeclaration& uniform :
         floatUniforms(snippet).value_or(std::vector<UniformDeclaration>())) {
        const GLint location =
            snippet_program.program.uniformLocation(applySuffix(uniform.name, snippet_program.suffix));
        Declared& declared =
            snippet_program.declared.emplace_back(Declared{uniform.name, location, uniform.size, {}});
        if (location >= 0)
            glGetUniformfv(snippet_program.program.name(), location, declared.value.data());
    }
    if (my_programs.size() >= max_programs)
        my_programs.clear();
    return my_programs.emplace(snippet, std::move(snippet_program)).first->second;
}

void LightSampler::bindTarget(int count) {
    const int rows = std::min(max_rows, rowsOf(count));
    if (!my_target || my_target->rows < rows) {
        my_target = std::make_unique<Target>();
        my_target->rows = rows;
        glBindFramebuffer(GL_FRAMEBUFFER, my_target->framebuffer.name());
        std::array<GLenum, 3> attachments{};
        for (std::size_t i = 0; i < attachments.size(); ++i) {
            attachments[i] = GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(i);
            glBindRenderbuffer(GL_RENDERBUFFER, my_target->outputs[i].name());
            glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA32F, target_width, rows);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachments[i], GL_RENDERBUFFER,
                                      my_target->outputs[i].name());
        }
        glDrawBuffers(static_cast<GLsizei>(attachments.size()), attachments.data());
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            my_target.reset();
            throw Error("the driver cannot draw into floating-point pictures, which takes a look at single "
                        "lights");
        }
    }
    glBindFramebuffer(GL_FRAMEBUFFER, my_target->framebuffer.name());
}

} // namespace korl
