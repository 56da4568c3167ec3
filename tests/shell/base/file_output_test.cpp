#include "shell/base/file_output.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_lock.hpp"
#include "tests/support/error_of.hpp"
#include "tests/support/temporary_folder.hpp"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace korl {
namespace {

namespace fs = std::filesystem;
using test::bytesOf;
using test::writeBytes;

class FileOutputTest : public testing::Test {
protected:
    /// @returns the error's text, empty for none.
    static std::string write(const fs::path& target, const std::string& text) {
        return test::errorOf([&] {
            writeFileAtomically(target,
                                std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
        });
    }

    std::string cannotWrite(const std::string& name, const std::string& reason) const {
        return "cannot write " + (my_folder / name).string() + ": " + reason;
    }

    std::size_t fileCount() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(my_folder.path()), {}));
    }

    static mode_t modeOf(const fs::path& file) {
        struct stat found {};
        return ::stat(file.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
    }

    /// Whether something holds in a process of its own, which may change what counts for the whole process.
    static bool holdsInChild(const std::function<bool()>& condition) {
        const pid_t child = fork();
        if (child == 0)
            _exit(condition() ? 0 : 1);
        int status = -1;
        return waitpid(child, &status, 0) == child && status == 0;
    }

    static bool becomePlainUser() { return geteuid() != 0 || setuid(65534) == 0; }

    test::TemporaryFolder my_folder;
};

TEST_F(FileOutputTest, WritesANewFile) {
    for (const std::string& text : {std::string(), std::string("a\0b", 3), std::string(3'000'000, 'x')}) {
        EXPECT_EQ(write(my_folder / "new", text), "no error");
        EXPECT_EQ(bytesOf(my_folder / "new"), text);
        EXPECT_EQ(fileCount(), 1u);
        fs::remove(my_folder / "new");
    }
}

TEST_F(FileOutputTest, ANewFileHasTheRightsThatTheUmaskLeaves) {
    for (const auto& [mask, rights] : {std::pair<mode_t, mode_t>{027, 0640}, {0, 0666}}) {
        const mode_t before = umask(mask);
        EXPECT_EQ(write(my_folder / "new", "text"), "no error");
        umask(before);
        EXPECT_EQ(modeOf(my_folder / "new"), rights);
        fs::remove(my_folder / "new");
    }
}

TEST_F(FileOutputTest, AReplacedFileKeepsItsRights) {
    writeBytes(my_folder / "old", "a longer text than the new one");
    fs::permissions(my_folder / "old", static_cast<fs::perms>(0604));
    EXPECT_EQ(write(my_folder / "old", "new"), "no error");
    EXPECT_EQ(bytesOf(my_folder / "old"), "new");
    EXPECT_EQ(modeOf(my_folder / "old"), 0604u);
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileOutputTest, WhoReadsTheReplacedFileKeepsIt) {
    writeBytes(my_folder / "old", "old");
    std::ifstream reader(my_folder / "old");
    EXPECT_EQ(write(my_folder / "old", "new"), "no error");
    std::string read;
    reader >> read;
    EXPECT_EQ(read, "old");
}

TEST_F(FileOutputTest, AnotherTemporaryFileIsLeftAlone) {
    const std::string other = ".korl-" + std::to_string(getpid()) + "-0";
    writeBytes(my_folder / other, "other");
    EXPECT_EQ(write(my_folder / "new", "text"), "no error");
    EXPECT_EQ(bytesOf(my_folder / other), "other");
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(FileOutputTest, ALinkStaysAndItsFileIsReplaced) {
    fs::create_directory(my_folder / "folder");
    writeBytes(my_folder / "folder/file", "old");
    fs::create_symlink("folder/file", my_folder / "link");
    EXPECT_EQ(write(my_folder / "link", "new"), "no error");
    EXPECT_TRUE(fs::is_symlink(my_folder / "link"));
    EXPECT_EQ(bytesOf(my_folder / "folder/file"), "new");
}

TEST_F(FileOutputTest, ALinkThatLeadsNowhereIsRefused) {
    fs::create_symlink("nowhere\n", my_folder / "link");
    EXPECT_EQ(write(my_folder / "link", "new"),
              cannotWrite("link", "it is a symbolic link to nowhere\\n, which is not there; make that file "
                                  "first, or remove the link"));
    EXPECT_TRUE(fs::is_symlink(my_folder / "link"));
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileOutputTest, TemporaryFilesOfKilledProcessesAreSwept) {
    const std::string start = ".korl-unfinished-";
    for (const char* const name : {"1-0", "2-7", "in use"})
        writeBytes(my_folder / (start + name), "half a file");
    const Descriptor in_use = lockLeftover(my_folder / (start + "in use"));
    EXPECT_EQ(write(my_folder / "new", "text"), "no error");
    EXPECT_TRUE(fs::exists(my_folder / (start + "in use")));
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(FileOutputTest, WhatIsReplacedIsARegularFile) {
    writeBytes(my_folder / "file", "");
    fs::create_symlink("file", my_folder / "link");
    fs::create_symlink("nowhere", my_folder / "astray");
    ASSERT_EQ(mkfifo((my_folder / "pipe").c_str(), 0600), 0);
    for (const auto& [name, target] : {std::pair("file", "file"), {"new", "new"}, {"link", "file"}})
        EXPECT_EQ(regularTarget(my_folder / name), my_folder / target);
    const std::vector<std::pair<std::string, std::string>> refused{
        {"pipe", "it is a device or a pipe, which cannot be replaced; give the name of a file"},
        {"astray",
         "it is a symbolic link to nowhere, which is not there; make that file first, or remove the "
         "link"},
        {".", "it is a directory; give the name of a file"}};
    for (const auto& [name, reason] : refused)
        try {
            regularTarget(my_folder / name);
            ADD_FAILURE() << name;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), cannotWrite(name, reason));
        }
}

