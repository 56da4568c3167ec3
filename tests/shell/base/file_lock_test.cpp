#include "shell/base/file_lock.hpp"

#include "tests/support/temporary_folder.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace korl {
namespace {

class FileLockTest : public testing::Test {
protected:
    static Descriptor open(const std::filesystem::path& path) {
        return Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    }

    const test::TemporaryFolder folder;
};

TEST_F(FileLockTest, IsHeldUntilTheFileIsClosed) {
    const auto file = folder.write("file", "");
    Descriptor first = open(file);
    const Descriptor second = open(file);
    EXPECT_EQ(tryLock(first.get()), LockState::taken);
    EXPECT_EQ(tryLock(second.get()), LockState::busy);
    EXPECT_TRUE(first.close());
    EXPECT_EQ(tryLock(second.get()), LockState::taken);
}

TEST_F(FileLockTest, IsImpossibleForWhatIsNotOpen) {
    EXPECT_EQ(tryLock(-1), LockState::impossible);
}

TEST_F(FileLockTest, AFileThatWasReplacedIsNotAtItsPath) {
    const auto file = folder.write("file", "");
    const Descriptor opened = open(file);
    EXPECT_TRUE(isAt(opened.get(), file));
    std::filesystem::rename(folder.write("other", ""), file);
    EXPECT_FALSE(isAt(opened.get(), file));
    std::filesystem::remove(file);
    EXPECT_FALSE(isAt(opened.get(), file));
}

TEST_F(FileLockTest, LeftoversAreFilesAndFoldersThatNobodyHasLocked) {
    const auto file = folder.write("file", "");
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("file", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(lockLeftover(file).isOpen());
    EXPECT_TRUE(lockLeftover(folder / "folder").isOpen());
    EXPECT_FALSE(lockLeftover(folder / "link").isOpen());
    EXPECT_FALSE(lockLeftover(folder / "pipe").isOpen());
    EXPECT_FALSE(lockLeftover(folder / "nothing").isOpen());
    const Descriptor owner = open(file);
    ASSERT_EQ(tryLock(owner.get()), LockState::taken);
    EXPECT_FALSE(lockLeftover(file).isOpen());
}

} // namespace
} // namespace korl
