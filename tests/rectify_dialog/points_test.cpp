// Rows and texts of control points: numbers, lines of point files, the record file, undo.
#include <gmock/gmock.h>

#include <QTextStream>

#include <cmath>
#include <limits>

#include "_image/rectify/controlpoints.h"
#include "_image/rectify/pointtable.h"

namespace tarn::image {
namespace {

using ::testing::ElementsAre;

constexpr ControlPoint kPoint{1.5, -2, 40500123.456, 3500000.25};

ImportedPoints imported(const QString& text) {
  QString copy = text;
  QTextStream stream(&copy);
  return readControlPoints(stream);
}

TEST(Coordinates, KeepEveryDigitAndNeverShowAnExponent) {
  for (const double value : {40500123.456, 5572094.155411, 1e-7, 1e15, -0.1, 1.0 / 3, 0.0}) {
    const QString text = coordinateText(value);
    EXPECT_EQ(coordinateOf(text), value) << text.toStdString();
    EXPECT_FALSE(text.contains('e', Qt::CaseInsensitive)) << text.toStdString();
  }
  EXPECT_EQ(coordinateText(40500123.456), "40500123.456");
  EXPECT_EQ(pickedText(40500123.4567891), "40500123.456789");
  for (const char* text : {"", " ", "x", "1,5", "nan", "inf", "-inf", "1e999", "1 2"}) {
    EXPECT_FALSE(coordinateOf(text)) << text;
  }
  EXPECT_EQ(coordinateOf(" -2.5 "), -2.5);
}

TEST(Pairs, AreTheSameWhenAllFourCoordinatesAlmostAre) {
  const double nearly = 0.0000099, apart = 0.0000101;
  EXPECT_TRUE(isSamePair({0, 0, 0, 0}, {nearly, -nearly, nearly, nearly}));
  EXPECT_FALSE(isSamePair({0, 0, 0, 0}, {apart, 0, 0, 0}));
  EXPECT_FALSE(isSamePair({0, 0, 0, 0}, {0, -apart, 0, 0}));
  EXPECT_FALSE(isSamePair({0, 0, 0, 0}, {0, 0, apart, 0}));
  EXPECT_FALSE(isSamePair({0, 0, 0, 0}, {0, 0, 0, apart}));
  EXPECT_TRUE(holdsPair({{{1, 2, 3, 4}, false}, {kPoint, true}}, kPoint));
  EXPECT_FALSE(holdsPair({{{1.5, -2, 0, 0}, false}}, kPoint));
}

TEST(PointLines, AreSplitAtBlanksElseAtCommas) {
  for (const char* line :
       {"1.5 -2 40500123.456 3500000.25", "1.5,-2,40500123.456,3500000.25",
        "  1.5   -2 40500123.456     3500000.25 ", "1.5\t-2\t40500123.456 3500000.25",
        "1.5,,-2,40500123.456,3500000.25,"}) {
    const auto point = pointOfLine(line);
    ASSERT_TRUE(point) << line;
    EXPECT_EQ(*point, kPoint) << line;
  }
  // The blanks win, and "1.5," is no number.
  EXPECT_FALSE(pointOfLine("1.5, -2, 40500123.456, 3500000.25"));
  for (const char* line : {"", "1 2 3", "1 2 3 4 5", "1,2,3", "1 2 3 x", "1 2 3 nan", "1,2,inf,4",
                           "1;2;3;4", "1,5 2,5 3,5 4,5", "# 1 2 3"}) {
    EXPECT_FALSE(pointOfLine(line)) << line;
  }
}

TEST(PointFiles, GiveAtMostTwentyOnePoints) {
  QString text = "header\n\n1 2 3\n";
  for (int i = 0; i < 30; ++i) text += QString("%1 2 3 4\r\n").arg(i);
  const ImportedPoints all = imported(text);
  EXPECT_EQ(all.points.size(), 21U);
  EXPECT_EQ(all.points.back().sourceEast, 20);
  EXPECT_EQ(all.skippedLines, 2);
  EXPECT_TRUE(all.hasMore);
  const ImportedPoints one = imported(QString(20000, 'x') + " 1 2 3 4\n5 6 7 8");
  ASSERT_EQ(one.points.size(), 1U);
  EXPECT_EQ(one.points[0], (ControlPoint{5, 6, 7, 8}));
  EXPECT_EQ(one.skippedLines, 1);
  EXPECT_FALSE(one.hasMore);
  EXPECT_TRUE(imported("").points.empty());
}

TEST(PointFiles, MayBeWrittenInOtherEncodings) {
  const QString text = "1 2 3 4\n5 6 7 8\n";
  for (const char* codec : {"UTF-8", "UTF-16", "UTF-16BE"}) {
    QByteArray bytes;
    QTextStream writer(&bytes, QIODevice::WriteOnly);
    writer.setCodec(codec);
    writer.setGenerateByteOrderMark(true);
    writer << text;
    writer.flush();
    QTextStream reader(bytes);
    EXPECT_EQ(readControlPoints(reader).points.size(), 2U) << codec;
  }
  QTextStream binary(QByteArray("\x00\xff\xfe 1 2 3 4\n1 2 3 4\n", 21));
  EXPECT_LE(readControlPoints(binary).points.size(), 2U);
}

TEST(RecordFile, HasOldAndNewPointsByTheirNumbers) {
  const PointRecord record{3, {kPoint, {0, 0, -1, 1e9}}};
  const std::string text = recordFileText(record);
  EXPECT_EQ(text,
            "3\n0,o,1.500000,-2.000000\n1,o,0.000000,0.000000\n"
            "0,n,40500123.456000,3500000.250000\n1,n,-1.000000,1000000000.000000\n");
  const auto read = recordOfFileText(text);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->method, 3);
  EXPECT_THAT(read->points, ElementsAre(kPoint, ControlPoint{0, 0, -1, 1e9}));
  for (const char* bad : {"", "x\n", "7\n", "-1\n", "3\n0,o,1,2\n", "3\n0,o,1,2\n0,n,1\n",
                          "3\n0,q,1,2\n0,n,1,2\n", "3\n0,o,nan,2\n0,n,1,2\n"}) {
    EXPECT_FALSE(recordOfFileText(bad)) << bad;
  }
  EXPECT_EQ(recordFilePath(L"/a.b/scan.old.tif"), L"/a.b/scan.old.FTWx");
  EXPECT_EQ(recordFilePath(L"D:\\maps\\scan.TIFF"), L"D:\\maps\\scan.FTWx");
  EXPECT_EQ(recordFilePath(L"/a.b/scan"), L"/a.b/scan.FTWx");
}

TEST(TableHistory, TakesChangesBackAndBringsThemAgain) {
  const TableRows empty, one{{kPoint, false}}, two{{kPoint, true}};
  TableHistory history;
  EXPECT_FALSE(history.undo(empty));
  history.keep(empty);
  history.keep(one);
  EXPECT_EQ(history.undo(two), one);
  EXPECT_EQ(history.undo(one), empty);
  EXPECT_FALSE(history.canUndo());
  EXPECT_EQ(history.redo(empty), one);
  EXPECT_EQ(history.redo(one), two);
  EXPECT_FALSE(history.redo(two));
  history.undo(two);
  history.keep(one);
  EXPECT_FALSE(history.canRedo());
  EXPECT_EQ(fittedRows({{kPoint, false}, {kPoint, true}, {kPoint, false}}),
            (std::vector<size_t>{0, 2}));
}

}  // namespace
}  // namespace tarn::image
