// What becomes of a model whose reading takes too much or fails, and what is told of one that was read.

#include "shell/base/error.hpp"
#include "shell/mesh/model_import.hpp"
#include "tests/shell/mesh/model_files.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace korl {
namespace {

using namespace test;

const std::string sail = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

class ModelProcessTest : public testing::Test {
protected:
    /// The message without the file, or "no error".
    std::string errorOf(const std::string& name) {
        try {
            importModel(my_folder / name, UpAxis::y, reading);
        } catch (const Error& error) {
            const std::string prefix = "cannot read the model " + (my_folder / name).string() + ": ";
            const std::string text = error.what();
            return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
        }
        return "no error";
    }

    /// What is told of a model, without the file.
    std::vector<std::string> notesOf(const std::string& name) {
        const std::string prefix = "the model " + (my_folder / name).string() + ": ";
        std::vector<std::string> notes;
        reading.warn = [&](const std::string& text) {
            EXPECT_TRUE(text.starts_with(prefix)) << text;
            notes.push_back(text.substr(std::min(prefix.size(), text.size())));
        };
        EXPECT_EQ(errorOf(name), "no error");
        return notes;
    }

    /// A model that takes much longer to read than any limit below, and more memory.
    void writeLargeModel(const std::string& name) {
        std::ofstream stream(my_folder / name);
        stream << sail;
        for (int i = 0; i < 2'000'000; ++i)
            stream << "v 0 0 0\n";
    }

    TemporaryFolder my_folder;
    ModelReading reading{.timeout = std::chrono::seconds(100)};
};

using Notes = std::vector<std::string>;

/// The processes that this one has started.
std::vector<pid_t> children() {
    std::vector<pid_t> found;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream list(task.path() / "children");
        for (pid_t child = 0; list >> child;)
            found.push_back(child);
    }
    return found;
}

/// The process that reads a model, once it runs korl-import; 0 where there is none before the reading is
/// done.
pid_t startedReader(const std::atomic<bool>& is_done) {
    while (!is_done)
        for (const pid_t child : children()) {
            std::string name;
            std::ifstream("/proc/" + std::to_string(child) + "/comm") >> name;
            if (name == "korl-import")
                return child;
        }
    return 0;
}

TEST_F(ModelProcessTest, ReadingEndsWithItsTime) {
    writeLargeModel("large.obj");
    reading.timeout = std::chrono::milliseconds(2);
    EXPECT_EQ(errorOf("large.obj"), "it was not read within 0.002 seconds\nIf it is not damaged, allow more "
                                    "time with --model-timeout (model_timeout in Python).");
    EXPECT_TRUE(children().empty());
}

TEST_F(ModelProcessTest, ReadingEndsWithItsMemory) {
    writeLargeModel("large.obj");
    reading.memory = std::uint64_t{60} << 20;
    EXPECT_EQ(errorOf("large.obj"),
              "reading it takes more than 60 MiB of memory\nIf it is not damaged, allow "
              "more with --model-memory (model_memory in Python).");
}

TEST_F(ModelProcessTest, ReadingMayBeStopped) {
    writeLargeModel("large.obj");
    reading.meanwhile = [] { throw Error("no more"); };
    std::atomic<bool> is_done = false;
    std::thread stopper([&] { // so that it lasts until `meanwhile` is called
        if (const pid_t reader = startedReader(is_done); reader > 0)
            ::kill(reader, SIGSTOP);
    });
    EXPECT_EQ(errorOf("large.obj"), "no more");
    is_done = true;
    stopper.join();
    EXPECT_TRUE(children().empty());
}

TEST_F(ModelProcessTest, AMeshCountsAsAFile) {
    std::string text;
    for (int i = 1; i <= 300; ++i)
        text += "v " + std::to_string(i) + " " + std::to_string(i * i) + " 0\n";
    for (int i = 1; i <= 298; ++i)
        text += "f " + std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + 2) + "\n";
    writeBytes(my_folder / "band.obj", text);
    rlimit usual{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &usual), 0);
    const rlimit small{4096, usual.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string error = errorOf("band.obj");
    ::setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_EQ(error,
              "a mesh cannot be handed to another process: File too large\nIt takes memory, and counts "
              "as a file where the size of files is limited (ulimit -f).");
}

TEST_F(ModelProcessTest, ByDefaultItGetsFiveMinutesAndHalfOfTheMemory) {
    reading = {};
    EXPECT_EQ(reading.timeout, std::chrono::minutes(5));
    const auto all = static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) *
                     static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    EXPECT_EQ(reading.memory, all / 2);
    EXPECT_FALSE(reading.anywhere);
}

