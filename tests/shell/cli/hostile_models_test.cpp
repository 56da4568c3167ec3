// Models that crashed the program, kept it busy or took all memory once, each with what is said of it now.

#include "tests/support/run_program.hpp"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace {

using korl::test::ProgramResult;
using korl::test::runProgram;

const std::filesystem::path hostile = HOSTILE_MODELS;
const std::string damaged = "it is damaged or truncated: ";
const std::string outside =
    " lies outside the model's folder; allow it with --model-anywhere (model_anywhere in "
    "Python)";

const std::map<std::string, std::string> messages{
    // Elements that come twice wrote beyond what was made for the first.
    {"repeated_element.ply", damaged + "line 9: the element \"vertex\" stands twice in the header"},
    {"repeated_property.ply", damaged + "line 9: the element \"face\" has \"vertex_index\" twice"},
    // Corners where none are expected, and empty lists in the place of numbers.
    {"strips.ply", damaged + "line 7: triangle strips are not read; write it with faces"},
    {"corners_of_vertices.ply", damaged + "line 7: the element \"vertex\" cannot have the list "
                                          "\"vertex_indices\"; corners are \"vertex_indices\" of a \"face\""},
    {"coordinate_list.ply", damaged +
                                "line 4: the element \"vertex\" cannot have the list \"x\"; corners are "
                                "\"vertex_indices\" of a \"face\""},
    {"no_corners.ply", damaged + "its faces have no list \"vertex_indices\""},
    // What ends an element's properties for the reader.
    {"comment_among_properties.ply", damaged +
                                         "line 6: a property of the element \"vertex\" comes after another "
                                         "line; put that line before the element"},
    // Numbers that are read as others, or in part.
    {"beyond_type.ply", damaged + "line 13: \"300\" is beyond the type \"uchar\""},
    {"beyond_index.ply", damaged + "line 13: \"99999999999999999999\" is beyond the type \"int\""},
    {"beyond_float.ply", damaged + "line 11: \"1e39\" is beyond the type \"float\""},
    {"fraction.ply", damaged + "line 13: \"1.5\" is not a whole number, as the type \"int\" takes"},
    {"real_length.ply", damaged + "line 8: the length of a list cannot be of the type \"float\""},
    {"blank_line.ply", damaged + "line 11: it is blank, but numbers are expected"},
    {"long_count.ply", damaged + "line 3: expected a number of elements up to 4294967295, found "
                                 "\"9999999999999999999999999999999999999999...\""},
    {"zeros_before_count.ply", damaged + "line 3: expected a number of elements up to 4294967295, found "
                                         "\"0000000000000000000000000000000000000000...\""},
    // Faces that take minutes to be cut.
    {"many_corners.ply", damaged +
                             "line 13: face 0 of 1 has 1025 corners, more than the 1024 that are read; cut "
                             "it into smaller ones"},
    {"many_corners.obj",
     "it has a face of 1025 corners, more than the 1024 that are read; cut it into smaller "
     "ones"},
    // Nodes that double with each level, or lie too deep in each other.
    {"two_parents.gltf", "/nodes/0/children/1: the node 1 has two parents"},
    {"crossed_parents.gltf", "/nodes/2/children/0: the node 3 has two parents"},
    {"circle.gltf", "/scenes/0/nodes/0: the node 0 is a root, but has a parent"},
    {"root_twice.gltf", "/scenes/0/nodes/1: the node 0 is a root, but has been one before"},
    {"nested.gltf", "/nodes/63/children/0: the nodes lie more than 64 deep in each other"},
    {"deep.gltf",
     "/extras/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: lists and objects lie "
     "more than 32 deep in each other"},
    {"not_an_object.gltf", "expected an object, found array"},
    {"version_1.gltf", "/asset/version: is \"1.0\", but glTF is read in version 2"},
    // Data beyond what is there.
    {"view_beyond_buffer.gltf", "/bufferViews/0: ends at byte 40 of its buffer, which has 36"},
    {"accessor_beyond_view.gltf", "/accessors/0: ends at byte 48 of its buffer view, which has 36"},
    {"no_view.gltf", "/accessors/0/bufferView: leads to buffer view 1, but there are 1"},
    {"component_type.gltf", "/accessors/0: has the unknown component type 5124"},
    // Other files.
    {"scheme.gltf",
     "/buffers/0/uri: \"http://example.com/corner.bin\" is a URI of the scheme \"http\"; only files "
     "and \"data\" are read"},
    {"file_scheme.gltf",
     "/buffers/0/uri: \"file:///dev/zero\" is a URI of the scheme \"file\"; only files and "
     "\"data\" are read"},
    {"scheme.obj",
     "it names \"http://example.com/colors.mtl\", a URI of the scheme \"http\"; only files are read"},
    {"device.gltf", "/buffers/0/uri: \"/dev/zero\" is a device"},
    {"folder.gltf", "/buffers/0/uri: \".\" is a directory"},
    {"missing.gltf", "/buffers/0/uri: there is no file \"nowhere.bin\""},
    {"outside.gltf", "/buffers/0/uri: the file \"../corner.bin\"" + outside},
    {"outside_escaped.gltf", "/buffers/0/uri: the file \"%2e%2e/corner.bin\"" + outside},
};

