// Where texts lie: by the estimated widths, which say 0.9 heights for a letter.
#include <gtest/gtest.h>

#include <cmath>

#include "dbtext.h"
#include "host/database/paragraphs.h"
#include "host/database/plaintext.h"
#include "host/database/textmeasure.h"

namespace tarn::host {
namespace {

class Texts : public testing::Test {
 protected:
  void SetUp() override { setTextMeasure(nullptr); }
};

TEST_F(Texts, signsAndRules) {
  EXPECT_EQ(plainLine(L"45%%d %%p2 %%c7 100%%% %%065 \\U+6D4B %x%%"),
            L"45\u00B0 \u00B12 \u23007 100% A \u6D4B %x%%");
  const std::vector<TextRun> runs = textRuns(L"a%%ub%%o%%Uc");
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_FALSE(runs[0].underlined);
  EXPECT_TRUE(runs[1].underlined && !runs[1].overlined);
  EXPECT_TRUE(!runs[2].underlined && runs[2].overlined);
  EXPECT_EQ(runs[2].text, L"c");
}

TEST_F(Texts, alignments) {
  AcDbTextLine line;
  line.position = {5, 5, 0};
  line.alignment = {105, 105, 0};
  line.height = 3;
  const struct {
    short horizontal, vertical;
    double x, y;
  } kCases[] = {{0, 0, 5, 5},     {1, 0, 100, 105},  {2, 0, 95, 105}, {4, 0, 100, 103.5},
                {0, 3, 105, 102}, {2, 2, 95, 103.5}, {1, 1, 100, 106}};
  for (const auto& each : kCases) {
    line.horizontal = each.horizontal;
    line.vertical = each.vertical;
    const AcDbTextLine placed = line.placed(10);
    EXPECT_NEAR(placed.position.x, each.x, 1e-9) << each.horizontal << ' ' << each.vertical;
    EXPECT_NEAR(placed.position.y, each.y, 1e-9) << each.horizontal << ' ' << each.vertical;
  }
  line.vertical = 0;
  line.horizontal = 5;
  const AcDbTextLine fit = line.placed(10);
  EXPECT_NEAR(fit.widthFactor, std::sqrt(2.0) * 10, 1e-9);
  EXPECT_NEAR(fit.rotation, std::atan(1.0), 1e-12);
  line.horizontal = 3;
  EXPECT_NEAR(line.placed(10).height, std::sqrt(2.0) * 30, 1e-9);
}

std::vector<std::wstring> wordsOf(const Paragraphs& paragraphs) {
  std::vector<std::wstring> words;
  for (const PlacedText& text : paragraphs.texts) words.push_back(text.text);
  return words;
}

TEST_F(Texts, formattingCodes) {
  ParagraphStyle style;
  style.height = 2;
  const Paragraphs all = layOut(
      L"{\\H1.5x;\\C1;big} "
      L"small\\P\\LX\\l{\\fArial|b1|i0;\\W0.5;Y}\\S3/4;\\~\\\\%%d\\U+6D4B\u91CF^Jend",
      style);
  const std::vector<std::wstring> expected = {
      L"big", L"small", L"X", L"Y", L"3", L"4", L"\u00A0\\\u00B0", L"\u6D4B", L"\u91CF", L"end"};
  EXPECT_EQ(wordsOf(all), expected);
  EXPECT_EQ(all.texts[0].height, 3);
  EXPECT_EQ(all.texts[0].color, 1u);
  EXPECT_EQ(all.texts[1].height, 2);
  EXPECT_FALSE(all.texts[1].color.has_value());
  EXPECT_TRUE(all.texts[2].underlined && !all.texts[3].underlined);
  EXPECT_EQ(all.texts[3].font, L"Arial|b1|i0");
  EXPECT_EQ(all.texts[3].widthFactor, 0.5);
  EXPECT_EQ(all.rules.size(), 1u);
  // The first line is 3 high, the second stands 5/3 of its own height below it.
  EXPECT_NEAR(all.texts[0].y, -3, 1e-9);
  EXPECT_NEAR(all.texts[2].y, -3 - 2 * 5.0 / 3, 1e-9);
}

TEST_F(Texts, linesAreWrappedAndAttached) {
  ParagraphStyle style;
  style.width = 5 * 0.9;
  for (short attachment = 1; attachment <= 9; ++attachment) {
    style.attachment = attachment;
    const Paragraphs all = layOut(L"ab cd ef", style);
    ASSERT_EQ(all.texts.size(), 3u);
    const int column = (attachment - 1) % 3;
    const int row = (attachment - 1) / 3;
    const double whole = 1 + 5.0 / 3;
    EXPECT_NEAR(all.texts[0].x, -column * 4.5 / 2, 1e-9) << attachment;
    EXPECT_NEAR(all.texts[2].x, -column * 1.8 / 2, 1e-9) << attachment;
    EXPECT_NEAR(all.texts[0].y, row * whole / 2 - 1, 1e-9) << attachment;
    EXPECT_NEAR(all.texts[2].y, row * whole / 2 - whole, 1e-9) << attachment;
  }
  // Ideographs may be parted; brackets that do not match and codes that do not end are no harm.
  style.attachment = 1;
  EXPECT_LT(layOut(L"\u6D4B\u91CF\u6D4B\u91CF", style).texts.back().y, -1.5);
  for (const wchar_t* broken :
       {L"", L"}}}{", L"\\", L"\\H", L"\\S1", L"\\fArial", L"\\C9e9;x", L"^"}) {
    EXPECT_LE(layOut(broken, style).texts.size(), 2u) << broken;
  }
}

TEST_F(Texts, numbersInCodesNeedNoSemicolon) {
  const Paragraphs all = layOut(L"{\\C1red}\\H2.5e1high\\W2xwide;", ParagraphStyle());
  EXPECT_EQ(wordsOf(all), (std::vector<std::wstring>{L"red", L"high", L"wide;"}));
  EXPECT_EQ(all.texts[0].color, 1u);
  EXPECT_EQ(all.texts[1].height, 25);
  EXPECT_EQ(all.texts[2].widthFactor, 2);
}

/// Three columns of 5 high: letters of 2.5 leave room for one line, the last one takes the rest.
TEST_F(Texts, columnsTakeWhatFits) {
  AcDbMTextColumns columns;
  columns.count = 3;
  columns.width = 10;
  columns.gap = 2;
  columns.height = 5;
  ParagraphStyle style;
  style.height = 2.5;
  style.columns = &columns;
  const auto places = [&](const wchar_t* contents) {
    std::vector<std::pair<double, double>> found;
    for (const PlacedText& text : layOut(contents, style).texts) {
      found.emplace_back(text.x, std::round(text.y * 100) / 100);
    }
    return found;
  };
  using Places = std::vector<std::pair<double, double>>;
  EXPECT_EQ(places(L"a\\Pb\\Pc\\Pd"), (Places{{0, -2.5}, {12, -2.5}, {24, -2.5}, {24, -6.67}}));
  columns.heights = {7, 0, 0};
  EXPECT_EQ(places(L"a\\Pb\\Pc\\Pd"), (Places{{0, -2.5}, {0, -6.67}, {12, -2.5}, {12, -6.67}}));
  EXPECT_EQ(places(L"a\\Nb"), (Places{{0, -2.5}, {12, -2.5}}));
}

}  // namespace
}  // namespace tarn::host
