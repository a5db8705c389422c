#include <gtest/gtest.h>

#include <string>

#include "acutmem.h"

namespace {

TEST(Resbuf, BuildListHoldsEveryKind) {
  const ads_point point = {40500123.456, 3512345.678, 0.5};
  char bytes[] = {1, 0, 2};
  const ads_binary chunk{3, bytes};
  resbuf* list = acutBuildList(RTDXF0, L"LINE", 10, point, 40, 2.5, 70, -7, 90, 100000, 160,
                               Adesk::Int64{1} << 40, 310, &chunk, RTLB, RTSTR, L"影像 😀", RTNONE);
  ASSERT_NE(list, nullptr);
  const resbuf* item = list;
  EXPECT_EQ(item->restype, 0);
  EXPECT_STREQ(item->resval.rstring, L"LINE");
  item = item->rbnext;
  EXPECT_EQ(item->resval.rpoint[1], point[1]);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rreal, 2.5);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rint, -7);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rlong, 100000);
  item = item->rbnext;
  EXPECT_EQ(item->resval.mnInt64, Adesk::Int64{1} << 40);
  item = item->rbnext;
  ASSERT_EQ(item->resval.rbinary.clen, 3);
  EXPECT_EQ(std::string(item->resval.rbinary.buf, 3), std::string(bytes, 3));
  item = item->rbnext;
  EXPECT_EQ(item->restype, RTLB);
  item = item->rbnext;
  EXPECT_STREQ(item->resval.rstring, L"影像 😀");
  EXPECT_EQ(item->rbnext, nullptr);
  EXPECT_EQ(acutRelRb(list), RTNORM);
}

TEST(Resbuf, NothingAndUnknownGiveNull) {
  EXPECT_EQ(acutBuildList(RTNONE), nullptr);
  EXPECT_EQ(acutBuildList(40, 1.0, 7777, 1, RTNONE), nullptr);
  EXPECT_EQ(acutRelRb(nullptr), RTNORM);
}

TEST(Resbuf, TextsAreCopied) {
  ACHAR* copy = nullptr;
  EXPECT_EQ(acutNewString(L"abc", copy), Acad::eOk);
  EXPECT_STREQ(copy, L"abc");
  acutDelString(copy);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(acutNewString(nullptr, copy), Acad::eInvalidInput);
}

}  // namespace