TEST_F(FileOutputTest, APipeIsWrittenTo) {
    // It stands for all that is not a regular file. A real device is not put at risk: if this failed, it
    // would be gone.
    const fs::path pipe = my_folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(write(pipe, "text"), "no error");
    EXPECT_TRUE(fs::is_fifo(pipe));
    char read_back[8] = {};
    EXPECT_EQ(read(reader, read_back, sizeof read_back), 4);
    EXPECT_STREQ(read_back, "text");
    close(reader);
}

TEST_F(FileOutputTest, ANameWithoutAFolderIsInTheCurrentOne) {
    EXPECT_TRUE(holdsInChild([&] {
        fs::current_path(my_folder.path());
        return write("plain", "text") == "no error";
    }));
    EXPECT_EQ(bytesOf(my_folder / "plain"), "text");
}

TEST_F(FileOutputTest, WhatCannotBeWrittenIsTold) {
    fs::create_directory(my_folder / "folder");
    writeBytes(my_folder / "file", "old");
    EXPECT_EQ(write(my_folder / "folder", "text"),
              cannotWrite("folder", "it is a directory; give the name of a file"));
    EXPECT_EQ(write(my_folder / "gone/file", "text"),
              cannotWrite("gone/file",
                          "the folder " + (my_folder / "gone").string() + " does not exist; make it first"));
    EXPECT_EQ(write(my_folder / "file/file", "text"),
              cannotWrite("file/file",
                          "the folder " + (my_folder / "file").string() + " does not exist; make it first"));
    EXPECT_EQ(write("", "text"), "cannot write : the file has no name; give one");
    const std::string long_name(300, 'n');
    EXPECT_EQ(write(my_folder / long_name, "text"), cannotWrite(long_name, "File name too long"));
    EXPECT_EQ(fileCount(), 2u);
    EXPECT_EQ(bytesOf(my_folder / "file"), "old");
}

TEST_F(FileOutputTest, WhatMayNotBeWrittenIsToldAndStays) {
    fs::create_directory(my_folder / "locked");
    writeBytes(my_folder / "locked/file", "old");
    writeBytes(my_folder / "read-only", "old");
    fs::permissions(my_folder / "read-only", static_cast<fs::perms>(0444));
    fs::permissions(my_folder / "locked", static_cast<fs::perms>(0555));
    fs::permissions(my_folder.path(), fs::perms::all);
    EXPECT_TRUE(holdsInChild([&] {
        return becomePlainUser() &&
               write(my_folder / "locked/new", "text") == cannotWrite("locked/new", "Permission denied") &&
               write(my_folder / "locked/file", "text") == cannotWrite("locked/file", "Permission denied") &&
               write(my_folder / "read-only", "text") == cannotWrite("read-only", "Permission denied");
    }));
    EXPECT_EQ(bytesOf(my_folder / "read-only"), "old");
    EXPECT_EQ(bytesOf(my_folder / "locked/file"), "old");
    EXPECT_EQ(fileCount(), 2u);
    fs::permissions(my_folder / "locked", fs::perms::all);
}

TEST_F(FileOutputTest, ADiskErrorLeavesTheOldFileAndNoTemporary) {
    writeBytes(my_folder / "file", "old");
    EXPECT_TRUE(holdsInChild([&] {
        const rlimit limit{1000, 1000};
        std::signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 &&
               write(my_folder / "file", std::string(5000, 'x')) == cannotWrite("file", "File too large");
    }));
    EXPECT_EQ(bytesOf(my_folder / "file"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

} // namespace
} // namespace korl
