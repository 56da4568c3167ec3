#include "tests/support/run_program.hpp"

#include <doltra/uniform_map.hpp>

#include <gmock/gmock.h>
#include <string>

namespace {

using namespace Qelt::RenderNamespace;
using korl::test::ProgramResult;
using korl::test::runProgram;
using Orvid::FixedArray;
using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;

TEST(WriteUniform, TakesColorsAsFourFloats) {
    UniformMap map;
    const rgba_float_t color{0.1f, 0.2f, 0.3f, 0.4f};
    rgba_float_t changing = color;
    writeUniform(map, "constant", color);
    writeUniform(map, "variable", changing);
    writeUniform(map, "temporary", rgba_float_t{0.1f, 0.2f, 0.3f, 0.4f});
    ASSERT_EQ(map.size(), 3u);
    for (const auto& [name, value] : map) {
        ASSERT_EQ(value.index(), 13u) << name;
        EXPECT_EQ(std::get<13>(value), (FixedArray<float, 4>{0.1f, 0.2f, 0.3f, 0.4f})) << name;
    }
    changing.g = 5;
    writeUniform(map, "variable", changing);
    EXPECT_EQ(std::get<13>(map.at("variable")), (FixedArray<float, 4>{0.1f, 5, 0.3f, 0.4f}));
}

TEST(WriteUniform, TakesVectorsAsThreeDoubles) {
    UniformMap map;
    PhysicalSpace::vector vector{1, 2, 3};
    writeUniform(map, "v", vector);
    ASSERT_EQ(map.at("v").index(), 11u);
    EXPECT_EQ(std::get<11>(map.at("v")), (FixedArray<double, 3>{1, 2, 3}));
    writeUniform(map, "v", PhysicalSpace::point{4, 5, 6}); // which has an alternative of its own
    ASSERT_EQ(map.at("v").index(), 10u);
    writeUniform(map, "v", PhysicalSpace::vector{7, 8, 9});
    EXPECT_EQ(std::get<11>(map.at("v")), (FixedArray<double, 3>{7, 8, 9}));
}

/// What the compiler says of a call of `writeUniform` with `value`.
ProgramResult compile(const std::string& value) {
    const korl::test::TemporaryFolder folder;
    const auto file = folder.write("call.cpp", "#include <doltra/uniform_map.hpp>\n"
                                               "#include <string>\n"
                                               "void call(Qelt::RenderNamespace::UniformMap& map) {\n"
                                               "    Qelt::RenderNamespace::writeUniform(map, \"X$$\", " +
                                                   value + ");\n}\n");
    return runProgram(CXX_COMPILER, {"-std=c++20", "-fsyntax-only", "-I" HOST_FOLDER, file.string()},
                      {{"LC_ALL", "C"}});
}

TEST(WriteUniform, NamesWhatItTakesWhereItIsGivenSomethingElse) {
    EXPECT_EQ(compile("1.5").exit_code, 0);
    for (const char* const value :
         {"std::string(\"red\")", "5ul", "Orvid::Coordinates<Orvid::Cartesian3D, float>::vector()"}) {
        const ProgramResult result = compile(value);
        EXPECT_NE(result.exit_code, 0) << value;
        EXPECT_THAT(result.errors, testing::HasSubstr("writeUniform takes the types of UniformValue, colours "
                                                      "(Orvid::rgba_float_t) and vectors "
                                                      "(Orvid::PhysicalSpace::vector), nothing else"));
        std::size_t errors = 0;
        for (std::size_t at = 0; (at = result.errors.find("error:", at)) != std::string::npos; ++at)
            ++errors;
        EXPECT_EQ(errors, 1u) << result.errors;
    }
}

} // namespace
