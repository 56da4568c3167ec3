#include "shell/mesh/model_import.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"
#include "tests/shell/mesh/model_files.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace korl {
namespace {

using namespace test;

std::string errorOf(const std::filesystem::path& file) {
    return korl::test::errorOf([&] { importModel(file, UpAxis::y); });
}

class DamagedModelTest : public testing::Test {
protected:
    /// The message without the file.
    std::string errorOfText(const std::string& name, const std::string& text) {
        writeBytes(my_folder / name, text);
        const std::string prefix = "cannot read the model " + (my_folder / name).string() + ": ";
        const std::string error = errorOf(my_folder / name);
        return error.starts_with(prefix) ? error.substr(prefix.size()) : error;
    }

    TemporaryFolder my_folder;
};

TEST_F(DamagedModelTest, WhatIsNoModelIsRefused) {
    constexpr auto list = ".obj, .ply, .stl, .gltf, .glb, .3ds";
    const auto folder = my_folder.path().string();
    std::filesystem::create_directory(my_folder / "folder.obj");
    ASSERT_EQ(mkfifo((my_folder / "pipe.obj").c_str(), 0600), 0);
    const std::string prefix = "cannot read the model " + folder;
    EXPECT_EQ(errorOf(my_folder / "missing.obj"),
              prefix + "/missing.obj: there is no such file; check the path");
    EXPECT_EQ(errorOf(my_folder / "folder.obj"),
              prefix + "/folder.obj: it is a directory; give the name of a model file");
    EXPECT_EQ(errorOf(my_folder / "pipe.obj"),
              prefix + "/pipe.obj: it is a FIFO; give the name of a model file");
    EXPECT_EQ(errorOf(""), "cannot read the model : there is no such file; check the path");
    EXPECT_EQ(errorOfText("empty.obj", ""), "it is empty");
    EXPECT_EQ(errorOfText("model.xyz", "v 0 0 0\n"),
              std::string("a .xyz file is not a model that can be read; those that can are ") + list);
    EXPECT_EQ(errorOfText("model", "v 0 0 0\n"),
              std::string("its name has no extension to tell the format; those that can be read are ") +
                  list);
}

TEST_F(DamagedModelTest, DamagedModelsAreRefused) {
    const std::string ply =
        "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
        "property float z\nelement face 1\nproperty list uchar int vertex_indices\nend_header\n";
    const std::string vertices = "0 0 0\n1 0 0\n0 1 0\n";
    struct Row {
        std::string name, text, message;
    };
    const std::string damaged = "it is damaged or truncated: ";
    const std::vector<Row> rows{
        {"points.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\np 1 2 3\n", "it has no triangles"},
        {"none.ply",
         "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
         "property float z\nend_header\n0 0 0\n",
         "it has no triangles"},
        {"one.obj", "v 1 2 3\nv 1 2 3\nv 1 2 3\nf 1 2 3\n",
         "all its vertices are in one place, so that it has no size"},
        {"nan.obj", "v 0 0 0\nv nan 0 0\nv 0 1 0\nf 1 2 3\n",
         "it has a vertex at (nan, 0.000000, 0.000000), which is not a place"},
        {"inf.ply", ply + "0 0 0\n1 inf 0\n0 1 0\n3 0 1 2\n",
         "it has a vertex at (1.000000, inf, 0.000000), which is not a place"},
        {"other.ply", "solid\n", damaged + "it does not begin with a line \"ply\""},
        {"head.ply", ply.substr(0, ply.size() - 1), damaged + "its header is incomplete"},
        {"format.ply", "ply\nelement vertex 0\nend_header\n", damaged + "its header is incomplete"},
        {"unknown.ply", "ply\nformat ebcdic 1.0\nend_header\n",
         damaged + "its header has the unknown format \"ebcdic\""},
        {"type.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty half x\nend_header\n",
         damaged + "its header has the unknown type \"half\""},
        {"count.ply", "ply\nformat ascii 1.0\nelement vertex many\nend_header\n",
         damaged + "its header does not tell how many elements \"vertex\" there are"},
        {"early.ply", "ply\nformat ascii 1.0\nproperty float x\nend_header\n",
         damaged + "its header has a property before the first element"},
        {"bare.ply", "ply\nformat ascii 1.0\nelement vertex 9\nend_header\n",
         damaged + "its header has no properties for the element \"vertex\""},
        {"zero.ply", std::string("ply\nformat ascii 1.0\nelement vertex 0\0\nend_header\n", 50),
         damaged + "its header has bytes that are not text"},
        {"missing.ply", ply + "0 0 0\n1 0 0\n", damaged + "vertex 2 of 3 is missing"},
        {"short.ply", ply + "0 0 0\n1 0\n0 1 0\n3 0 1 2\n", damaged + "line 11: vertex 1 of 3 is incomplete"},
        {"word.ply", ply + "0 0 0\n1 zero 0\n0 1 0\n3 0 1 2\n",
         damaged + "line 11: vertex 1 of 3 is incomplete"},
        {"face.ply", ply + vertices, damaged + "face 0 of 1 is missing"},
        {"corner.ply", ply + vertices + "3 0 1\n", damaged + "line 13: face 0 of 1 is incomplete"},
        {"two.ply", ply + vertices + "2 0 1\n", damaged + "line 13: face 0 of 1 has fewer than 3 corners"},
        {"minus.ply", ply + vertices + "-1 0 1 2\n",
         damaged + "line 13: \"-1\" is beyond the type \"uchar\""},
        {"endless.ply", ply + vertices + "1e300 0 1 2\n",
         damaged + "line 13: \"1e300\" is not a whole number, as the type \"uchar\" takes"},
        {"nan.ply", ply + vertices + "nan 0 1 2\n",
         damaged + "line 13: \"nan\" is not a whole number, as the type \"uchar\" takes"},
        {"beyond.ply", ply + vertices + "3 0 1 3\n",
         damaged + "line 13: face 0 of 1 leads to a vertex that does not exist"},
        {"below.ply", ply + vertices + "3 0 -1 2\n",
         damaged + "line 13: face 0 of 1 leads to a vertex that does not exist"},
        {"binary.ply",
         "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty char x\nend_header\nab",
         damaged + "it ends before the last vertex"},
        {"open.stl", "solid open\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n",
         damaged + "it has no \"endsolid\""},
        {"text.glb", "glTF, but no more than that",
         damaged + "its length or that of a chunk is not what its head tells"},
        {"text.gltf", "{ \"asset\"",
         "this is not JSON: parse error at line 1, column 10: syntax error while parsing object separator - "
         "unexpected end of input; expected ':'"},
    };
    for (const auto& [name, text, message] : rows)
        EXPECT_EQ(errorOfText(name, text), message) << name;
    // Where the reader of the format tells the reason, its words may change.
    EXPECT_TRUE(errorOfText("beyond.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n").starts_with("it "));
    EXPECT_TRUE(errorOfText("noise.3ds", std::string(300, '\x17')).starts_with(damaged));
}

TEST_F(DamagedModelTest, AFileThatMayNotBeOpenedIsRefused) {
    writeBytes(my_folder / "locked.obj", "v 0 0 0\n");
    std::filesystem::permissions(my_folder / "locked.obj", std::filesystem::perms::none);
    std::filesystem::permissions(my_folder.path(), std::filesystem::perms::all);
    const std::string expected = "cannot read the model " + (my_folder / "locked.obj").string() +
                                 ": it may not be opened: Permission denied";
    // In a process of its own, which can give up the rights of the administrator.
    const pid_t child = fork();
    if (child == 0) {
        const bool is_plain_user = geteuid() != 0 || setuid(65534) == 0;
        _exit(is_plain_user && errorOf(my_folder / "locked.obj") == expected ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

/// However short a file is cut, it is refused or gives a valid mesh. What is lost can't always be seen in a
/// text. Each reading is a process, so that not every length is tried.
TEST(ModelTruncationTest, NoModelThatIsCutShortDoesHarm) {
    const TemporaryFolder folder;
    for (const std::string companion : {"corner.bin", "corner.mtl"})
        std::filesystem::copy_file(data / companion, folder / companion);
    for (const std::string& name : corner_files) {
        const std::string whole = bytesOf(data / name);
        const bool shows_every_loss =
            name.find("binary") != std::string::npos || name == "corner.glb" || name == "corner.3ds";
        const std::size_t last = whole.size() - 1, step = whole.size() / 20;
        for (std::size_t size = 0; size <= last;
             size = size < last ? std::min(size + step, last) : size + 1) {
            writeBytes(folder / name, whole.substr(0, size));
            try {
                validate(importModel(folder / name, UpAxis::y));
                EXPECT_FALSE(shows_every_loss) << name << " gave a mesh although cut at byte " << size;
            } catch (const Error& error) {
                const std::string expected = size == 0 ? ": it is empty" : ": ";
                EXPECT_NE(std::string(error.what()).find(name + expected), std::string::npos) << error.what();
                EXPECT_EQ(std::string(error.what()).find("crashed"), std::string::npos) << error.what();
            }
        }
    }
}

TEST(ModelTruncationTest, NoFileStaysOpenWhereAModelIsRefused) {
    const TemporaryFolder folder;
    std::filesystem::copy_file(data / "corner.gltf", folder / "corner.gltf");
    writeBytes(folder / "corner.bin", "cut");
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openFiles();
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(errorOf(folder / "corner.gltf"), "no error");
    EXPECT_EQ(openFiles(), before);
}

TEST(ModelTruncationTest, AGltfModelNeedsAllOfItsBuffer) {
    const TemporaryFolder folder;
    std::filesystem::copy_file(data / "corner.gltf", folder / "corner.gltf");
    EXPECT_NE(errorOf(folder / "corner.gltf"), "no error") << "without any buffer";
    const std::string whole = bytesOf(data / "corner.bin");
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        writeBytes(folder / "corner.bin", whole.substr(0, size));
        EXPECT_NE(errorOf(folder / "corner.gltf"), "no error") << size;
    }
    writeBytes(folder / "corner.bin", whole);
    EXPECT_EQ(errorOf(folder / "corner.gltf"), "no error");
}

} // namespace
} // namespace korl
