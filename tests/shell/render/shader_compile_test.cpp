#include "shell/base/error.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/offscreen_target.hpp"
#include "tests/support/error_of.hpp"
#include "tests/support/gl_test.hpp"

#include <algorithm>
#include <cmath>
#include <glm/glm.hpp>
#include <gmock/gmock.h>
#include <random>
#include <vector>

namespace korl {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

/// A light that shines from no direction, in the form of a light source's snippet.
const std::string even_snippet = "\n\nuniform vec4 EvenColor$$         = vec4(1,1,1,1);\n\n"
                                 "void\tgetLight_$$(in vec3 vertex,\n"
                                 "\t\t    out vec3 light_incidence,\n"
                                 "\t\t    out vec3 intensity,\n"
                                 "\t\t    out vec3 specular_intensity\n"
                                 "\t\t    )\n\n"
                                 "{\n\tlight_incidence = vec3(0,0,0);\n"
                                 "\tintensity = EvenColor$$.rgb;\n"
                                 "\tspecular_intensity = vec3(0,0,0);\n}\n\n";

const std::string head = "void\tgetLight_$$(in vec3 vertex, out vec3 light_incidence, out vec3 intensity, "
                         "out vec3 specular_intensity)\n";

/// A light at a place, of a diffuse and a specular colour; the incidence is left unnormalised and scaled.
const std::string placed_snippet =
    "uniform vec3 Place$$ = vec3(0,0,3);\nuniform vec3 Diffuse$$ = vec3(1,1,1);\n"
    "uniform vec3 Specular$$ = vec3(1,1,1);\nconst float Two$$ = 2;\n"
    "uniform float Scale$$ = 1;\n" +
    head +
    "{\n\tlight_incidence = (vertex - Place$$)*Scale$$;\n"
    "\tintensity = Diffuse$$*pow(Two$$, 0);\n"
    "\tspecular_intensity = Specular$$;\n}\n";

struct Vertex {
    glm::vec3 position;
    glm::vec3 normal;
    glm::vec4 color;
};

struct Material {
    float specular = 0.5f;
    float shininess = 20;
};

constexpr int grid = 32; ///< Points on each side of the float target.
const glm::vec3 default_eye(0.3f, -0.2f, 4);

/// One vertex at the centre of each pixel, with a depth, a normal and a colour of its own. As points they
/// make each vertex one fragment, so per-vertex and per-fragment lighting mean the same.
std::vector<Vertex> randomVertices() {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> signed_unit(-1, 1);
    std::uniform_real_distribution<float> unit(0, 1);
    std::vector<Vertex> vertices;
    for (int row = grid - 1; row >= 0; --row) {
        for (int column = 0; column < grid; ++column) {
            const auto place = [](int cell) { return (static_cast<float>(cell) + 0.5f) * 2 / grid - 1; };
            const glm::vec3 normal(signed_unit(random), signed_unit(random), unit(random) + 0.1f);
            vertices.push_back({{place(column), place(row), 0.9f * signed_unit(random)},
                                normal * 1.7f,
                                {unit(random), unit(random), unit(random), unit(random)}});
        }
    }
    return vertices;
}

/// The eye's place is in the view matrix, and taken out again by the projection: scene space is what one
/// sees.
glm::mat4 viewFrom(glm::vec3 eye) {
    glm::mat4 view(1);
    view[3] = glm::vec4(-eye, 1);
    return view;
}

std::vector<glm::vec4> readBack(const OffscreenTarget& target) {
    std::vector<float> values(static_cast<std::size_t>(target.width() * target.height() * 4));
    target.read(values);
    std::vector<glm::vec4> pixels;
    pixels.reserve(values.size() / 4);
    for (std::size_t i = 0; i < values.size(); i += 4)
        pixels.emplace_back(values[i], values[i + 1], values[i + 2], values[i + 3]);
    return pixels;
}

class ShaderCompileGLTest : public test::GLTest, public ::testing::WithParamInterface<int> {
protected:
    Program build(const std::vector<LightSnippet>& snippets) {
        return buildLightingProgram(assembleShader(snippets, GetParam()));
    }

    /// Draws the vertices as points with the program, the rest of whose uniforms is set already.
    std::vector<glm::vec4> draw(const Program& program, const std::vector<Vertex>& vertices,
                                glm::vec3 eye = default_eye, Material material = {}) {
        const OffscreenTarget target(grid, grid, 1, OffscreenTarget::Format::RGBA32F);
        glClearColor(-9, -9, -9, -9);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glUseProgram(program.name());
        const glm::mat4 view = viewFrom(eye);
        const glm::mat4 projection = viewFrom(-eye);
        glUniformMatrix4fv(program.uniformLocation("korl_view"), 1, GL_FALSE, &view[0][0]);
        glUniformMatrix4fv(program.uniformLocation("korl_projection"), 1, GL_FALSE, &projection[0][0]);
        set(program, "korl_eye", eye);
        glUniform1f(program.uniformLocation("korl_specular"), material.specular);
        glUniform1f(program.uniformLocation("korl_shininess"), material.shininess);
        glBegin(GL_POINTS);
        for (const Vertex& vertex : vertices) {
            glVertexAttrib3fv(1, &vertex.normal[0]);
            glVertexAttrib4fv(2, &vertex.color[0]);
            glVertexAttrib3fv(0, &vertex.position[0]);
        }
        glEnd();
        glUseProgram(0);
        return readBack(target);
    }

