// Which found file stands for which missing one.
#include "_image/imagerelink.h"

#include <gtest/gtest.h>

namespace tarn::image {
namespace {

TEST(Relink, NameAndSizeDecideThenTheFolders) {
  const std::vector<FoundFile> found = {{"/new/x/a.tif", 10},      {"/new/y/a.tif", 20},
                                        {"/new/y/site/a.tif", 20}, {"/new/B.TIF", 5},
                                        {"/new/影像 1.tif", 7},    {"/new/e.tif", 1}};
  const struct {
    MissingFile missing;
    const char* match;
  } cases[] = {
      {{"/old/a.tif", 10}, "/new/x/a.tif"},
      {{"/old/a.tif", 20}, "/new/y/a.tif"},
      {{"/old/site/a.tif", 20}, "/new/y/site/a.tif"},
      {{"/old/site/a.tif", std::nullopt}, "/new/y/site/a.tif"},
      {{"/old/a.tif", 30}, ""},
      {{"/old/b.tif", 5}, "/new/B.TIF"},
      {{"D:\\测区\\影像 1.tif", 7}, "/new/影像 1.tif"},
      {{"/old/none.tif", std::nullopt}, ""},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(matchMissing({one.missing}, found).at(0), one.match) << one.missing.path;
  }
  EXPECT_TRUE(matchMissing({}, found).empty());
}

}  // namespace
}  // namespace tarn::image
