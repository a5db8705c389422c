// What only Windows has: drives, two separators, names of devices, code pages.
#include <gtest/gtest.h>
#include <windows.h>

#include "base/file.h"
#include "base/filelock.h"
#include "base/library.h"
#include "base/path.h"
#include "base/process.h"
#include "base/program.h"
#include "base/stagedfile.h"
#include "base/text.h"

namespace tarn {
namespace {

/// A folder on the drive D that the session maps.
class WindowsFiles : public testing::Test {
 protected:
  void SetUp() override {
    // What these tests are about would not be seen with a code page that has every name.
    ASSERT_EQ(::GetACP(), 936U);
    auto made = makeTemporaryFolder("D:\\", "影像 ");
    ASSERT_TRUE(made) << made.message();
    folder_ = made.take();
  }
  void TearDown() override {
    const Status removed = removeAll(folder_);
    EXPECT_TRUE(removed) << removed.message();
  }
  std::string folder_;
};

TEST_F(WindowsFiles, OneFileHasManySpellings) {
  const std::string written = folder_ + "\\a\\été \xF0\x9F\x97\xBA.tif";
  ASSERT_TRUE(makeFolders(folder_ + "/a\\b/"));
  ASSERT_TRUE(writeFileAtomically(written, "pixels"));
  std::string slashes = replaceAll(written, "\\", "/");
  std::string roundabout = folder_ + "/a/b/..//" + nameOf(written);
  std::string small = written;
  small[0] = 'd';
  for (const std::string& spelling : {slashes, roundabout, small, "\\\\?\\" + written}) {
    EXPECT_EQ(fileKind(spelling), FileKind::kRegular) << spelling;
    EXPECT_TRUE(isSameFile(spelling, written)) << spelling;
    auto bytes = readFile(spelling, 100);
    ASSERT_TRUE(bytes) << bytes.message();
    EXPECT_EQ(bytes.value(), "pixels");
  }
  EXPECT_EQ(listFolder(folder_ + "\\a"), (std::vector<std::string>{"b", nameOf(written)}));
  EXPECT_EQ(fileTimes(written).size, 6U);
  EXPECT_FALSE(isSameFile(written, folder_));
}

TEST_F(WindowsFiles, PathsMayBeLongerThanTheOldLimit) {
  std::string deep = folder_;
  for (int i = 0; i < 12; ++i) deep += "\\" + std::string(30, static_cast<char>('a' + i));
  ASSERT_GT(deep.size(), 300U);
  const Status made = makeFolders(deep);
  ASSERT_TRUE(made) << made.message();
  ASSERT_TRUE(writeFileAtomically(deep + "/x.txt", "x"));
  EXPECT_EQ(readFile(deep + "\\x.txt", 10).value(), "x");
}

TEST_F(WindowsFiles, DevicesAreNoFiles) {
  for (const char* device : {"NUL", "D:\\NUL", "CON", "COM1", "\\\\.\\pipe\\x"}) {
    RandomFile file;
    const Status opened = file.open(device);
    EXPECT_FALSE(opened) << device;
    EXPECT_NE(fileKind(device), FileKind::kRegular) << device;
  }
}

TEST_F(WindowsFiles, WhatIsOpenCanBeReplacedAndRemovedAndKeepsItsBytes) {
  const std::string path = folder_ + "\\open.tif", beside = folder_ + "\\new.tif";
  ASSERT_TRUE(writeFileAtomically(path, "old"));
  ASSERT_TRUE(writeFileAtomically(beside, "new"));
  RandomFile reader;
  ASSERT_TRUE(reader.open(path));
  const Status replaced = replaceFile(beside, path);
  EXPECT_TRUE(replaced) << replaced.message();
  char bytes[3];
  ASSERT_TRUE(reader.readAt(0, bytes, 3));
  EXPECT_EQ(std::string(bytes, 3), "old");
  EXPECT_EQ(readFile(path, 10).value(), "new");
  ASSERT_TRUE(reader.open(path));
  EXPECT_TRUE(writeFileAtomically(path, "newer"));
  // What is removed is gone, and its folder can go, while somebody still reads it.
  ASSERT_TRUE(reader.open(path));
  EXPECT_TRUE(removeAll(path));
  EXPECT_EQ(fileKind(path), FileKind::kMissing);
  ASSERT_TRUE(reader.readAt(0, bytes, 3));
  EXPECT_EQ(std::string(bytes, 3), "new");
  EXPECT_TRUE(listFolder(folder_).empty());
}

TEST_F(WindowsFiles, AFolderGoesWithAFileThatIsOpenWhereTemporaryFilesCannotBeMovedTo) {
  // In a session of the tests this is another file system than drives C and D.
  auto other = makeTemporaryFolder("Z:\\tmp", "影像 ");
  ASSERT_TRUE(other) << other.message();
  const std::string build = other.value() + "\\build";
  ASSERT_TRUE(makeFolders(build));
  FileLock lock;
  ASSERT_TRUE(lock.tryLock(build + "\\lock"));
  EXPECT_TRUE(removeAll(build));
  EXPECT_EQ(fileKind(build), FileKind::kMissing);
  lock.unlock();
  EXPECT_TRUE(listFolder(other.value()).empty());
  EXPECT_TRUE(removeAll(other.value()));
}

TEST_F(WindowsFiles, MarksAgainstWritingAreHeededAndDoNotKeepWhatIsRemoved) {
  const std::string path = folder_ + "\\marked.tif";
  ASSERT_TRUE(writeFileAtomically(path, "x"));
  EXPECT_TRUE(fileIsWritable(path));
  ASSERT_NE(::SetFileAttributesW(toWide(path).c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_FALSE(fileIsWritable(path));
  EXPECT_TRUE(folderIsWritable(folder_));
  EXPECT_FALSE(folderIsWritable(folder_ + "\\none"));
  EXPECT_TRUE(removeAll(path));
  EXPECT_EQ(fileKind(path), FileKind::kMissing);
}

TEST_F(WindowsFiles, ALockIsOneOwners) {
  const std::string path = folder_ + "\\build.lock";
  FileLock mine, other;
  ASSERT_TRUE(mine.tryLock(path));
  const Status second = other.tryLock(path);
  ASSERT_FALSE(second);
  EXPECT_NE(second.message().find("is locked by another program"), std::string::npos)
      << second.message();
  // The lock is on no byte that anybody reads.
  EXPECT_TRUE(readFile(path, 10));
  mine.unlock();
  EXPECT_TRUE(other.tryLock(path));
}

TEST_F(WindowsFiles, FailuresNameTheFileAndTheReason) {
  const Status missing = RandomFile().open(folder_ + "\\影.tif");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.message().find(folder_ + "\\影.tif: cannot open: "), 0U) << missing.message();
  EXPECT_EQ(missing.message().find("。"), std::string::npos) << missing.message();
  const auto library = loadLibrarySymbol(folder_ + "\\none.dll", "x");
  ASSERT_FALSE(library);
  EXPECT_NE(library.message().find("none.dll: cannot be loaded: "), std::string::npos);
}

TEST(Windows, AbsolutePathsAndProcesses) {
  for (const char* path : {"D:\\x", "d:/x", "\\\\server\\share\\x", "/x", "\\x"})
    EXPECT_TRUE(isAbsolutePath(path)) << path;
  for (const char* path : {"D:x", "x\\y", "", "D:"}) EXPECT_FALSE(isAbsolutePath(path)) << path;
  const std::string full = absolutePath("x\\y.tif");
  EXPECT_TRUE(isAbsolutePath(full)) << full;
  EXPECT_EQ(nameOf(full), "y.tif");
  EXPECT_TRUE(processLives(processNumber()));
  EXPECT_FALSE(processLives(0x7FFFFFF0));
  EXPECT_EQ(fileKind(folderOfCode(reinterpret_cast<const void*>(&absolutePath))),
            FileKind::kFolder);
  EXPECT_FALSE(environmentValue("SystemRoot").empty());
}

}  // namespace
}  // namespace tarn