    static void set(const Program& program, const std::string& name, glm::vec3 value) {
        glUseProgram(program.name());
        glUniform3fv(program.uniformLocation(name), 1, &value[0]);
    }

    std::string errorOf(const std::vector<LightSnippet>& snippets) {
        const test::ToleratedGLErrors refusal;
        return korl::test::errorOf([&] { build(snippets); });
    }
};

float largestDifference(const std::vector<glm::vec4>& a, const std::vector<glm::vec4>& b) {
    float largest = a.size() == b.size() ? 0.0f : 1e9f;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        for (int channel = 0; channel < 4; ++channel) {
            const float difference = std::fabs(a[i][channel] - b[i][channel]);
            largest = difference <= largest ? largest : difference; // NaN becomes the largest
        }
    }
    return largest;
}

std::vector<glm::vec4> colorsTimes(const std::vector<Vertex>& vertices, glm::vec3 factor) {
    std::vector<glm::vec4> colors;
    colors.reserve(vertices.size());
    for (const Vertex& vertex : vertices)
        colors.emplace_back(glm::clamp(glm::vec3(vertex.color) * factor, 0.0f, 1.0f), 1.0f);
    return colors;
}

TEST_P(ShaderCompileGLTest, NoLightIsBlack) {
    const std::vector<Vertex> vertices = randomVertices();
    EXPECT_EQ(largestDifference(draw(build({}), vertices), colorsTimes(vertices, glm::vec3(0))), 0.0f);
}

TEST_P(ShaderCompileGLTest, InitialisedUniformHoldsBeforeTheFirstUpload) {
    const std::vector<Vertex> vertices = randomVertices();
    EXPECT_EQ(largestDifference(draw(build({{"even", even_snippet}}), vertices),
                                colorsTimes(vertices, glm::vec3(1))),
              0.0f);
}

TEST_P(ShaderCompileGLTest, EachLightHasUniformsOfItsOwn) {
    const std::vector<Vertex> vertices = randomVertices();
    const Program program = build({{"a", even_snippet}, {"b", even_snippet}});
    glUseProgram(program.name());
    glUniform4f(program.uniformLocation(applySuffix("EvenColor$$", "L1")), 0.25f, 0, 3, 0);
    glUniform4f(program.uniformLocation(applySuffix("EvenColor$$", "L2")), 0.5f, 0.125f, 0, 0);
    EXPECT_LT(largestDifference(draw(program, vertices), colorsTimes(vertices, {0.75f, 0.125f, 3})), 1e-6f);
}

TEST_P(ShaderCompileGLTest, AttributesHaveTheirLocations) {
    const Program program = build({{"placed", placed_snippet}});
    for (std::size_t location = 0; location < vertex_attribute_names.size(); ++location) {
        EXPECT_EQ(glGetAttribLocation(program.name(), vertex_attribute_names[location]),
                  static_cast<int>(location));
    }
}

/// The colour by the Blinn-Phong model with a local viewer, in long double.
glm::vec3 reference(const Vertex& vertex, glm::vec3 eye, Material material, glm::vec3 place,
                    glm::vec3 diffuse, glm::vec3 specular) {
    using Vector = glm::vec<3, long double>;
    const Vector normal = glm::normalize(Vector(vertex.normal));
    const Vector to_light = glm::normalize(Vector(place) - Vector(vertex.position));
    const Vector to_eye = glm::normalize(Vector(eye) - Vector(vertex.position));
    const long double n_dot_l = glm::dot(normal, to_light);
    if (n_dot_l <= 0)
        return glm::vec3(0);
    const long double n_dot_h = std::max(0.0L, glm::dot(normal, glm::normalize(to_light + to_eye)));
    const long double highlight =
        material.specular * std::pow(n_dot_h, static_cast<long double>(material.shininess));
    return glm::clamp(
        glm::vec3(n_dot_l * Vector(diffuse) * Vector(vertex.color) + highlight * Vector(specular)), 0.0f,
        1.0f);
}

const glm::vec3 place(-0.7f, 1.1f, 1.4f);
const glm::vec3 diffuse(0.9f, 0.4f, 1.2f);
const glm::vec3 specular(0.8f, 0.3f, 0.1f);