TEST_F(ModelProcessTest, AReaderThatIsKilledIsAnError) {
    writeLargeModel("large.obj");
    std::string error;
    std::atomic<bool> is_done = false;
    std::thread import([&] {
        error = errorOf("large.obj");
        is_done = true;
    });
    if (const pid_t reader = startedReader(is_done); reader > 0)
        ::kill(reader, SIGKILL);
    import.join();
    EXPECT_EQ(error,
              "the program that reads it crashed: signal 9 (Killed)\nThe file is probably damaged; write "
              "it anew with the program that made it, or in another format.");
    writeBytes(my_folder / "sail.obj", sail);
    EXPECT_EQ(errorOf("sail.obj"), "no error");
}

TEST_F(ModelProcessTest, AReaderEndsWithTheProcessThatWaitsForIt) {
    writeLargeModel("large.obj");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0); // the reader inherits neither end; what is read tells its number
    const pid_t importer = ::fork();
    if (importer == 0) {
        std::atomic<bool> is_done = false;
        std::thread import([&] {
            errorOf("large.obj");
            is_done = true;
        });
        const pid_t found = startedReader(is_done);
        const bool is_told = ::write(ends[1], &found, sizeof found) == sizeof found;
        ::_exit(is_told ? 0 : 1);
    }
    pid_t reader = 0;
    ASSERT_EQ(::read(ends[0], &reader, sizeof reader), static_cast<ssize_t>(sizeof reader));
    ::close(ends[0]);
    ::close(ends[1]);
    ASSERT_GT(reader, 0);
    // It goes, though nobody has waited for it: it is nobody's child any more, or waited for by init.
    const auto is_there = [&] {
        std::ifstream status("/proc/" + std::to_string(reader) + "/stat");
        std::string number, name, state;
        status >> number >> name >> state;
        return name == "(korl-import)" && state != "Z";
    };
    for (int i = 0; i < 2000 && is_there(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(is_there());
    ::waitpid(importer, nullptr, 0);
}

TEST_F(ModelProcessTest, WhatIsNotShownIsSaidOnce) {
    writeBytes(my_folder / "sail.obj", sail);
    EXPECT_EQ(notesOf("sail.obj"), Notes());
    writeBytes(my_folder / "all.mtl", "newmtl a\nmap_Kd wood.png\nmap_Ks wood.png\nmap_bump bumps.png\n"
                                      "newmtl b\nmap_Kd wood.png\nd 0.5\n");
    writeBytes(my_folder / "all.obj",
               "mtllib all.mtl\nmtllib all.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\nusemtl b\n"
               "f 1 2 3\nl 1 2\np 3\n");
    EXPECT_EQ(notesOf("all.obj"),
              Notes{"some of it is not shown: 2 textures, transparency, points and lines"});

    const std::string text = bytesOf(data / "corner.gltf");
    std::filesystem::copy_file(data / "corner.bin", my_folder / "corner.bin");
    writeBytes(my_folder / "corner.gltf",
               text.substr(0, text.rfind('}')) +
                   R"(, "images": [{"uri": "../wood.png"}], "textures": [{"source": 0}],
                   "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 1}}]})");
    // A camera counts where a node has it, an image where a material does.
    EXPECT_EQ(notesOf("corner.gltf"), Notes());
}

TEST_F(ModelProcessTest, FilesBesideTheModelAreReadAndOthersLeftOut) {
    const TemporaryFolder outside;
    writeBytes(outside / "red.mtl", "newmtl red\nKd 1 0 0\n");
    const auto write = [&](const std::string& library) {
        writeBytes(my_folder / "sail.obj",
                   "mtllib " + library + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\n");
    };
    const auto left_out = [](const std::string& name) {
        return Notes{"the file \"" + name +
                     "\" that it names lies outside its folder and was left out; allow it "
                     "with --model-anywhere (model_anywhere in Python)"};
    };
    std::filesystem::create_directory(my_folder / "inside");
    writeBytes(my_folder / "inside/red.mtl", "newmtl red\nKd 1 0 0\n");
    for (const std::string library : {"inside/../inside/red.mtl", "inside\\red.mtl"}) {
        write(library);
        EXPECT_EQ(notesOf("sail.obj"), Notes());
        EXPECT_EQ(importModel(my_folder / "sail.obj", UpAxis::y).colors.at(0), glm::vec3(1, 0, 0));
    }

    const std::string up = "../" + outside.path().filename().string() + "/red.mtl";
    std::filesystem::create_symlink(outside / "red.mtl", my_folder / "link.mtl");
    for (const std::string& library : {up, (outside / "red.mtl").string(), std::string("link.mtl")}) {
        write(library);
        reading.anywhere = false;
        EXPECT_EQ(notesOf("sail.obj"), left_out(library));
        EXPECT_NE(importModel(my_folder / "sail.obj", UpAxis::y).colors.at(0), glm::vec3(1, 0, 0));
        reading.anywhere = true;
        EXPECT_EQ(notesOf("sail.obj"), Notes());
        EXPECT_EQ(importModel(my_folder / "sail.obj", UpAxis::y, reading).colors.at(0), glm::vec3(1, 0, 0));
    }
    writeBytes(my_folder / "red.mtl", "newmtl red\nKd 1 0 0\n");
    for (const std::string& first : {up, std::string("inside/blue.mtl")}) {
        reading.anywhere = false;
        std::filesystem::create_directory(my_folder / "other");
        writeBytes(my_folder / "other/blue.mtl", "newmtl blue\n");
        write(first + "\nmtllib red.mtl\nmtllib other/blue.mtl");
        EXPECT_EQ(notesOf("sail.obj").size(), 1u) << first;
    }
    std::string many = "no0.mtl";
    for (int i = 1; i < 12; ++i)
        many += "\nmtllib no" + std::to_string(i) + ".mtl";
    write(many);
    EXPECT_EQ(notesOf("sail.obj").size(), 11u);
    EXPECT_EQ(notesOf("sail.obj").back(), "of the files that it names, 2 more were left out");
    write("no\x1bwhere.mtl");
    EXPECT_EQ(notesOf("sail.obj"),
              Notes{"the file \"no\\x1bwhere.mtl\" that it names is not there and was left out"});
}

TEST_F(ModelProcessTest, WhatIsNoRegularFileIsRefusedBeforeItIsOpened) {
    ASSERT_EQ(::mkfifo((my_folder / "pipe").c_str(), 0600), 0);
    writeBytes(my_folder / "library.obj", "mtllib pipe\n" + sail);
    EXPECT_EQ(errorOf("library.obj"), "it names \"pipe\", which is a FIFO");
    writeBytes(my_folder / "device.obj", "mtllib /dev/zero\n" + sail);
    EXPECT_EQ(errorOf("device.obj"), "it names \"/dev/zero\", which is a device");
    writeBytes(my_folder / "folder.obj", "mtllib .\n" + sail);
    EXPECT_EQ(errorOf("folder.obj"), "it names \".\", which is a directory");
    std::filesystem::create_symlink("/dev/zero", my_folder / "zero.ply");
    EXPECT_EQ(errorOf("zero.ply"), "it is a device; give the name of a model file");
    std::filesystem::create_symlink("pipe", my_folder / "pipe.gltf");
    EXPECT_EQ(errorOf("pipe.gltf"), "it is a FIFO; give the name of a model file");

    const std::string text = bytesOf(data / "corner.gltf");
    const auto gltf = [&](const std::string& uri) {
        std::string changed = text;
        changed.replace(changed.find("corner.bin"), 10, uri);
        writeBytes(my_folder / "corner.gltf", changed);
        return errorOf("corner.gltf");
    };
    EXPECT_EQ(gltf("pipe"), "/buffers/0/uri: \"pipe\" is a FIFO");
    EXPECT_EQ(gltf("p%69pe"), "/buffers/0/uri: \"p%69pe\" is a FIFO");
    std::filesystem::copy_file(data / "corner.bin", my_folder / "a corner.bin");
    EXPECT_EQ(gltf("a%20corner.bin"), "no error");
    EXPECT_EQ(gltf("a corner.bin"), "no error");
}

TEST_F(ModelProcessTest, AUriIsRefusedByItsName) {
    for (const std::string uri : {"http://example.com/sail.obj", "file:///tmp/sail.obj"}) {
        try {
            importModel(uri, UpAxis::y);
            ADD_FAILURE() << uri;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), "cannot read the model " + uri + ": it is a URI, of the scheme \"" +
                                        uri.substr(0, uri.find(':')) +
                                        "\"; only files are read, so fetch it and name the file");
        }
    }
}

} // namespace
} // namespace korl
