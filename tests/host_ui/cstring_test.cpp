#include "afxstr.h"

#include <gtest/gtest.h>

namespace {

TEST(CString, cutsWithinItsBounds) {
  const CString text(ACRX_T("影像列表.tif"));
  EXPECT_EQ(text.Left(4), ACRX_T("影像列表"));
  EXPECT_EQ(text.Right(4), ACRX_T(".tif"));
  EXPECT_EQ(text.Mid(2, 2), ACRX_T("列表"));
  EXPECT_EQ(text.Mid(-3, 100), text);
  EXPECT_EQ(text.Mid(50), ACRX_T(""));
  EXPECT_EQ(text.Right(-1), ACRX_T(""));
  EXPECT_EQ(text.ReverseFind(L'.'), 4);
  EXPECT_EQ(text.Find(L'x'), -1);
  EXPECT_EQ(text.Find(ACRX_T("tif"), 99), -1);
}

TEST(CString, formatsWithTheRulesOfTheInterface) {
  CString text;
  text.Format(ACRX_T("%s(%d) %.1f %-4s| %5.2f%%"), ACRX_T("获得"), 82, 1.25, ACRX_T("ab"), 3.14159);
  EXPECT_EQ(text, ACRX_T("获得(82) 1.2 ab  |  3.14%"));
  text.Format(ACRX_T("%hs and %ls"), "narrow", ACRX_T("wide"));
  EXPECT_EQ(text, ACRX_T("narrow and wide"));
  const std::wstring large(5000, L'像');
  text.Format(ACRX_T("<%s>"), large.c_str());
  EXPECT_EQ(text.GetLength(), 5002);
}

TEST(CString, comparesAndReplaces) {
  CString text(ACRX_T("ABAB"));
  EXPECT_EQ(text.CompareNoCase(ACRX_T("abab")), 0);
  EXPECT_NE(text.Compare(ACRX_T("abab")), 0);
  EXPECT_EQ(text.Replace(ACRX_T("AB"), ACRX_T("x")), 2);
  EXPECT_EQ(text, ACRX_T("xx"));
  text += ACRX_T("Y");
  EXPECT_EQ(text.MakeLower() + ACRX_T("!"), ACRX_T("xxy!"));
}

}  // namespace