TEST_P(ShaderCompileGLTest, PlacedLightAgreesWithLongDoubles) {
    const std::vector<Vertex> vertices = randomVertices();
    const Program program = build({{"placed", placed_snippet}});
    set(program, "PlaceL1", place);
    set(program, "DiffuseL1", diffuse);
    set(program, "SpecularL1", specular);
    // An incidence of any length is only a direction.
    for (const float scale : {1.0f, 1e-25f, 1e25f}) {
        for (const Material material :
             {Material{0.5f, 20}, Material{1, 1}, Material{0.7f, 0}, Material{0, 5}}) {
            glUseProgram(program.name());
            glUniform1f(program.uniformLocation("ScaleL1"), scale);
            std::vector<glm::vec4> expected;
            expected.reserve(vertices.size());
            for (const Vertex& vertex : vertices) {
                expected.emplace_back(reference(vertex, default_eye, material, place, diffuse, specular),
                                      1.0f);
            }
            EXPECT_LT(largestDifference(draw(program, vertices, default_eye, material), expected), 2e-5f)
                << "scale " << scale << ", shininess " << material.shininess;
        }
    }
}

/// The same by OpenGL's own lighting, in the convention that both paths of the renderer share.
std::vector<glm::vec4> drawFixed(const std::vector<Vertex>& vertices, glm::vec3 eye, Material material) {
    const OffscreenTarget target(grid, grid, 1, OffscreenTarget::Format::RGBA32F);
    glClearColor(-9, -9, -9, -9);
    glClear(GL_COLOR_BUFFER_BIT);
    glUseProgram(0);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    const glm::mat4 projection = viewFrom(-eye);
    const glm::mat4 view = viewFrom(eye);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(&projection[0][0]);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(&view[0][0]);

    const std::array<GLfloat, 4> black{0, 0, 0, 1};
    const std::array<GLfloat, 4> ambient{0.1f, 0.05f, 0.2f, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black.data());
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, GL_TRUE);
    glLightfv(GL_LIGHT0, GL_POSITION, &glm::vec4(place, 1)[0]);
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, &glm::vec4(diffuse, 1)[0]);
    glLightfv(GL_LIGHT0, GL_SPECULAR, &glm::vec4(specular, 1)[0]);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, &glm::vec4(glm::vec3(material.specular), 1)[0]);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, material.shininess);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_NORMALIZE);
    glBegin(GL_POINTS);
    for (const Vertex& vertex : vertices) {
        glNormal3fv(&vertex.normal[0]);
        glColor3fv(&vertex.color[0]); // surfaces are opaque
        glVertex3fv(&vertex.position[0]);
    }
    glEnd();
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glPopAttrib();
    return readBack(target);
}

TEST_P(ShaderCompileGLTest, AgreesWithFixedFunctionLighting) {
    const std::vector<Vertex> vertices = randomVertices();
    const Program program = build({{"placed", placed_snippet}, {"even", even_snippet}});
    set(program, "PlaceL1", place);
    set(program, "DiffuseL1", diffuse);
    set(program, "SpecularL1", specular);
    glUniform4f(program.uniformLocation("EvenColorL2"), 0.1f, 0.05f, 0.2f, 1);
    for (const Material material : {Material{0.5f, 20}, Material{1, 1}, Material{0.7f, 0}}) {
        EXPECT_LT(largestDifference(draw(program, vertices, default_eye, material),
                                    drawFixed(vertices, default_eye, material)),
                  5e-5f)
            << "shininess " << material.shininess;
    }
}

TEST_P(ShaderCompileGLTest, ViewDirectionLeadsFromTheEyeToTheFragment) {
    const std::string snippet = "#pragma import \"getViewDir\"\n" + head +
                                "{\n\tlight_incidence = vec3(0,0,0);\n\tintensity = getViewDir()*0.5 + 0.5;\n"
                                "\tspecular_intensity = vec3(0,0,0);\n}\n";
    std::vector<Vertex> vertices = randomVertices();
    std::vector<glm::vec4> expected;
    for (Vertex& vertex : vertices) {
        vertex.color = glm::vec4(1);
        const glm::dvec3 direction = glm::normalize(glm::dvec3(vertex.position) - glm::dvec3(default_eye));
        expected.emplace_back(glm::vec3(direction * 0.5 + 0.5), 1.0f);
    }
    EXPECT_LT(largestDifference(draw(build({{"viewer", snippet},
                                            {"even", "#pragma import \"getViewDir\"\n" + head +
                                                         "{ light_incidence = intensity = "
                                                         "specular_intensity = vec3(0); }"}}),
                                     vertices),
                                expected),
              1e-6f);
}

