#include "base/file.h"

#include <gtest/gtest.h>

#include "base/path.h"

namespace tarn {
namespace {

class FileTest : public testing::Test {
 protected:
  void SetUp() override { folder_ = makeTemporaryFolder(testing::TempDir(), "tarn_file_").take(); }
  void TearDown() override { EXPECT_TRUE(removeAll(folder_)); }
  std::string at(const std::string& name) const { return joinPath(folder_, name); }
  std::string folder_;
};

TEST_F(FileTest, AtomicWriteReplacesAndLeavesNothingElse) {
  const std::string path = at("影像 \xF0\x9F\x97\xBA.txt");
  ASSERT_TRUE(writeFileAtomically(path, "old"));
  ASSERT_TRUE(writeFileAtomically(path, "new"));
  EXPECT_EQ(readFile(path, 10).value(), "new");
  EXPECT_EQ(listFolder(folder_).size(), 1U);
}

TEST_F(FileTest, FailedAtomicWriteNamesTheFileAndKeepsTheOld) {
  ASSERT_TRUE(makeFolders(at("taken/inner")));
  const Status status = writeFileAtomically(at("taken"), "x");
  EXPECT_FALSE(status);
  EXPECT_NE(status.message().find("taken"), std::string::npos);
  EXPECT_EQ(listFolder(folder_), std::vector<std::string>{"taken"});
  EXPECT_FALSE(writeFileAtomically(at("no/such/folder/file"), "x"));
}

TEST_F(FileTest, ReadingRefusesFoldersShortFilesAndLargeFiles) {
  ASSERT_TRUE(writeFileAtomically(at("ten"), "0123456789"));
  RandomFile file;
  EXPECT_FALSE(file.open(folder_));
  EXPECT_FALSE(file.open("/dev/null"));
  ASSERT_TRUE(file.open(at("ten")));
  char buffer[8];
  EXPECT_TRUE(file.readAt(4, buffer, 6));
  EXPECT_FALSE(file.readAt(4, buffer, 7));
  EXPECT_FALSE(readFile(at("ten"), 9));
}

}  // namespace
}  // namespace tarn
