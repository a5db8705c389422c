#include <gtest/gtest.h>

#include "host/editor/inputstream.h"
#include "host/editor/inputvalues.h"

namespace tarn::host {
namespace {

std::vector<std::string> drain(InputStream& stream, InputKind kind = InputKind::kToken) {
  std::vector<std::string> out;
  while (auto item = stream.next(kind)) out.push_back(item->text);
  return out;
}

TEST(InputStream, typedLinesAndSentTextSplitByTheirOwnRules) {
  struct Case {
    bool sent;
    const char* text;
    std::vector<std::string> tokens;
  };
  const Case cases[] = {
      {false, "ZOOM  E ", {"ZOOM", "E"}},
      {false, "addImage \"/a/b c.tif\"", {"addImage", "/a/b c.tif"}},
      {false, "  ", {}},
      {true, "regen ", {"regen"}},
      {true, "zoom e \n", {"zoom", "e", ""}},
      {true, "line 0,0 1,1  ", {"line", "0,0", "1,1", ""}},
      {true, "a\r\nb\r\n", {"a", "b"}},
  };
  for (const Case& c : cases) {
    InputStream stream;
    c.sent ? stream.pushSent(c.text) : stream.pushTyped(c.text);
    EXPECT_EQ(drain(stream), c.tokens) << c.text;
  }
  EXPECT_EQ(finishedLength("regen zo"), 6u);
  EXPECT_EQ(finishedLength("regen"), 0u);
}

TEST(InputStream, wholeLineInputsKeepTheirBlanks) {
  InputStream typed;
  typed.pushTyped("addImage /a/b c.tif ");
  EXPECT_EQ(typed.next(InputKind::kCommand)->text, "addImage");
  EXPECT_EQ(typed.next(InputKind::kFileName)->text, "/a/b c.tif");
  InputStream sent;
  sent.pushSent("text one two\nnext ");
  EXPECT_EQ(sent.next(InputKind::kCommand)->text, "text");
  EXPECT_EQ(sent.next(InputKind::kText)->text, "one two");
  EXPECT_EQ(sent.next(InputKind::kCommand)->text, "next");
  EXPECT_EQ(wholeLine("  \"a b\" "), "a b");
  EXPECT_EQ(wholeLine("\"a\" \"b\""), "\"a\" \"b\"");
}

TEST(InputStream, argumentsAreABarrier) {
  InputStream stream;
  stream.pushTyped("below");
  stream.pushArguments({"ZOOM", ""});
  EXPECT_EQ(stream.next(InputKind::kCommand)->text, "ZOOM");
  EXPECT_EQ(stream.next(InputKind::kToken)->text, "");
  EXPECT_FALSE(stream.next(InputKind::kToken).has_value());
  EXPECT_TRUE(stream.atBarrier());
  stream.dropTo(1);
  EXPECT_FALSE(stream.atBarrier());
  EXPECT_EQ(stream.next(InputKind::kToken)->text, "below");
}

TEST(InputValues, pointsKeepEveryDigit) {
  const Point3 last{40500000, 3500000, 5};
  struct Case {
    const char* text;
    bool valid;
    double x, y, z;
  };
  const Case cases[] = {
      {"40500123.456,3512345.678", true, 40500123.456, 3512345.678, 0},
      {"1,2,3", true, 1, 2, 3},
      {"@10,-5", true, 40500010, 3499995, 5},
      {"@", true, 40500000, 3500000, 5},
      {"@10<90", true, 40500000, 3500010, 5},
      {"1", false, 0, 0, 0},
      {"1,2,3,4", false, 0, 0, 0},
      {"1,x", false, 0, 0, 0},
      {"inf,0", false, 0, 0, 0},
  };
  for (const Case& c : cases) {
    const auto point = parsePoint(c.text, last);
    ASSERT_EQ(point.has_value(), c.valid) << c.text;
    if (!c.valid) continue;
    EXPECT_NEAR(point->x, c.x, 1e-9) << c.text;
    EXPECT_NEAR(point->y, c.y, 1e-9) << c.text;
    EXPECT_EQ(point->z, c.z) << c.text;
  }
}

TEST(InputValues, keywordsMatchByTheirCapitals) {
  const auto keywords = keywordList("All Center eXit  Extents");
  ASSERT_EQ(keywords.size(), 4u);
  struct Case {
    const char* typed;
    const char* meant;
  };
  const Case cases[] = {{"a", "All"},     {"cen", "Center"}, {"x", "eXit"}, {"_e", "Extents"},
                        {"EXIT", "eXit"}, {"alles", ""},     {"", ""},      {"z", ""}};
  for (const Case& c : cases) EXPECT_EQ(matchKeyword(c.typed, keywords).value_or(""), c.meant);
}

}  // namespace
}  // namespace tarn::host