TEST_P(ShaderCompileGLTest, LightThatIsNotFiniteAddsNothing) {
    const std::vector<Vertex> vertices = randomVertices();
    const std::vector<glm::vec4> without = draw(build({{"even", even_snippet}}), vertices);
    // A light shining down, or from everywhere, that is sound until one of its outputs is overwritten.
    const auto snippetOf = [](const std::string& direction, const std::string& output,
                              const std::string& value) {
        std::string snippet = "uniform float Zero$$ = 0.0;\n" + head + "{\n\tlight_incidence = ";
        snippet.append(direction).append(";\n\tintensity = specular_intensity = vec3(1,1,1);\n\t");
        return snippet.append(output).append(" = ").append(value).append(";\n}\n");
    };
    for (const std::string value :
         {"vec3(Zero$$/Zero$$)", "vec3(0, 1.0/Zero$$, 0)", "vec3(0, 0, -1.0/Zero$$)",
          "normalize(vec3(Zero$$))", "vec3(1, sqrt(Zero$$ - 1.0), 1)"}) {
        for (const std::string output : {"light_incidence", "intensity", "specular_intensity"}) {
            for (const std::string direction : {"vec3(0,0,0)", "vec3(0,0,-1)"}) {
                const std::string snippet = snippetOf(direction, output, value);
                const Program program = build({{"bad", snippet}, {"even", even_snippet}});
                EXPECT_EQ(largestDifference(draw(program, vertices), without), 0.0f) << snippet;
            }
        }
    }
}

TEST_P(ShaderCompileGLTest, LargestFloatIsStillALight) {
    const std::string snippet = head + "{ light_incidence = specular_intensity = vec3(0); intensity = "
                                       "vec3(3.402823466e+38, 3e38, 0); }";
    std::vector<Vertex> vertices = randomVertices();
    for (Vertex& vertex : vertices)
        vertex.color = glm::vec4(1);
    EXPECT_EQ(
        largestDifference(draw(build({{"bright", snippet}}), vertices), colorsTimes(vertices, {1, 1, 0})),
        0.0f);
}

TEST_P(ShaderCompileGLTest, DegenerateGeometryStaysFinite) {
    std::vector<Vertex> vertices = randomVertices();
    const Program program = build({{"placed", placed_snippet}});
    for (Vertex& vertex : vertices)
        vertex.normal = glm::vec3(0); // no surface to reflect from: ambient light only
    EXPECT_EQ(largestDifference(draw(program, vertices), colorsTimes(vertices, glm::vec3(0))), 0.0f);
    // The light exactly behind the surface's viewer: the half vector vanishes, and with it the highlight.
    const std::string opposite =
        "#pragma import \"getViewDir\"\n" + head +
        "{ light_incidence = -getViewDir(); intensity = vec3(0); specular_intensity = vec3(1); }";
    for (Vertex& vertex : vertices)
        vertex.normal = vertex.position - default_eye;
    for (const glm::vec4& pixel : draw(build({{"opposite", opposite}}), vertices))
        ASSERT_TRUE(pixel.r >= 0 && pixel.r <= 1) << pixel.r;
}

TEST_P(ShaderCompileGLTest, BrokenSnippetIsReportedWithItsLight) {
    const std::string broken = head + "{\n\tlight_incidence = vec3(0,0,0);\n\tintensity = no_such_name;\n"
                                      "\tspecular_intensity = vec3(0,0,0);\n}\n";
    const std::string text = errorOf({{"good", even_snippet}, {"lamp", broken}, {"other", even_snippet}});
    EXPECT_THAT(text, MatchesRegex("the GLSL snippet of the light \"lamp\" does not compile, line 4: "
                                   "intensity = no_such_name;\nThe driver says: .*no_such_name.*"));
}

TEST_P(ShaderCompileGLTest, UnclosedSnippetIsReportedInsteadOfTheOneBehindIt) {
    const std::string unclosed =
        head + "{\n\tlight_incidence = intensity = specular_intensity = vec3(0,0,0);\n";
    EXPECT_THAT(
        errorOf({{"good", even_snippet}, {"lamp", unclosed}, {"other", even_snippet}}),
        HasSubstr("the GLSL snippet of the light \"lamp\" does not compile: it has 1 \"{\" but 0 \"}\".\n"
                  "The driver says: "));
}

TEST_P(ShaderCompileGLTest, NameThatTwoLightsShareIsReportedAtTheSecond) {
    const std::string sharing = "float shared_name(float x) { return x; }\n" + even_snippet;
    EXPECT_THAT(errorOf({{"a", sharing}, {"b", sharing}}),
                HasSubstr("\"b\" does not compile, line 1: float shared_name"));
}

INSTANTIATE_TEST_SUITE_P(Versions, ShaderCompileGLTest, ::testing::ValuesIn(glsl_versions),
                         [](const auto& version) { return "Glsl" + std::to_string(version.param); });

} // namespace
} // namespace korl
