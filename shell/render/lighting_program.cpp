#include "shell/render/lighting_program.hpp"

#include "shell/base/error.hpp"
#include "shell/render/shader_errors.hpp"

namespace korl {

Program buildLightingProgram(const AssembledShader& assembled) {
    Shader vertex(GL_VERTEX_SHADER);
    if (!vertex.compile(assembled.vertex)) {
        throw Error("the driver refuses the lighting shader's vertex stage.\nThe driver says: " +
                    vertex.log());
    }
    Shader fragment(GL_FRAGMENT_SHADER);
    if (!fragment.compile(assembled.fragment))
        throw Error(compileErrorText(assembled, fragment.log()));
    Program program;
    program.attach(vertex);
    program.attach(fragment);
    for (GLuint location = 0; location < vertex_attribute_names.size(); ++location)
        glBindAttribLocation(program.name(), location, vertex_attribute_names[location]);
    if (!program.link())
        throw Error(compileErrorText(assembled, program.log()));
    return program;
}

} // namespace korl
