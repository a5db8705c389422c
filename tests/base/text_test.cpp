#include "base/text.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(Text, RoundTripsEveryPlane) {
  const std::string utf8 = "a\xC3\xA9\xE5\xBD\xB1\xE5\x83\x8F\xF0\x9F\x97\xBA";
  EXPECT_EQ(toUtf8(toWide(utf8)), utf8);
  EXPECT_EQ(toUtf8(fromUtf16(toUtf16(toWide(utf8)))), utf8);
  EXPECT_EQ(toUtf16(L"\U0001F5FA").size(), 2U);
}

TEST(Text, BrokenUtf8BecomesReplacementAndNeverReadsPastTheEnd) {
  for (const char* bad :
       {"\xE5\xBD", "\xFF", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\x80"}) {
    EXPECT_EQ(toWide(bad)[0], L'\xFFFD') << bad;
  }
  EXPECT_EQ(toWide("\xE5z"), L"\xFFFDz");
}

TEST(Text, SplitKeepsEmptyPieces) {
  EXPECT_EQ(split(std::wstring_view(L",a,,B,"), L','),
            (std::vector<std::wstring>{L"", L"a", L"", L"B", L""}));
  EXPECT_EQ(split(std::string_view(""), ',').size(), 1U);
}

TEST(Text, NumbersKeepEveryDigit) {
  for (const double value : {40500123.456, 0.1, -3512345.678, 1e300}) {
    double back = 0;
    ASSERT_TRUE(parseDouble(formatDouble(value), back));
    EXPECT_EQ(back, value);
  }
  double untouched = 7;
  for (const char* bad : {"", " ", "1,5", "12x", "nan", "inf", "1 2"}) {
    EXPECT_FALSE(parseDouble(bad, untouched)) << bad;
  }
  EXPECT_EQ(untouched, 7);
  EXPECT_TRUE(parseDouble(" +2.5 ", untouched));
}

}  // namespace
}  // namespace tarn