class HostileModels : public testing::Test {
protected:
    void expectRefusal(const std::filesystem::path& model, const std::string& message) const {
        const ProgramResult result =
            runProgram(KORL_PROGRAM, {"save", "--model", model, "-o", folder / "scene.json"});
        EXPECT_EQ(result.errors, "korl: cannot read the model " + model.string() + ": " + message + "\n");
        EXPECT_EQ(result.exit_code, 1) << model;
        EXPECT_EQ(result.output, "");
        EXPECT_FALSE(std::filesystem::exists(folder / "scene.json"));
    }

    const korl::test::TemporaryFolder folder;
};

/// The kept files of one format.
class HostileFormat : public HostileModels, public testing::WithParamInterface<std::string> {};

TEST_P(HostileFormat, IsRefused) {
    for (const auto& [name, message] : messages)
        if (name.ends_with("." + GetParam()))
            expectRefusal(hostile / name, message);
}

INSTANTIATE_TEST_SUITE_P(Kept, HostileFormat, testing::Values("ply", "obj", "gltf"),
                         [](const auto& format) { return format.param; });

TEST_F(HostileModels, EachHasItsMessage) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(hostile))
        names.push_back(entry.path().filename());
    EXPECT_EQ(names.size(), messages.size());
    for (const std::string& name : names)
        EXPECT_TRUE(messages.contains(name)) << name;
}

TEST_F(HostileModels, LargerOnesAreRefusedToo) {
    std::string nodes = "{\"asset\": {\"version\": \"2.0\"}, \"nodes\": [";
    for (int node = 1; node < 6000; ++node)
        nodes += "{\"children\": [" + std::to_string(node) + "]}, ";
    expectRefusal(folder.write("nested.gltf", nodes + "{}]}"),
                  "/nodes/63/children/0: the nodes lie more than 64 deep in each other");
    std::string face = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf";
    for (int corner = 0; corner < 600'000; ++corner)
        face += corner % 2 == 0 ? " 1" : " 2";
    expectRefusal(
        folder.write("face.obj", face + "\n"),
        "it has a face of 600000 corners, more than the 1024 that are read; cut it into smaller ones");
}

TEST_F(HostileModels, TheBuffersOfAModelMayLieAnywhereWhereThatIsAllowed) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"save", "--model", hostile / "outside.gltf",
                                                           "--model-anywhere", "-o", folder / "a.json"});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
}

TEST_F(HostileModels, ASceneFileTellsThePlaceOfTheModelThatIsRefused) {
    std::filesystem::copy_file(hostile / "fraction.ply", folder / "fraction.ply");
    const std::filesystem::path scene =
        folder.write("scene.json", R"({"korl": 1, "meshes": [{"file": "fraction.ply"}]})");
    const ProgramResult result = runProgram(KORL_PROGRAM, {"save", scene, "-o", folder / "new.json"});
    EXPECT_EQ(result.errors, "korl: " + scene.string() + ": /meshes/0/file: cannot read the model " +
                                 (folder / "fraction.ply").string() + ": " + messages.at("fraction.ply") +
                                 "\n");
    EXPECT_EQ(result.exit_code, 1);
}

TEST_F(HostileModels, EveryCommandThatReadsModelsHasTheirLimits) {
    const std::filesystem::path model = folder.write("sail.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    const std::filesystem::path scene =
        folder.write("scene.json", R"({"korl": 1, "meshes": [{"file": "sail.obj"}]})");
    const std::string refusal =
        "reading it takes more than 1 MiB of memory\nIf it is not damaged, allow more "
        "with --model-memory (model_memory in Python).\n";
    const std::vector<std::vector<std::string>> commands{
        {"save", "--model", model, "-o", folder / "a.json"},
        {"save", scene, "-o", folder / "a.json"},
        {"render", "--model", model, "-o", folder / "a.png"},
        {"shader", "--model", model},
        {"explain", "--model", model},
        {"script", "--model", model},
        {"animate", "--model", model, "-o", folder / "a_##.png"},
        {"save-rig", scene, "-o", folder / "a.json"},
        {"load-rig", scene, scene, "-o", folder / "a.json"},
    };
    for (std::vector<std::string> words : commands) {
        words.insert(words.end(), {"--model-memory", "1", "--model-timeout", "100"});
        const ProgramResult result = runProgram(KORL_PROGRAM, words);
        EXPECT_TRUE(result.errors.ends_with(": " + refusal)) << words[0] << ": " << result.errors;
        EXPECT_EQ(result.exit_code, 1) << words[0];
    }
    EXPECT_EQ(
        runProgram(KORL_PROGRAM, {"script", "--model-timeout", "0"}).errors,
        "korl: --model-timeout takes 0.001 to 1e9 seconds, found 0\nRun with --help for more information.\n");
    EXPECT_EQ(runProgram(KORL_PROGRAM, {"script", "--model-memory", "0.5"}).errors,
              "korl: --model-memory takes 1 to 1e9 MiB, found 0.5\nRun with --help for more information.\n");
    for (const std::string option : {"--model-memory", "--model-timeout"})
        for (const std::string value : {"0", "-1", "nan", "inf", "1e99", "much", ""})
            EXPECT_EQ(
                runProgram(KORL_PROGRAM, {"save", "--model", model, option, value, "-o", folder / "b.json"})
                    .exit_code,
                2)
                << option << " " << value;
}

} // namespace
