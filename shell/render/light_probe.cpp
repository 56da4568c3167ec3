#include "shell/render/light_probe.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/shader_assembly.hpp"
#include "shell/render/snippet_of.hpp"
#include "shell/render/uniform_values.hpp"

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cmath>

namespace korl {

using Qelt::RenderNamespace::LightSource;

namespace {

constexpr int target_width = 512;
constexpr int most_rows = 512;
constexpr std::size_t most_probes = 256;

/// Of the target, for so many points.
int rowsOf(int points) {
    return (points + target_width - 1) / target_width;
}

bool areFinite(const glm::vec3& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// Keeps framebuffer and state, sets what the probe needs, and brings them back.
class ProbeState {
public:
    explicit ProbeState(const DrawingState& drawing) {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &my_draw_framebuffer);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &my_read_framebuffer);
        drawing.set();
        glDisable(GL_DEPTH_TEST);
    }
    ~ProbeState() {
        glUseProgram(0);
        glBindVertexArray(0);
        glBindTexture(GL_TEXTURE_BUFFER, 0);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(my_draw_framebuffer));
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(my_read_framebuffer));
        glPopAttrib();
    }
    ProbeState(const ProbeState&) = delete;
    ProbeState& operator=(const ProbeState&) = delete;

private:
    GLint my_draw_framebuffer = 0, my_read_framebuffer = 0;
};

/// The three outputs of the probe for pixels of the target, row by row.
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
    return areFinite(incidence) && areFinite(intensity) && areFinite(specular_intensity);
}

std::vector<LightSample> LightProbe::sample(const LightSource& source, const std::string& light_name,
                                            std::span<const glm::vec3> points, const glm::vec3& eye) {
    const Buffer buffer;
    glBindBuffer(GL_TEXTURE_BUFFER, buffer.name());
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(points.size_bytes()), points.data(),
                 GL_STREAM_DRAW);
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    return sample(source, light_name, buffer, static_cast<int>(points.size()), eye);
}

std::vector<LightSample> LightProbe::sample(const LightSource& source, const std::string& light_name,
                                            const Buffer& points, int count, const glm::vec3& eye) {
    std::vector<LightSample> samples(static_cast<std::size_t>(count));
    if (samples.empty())
        return samples;
    if (count > mostPoints())
        throw Error("light " + inQuotes(light_name) + " cannot be evaluated at " + std::to_string(count) +
                    " points at once: this driver's buffers hold at most " + std::to_string(mostPoints()));
    if (!my_drawing_state)
        my_drawing_state.emplace();
    const ProbeState state(*my_drawing_state);
    const Probe& probe = probeFor(source, light_name);
    bindTarget(count);
    glUseProgram(probe.program.name());
    glUniform3fv(probe.program.uniformLocation("korl_eye"), 1, glm::value_ptr(eye));
    glUniform1i(probe.program.uniformLocation("korl_target_width"), target_width);
    glUniform1i(probe.program.uniformLocation("korl_points"), 0);
    for (const Declared& uniform : probe.declared) // another light may have left its values there
        uploadFloats(uniform.location, {uniform.size, uniform.value});
    for (const auto& [name, value] : source.uniforms())
        uploadUniform(probe.program.uniformLocation(applySuffix(name, probe.suffix)), value);
    if (glGetError() != GL_NO_ERROR)
        throw Error("light " + inQuotes(light_name) +
                    ": one of its uniforms has a value of another type than its snippet declares");

    const VertexArray no_attributes;
    glBindVertexArray(no_attributes.name());
    const Texture texels;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_BUFFER, texels.name());
    glTexBuffer(GL_TEXTURE_BUFFER, GL_R32F, points.name());
    const int room = target_width * my_target->rows;
    for (int first = 0; first < count; first += room) {
        const int drawn = std::min(room, count - first);
        glUniform1i(probe.program.uniformLocation("korl_first_point"), first);
        glViewport(0, 0, target_width, rowsOf(drawn));
        glDrawArrays(GL_TRIANGLES, 0, 3);
        readSamples(
            std::span(samples).subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(drawn)));
    }
    return samples;
}

int LightProbe::mostPoints() {
    GLint most_texels = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &most_texels);
    return most_texels / 3; // a texel for each coordinate
}

std::array<float, 4> LightProbe::declaredValue(const LightSource& source, const std::string& light_name,
                                               const std::string& uniform) {
    const auto& declared = probeFor(source, light_name).declared;
    const auto found = std::find_if(declared.begin(), declared.end(),
                                    [&](const Declared& each) { return each.name == uniform; });
    return found == declared.end() ? std::array<float, 4>{} : found->value;
}

LightProbe::Probe& LightProbe::probeFor(const LightSource& source, const std::string& light_name) {
    const std::string snippet = snippetOf(source, light_name);
    if (const auto known = my_probes.find(snippet); known != my_probes.end())
        return known->second;
    const AssembledShader shader = assembleProbe({light_name, snippet});
    Probe probe{buildLightingProgram(shader), shader.sections.front().suffix, {}};
    for (const UniformDeclaration& uniform :
         floatUniforms(snippet).value_or(std::vector<UniformDeclaration>())) {
        const GLint location = probe.program.uniformLocation(applySuffix(uniform.name, probe.suffix));
        Declared& declared = probe.declared.emplace_back(Declared{uniform.name, location, uniform.size, {}});
        if (location >= 0)
            glGetUniformfv(probe.program.name(), location, declared.value.data());
    }
    if (my_probes.size() >= most_probes)
        my_probes.clear();
    return my_probes.emplace(snippet, std::move(probe)).first->second;
}

void LightProbe::bindTarget(int count) {
    const int rows = std::min(most_rows, rowsOf(count));
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
