#include "base/path.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(Path, SplitsAtTheLastSeparatorOfEitherKind) {
  struct Case {
    const char* path;
    const char* folder;
    const char* name;
    const char* extension;
  };
  for (const Case& c :
       {Case{"/a/b.c/d.TIF", "/a/b.c", "d.TIF", ".TIF"},
        Case{"D:\\x/y\\z.img", "D:\\x/y", "z.img", ".img"}, Case{"plain", "", "plain", ""},
        Case{"/root.tif", "", "root.tif", ".tif"}, Case{"a/.hidden", "a", ".hidden", ""}}) {
    EXPECT_EQ(folderOf(std::string_view(c.path)), c.folder);
    EXPECT_EQ(nameOf(std::string_view(c.path)), c.name);
    EXPECT_EQ(extensionOf(c.path), c.extension);
  }
}

TEST(Path, RelativePathsBecomePlain) {
  const struct {
    const char *folder, *relative, *expected;
  } cases[] = {
      {"/home/ann", "a.tif", "/home/ann/a.tif"},
      {"/home/ann", "./a//b/./c.tif", "/home/ann/a/b/c.tif"},
      {"/home/ann", "../bob/a.tif", "/home/bob/a.tif"},
      {"/home/ann", "../../../a.tif", "/a.tif"},
      {"/home/ann", "link/../a.tif", "/home/ann/link/../a.tif"},
      {"/", "..", "/"},
      {"/home/ann", "", "/home/ann"},
  };
  for (const auto& one : cases)
    EXPECT_EQ(pathBelow(one.folder, one.relative), one.expected) << one.relative;
}

TEST(Path, PieceIsFoundWithEitherSeparator) {
  EXPECT_EQ(replacePathPiece(L"/p/system/tarnconfig.db", L"system", L"tarnconfig.db", L"tarn_log/"),
            L"/p/tarn_log/");
  EXPECT_EQ(
      replacePathPiece(L"C:\\p\\system\\tarnconfig.db", L"system", L"tarnconfig.db", L"tarn_log\\"),
      L"C:\\p\\tarn_log\\");
  EXPECT_EQ(replacePathPiece(L"/p/tarnconfig.db", L"system", L"tarnconfig.db", L"x"),
            L"/p/tarnconfig.db");
}

}  // namespace
}  // namespace tarn
