// Files of control points, and the program that fits them without a window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "components/rectify/pointfile.h"
#include "tests/raster/testimages.h"
#include "tests/support/program.h"

namespace tarn::rectify {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(PointFile, FormsThatAreTaken) {
  const std::string qgis =
      "#CRS: EPSG:4547\n"
      "mapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n"
      "40500123.456,5572094.155411,10.5,-20.25,1,0,0,0\n"
      "40500200.5,5572000.125,30,-40,0,1,1,1\n";
  std::string wide = "\xFF\xFE";
  for (const char c : qgis) wide += std::string{c, '\0'};
  struct Row {
    const char* name;
    std::string text;
  };
  const Row table[] = {
      {"qgis", qgis},
      {"older", "mapX,mapY,pixelX,pixelY,enable\r\n40500123.456,5572094.155411,10.5,-20.25,1\r\n"},
      {"marked", "\xEF\xBB\xBF" + qgis},
      {"two bytes", wide},
      {"blanks", "  10.5   -20.25 40500123.456  5572094.155411 \n"},
      {"commas", "10.5,-20.25,40500123.456,5572094.155411"},
      {"commas and blanks", "10.5, -20.25, 40500123.456, 5572094.155411"},
      {"decimal commas", "10,5 -20,25 40500123,456 5572094,155411"},
      {"semicolons", "10,5;-20,25;40500123,456;5572094,155411"},
      {"tabs and old line ends", "\t10.5\t-20.25\t40500123.456\t5572094.155411\r"},
      {"notes in another encoding",
       "# \xB5\xE3\xBA\xC5\n10.5 -20.25 40500123.456 5572094.155411\n"}};
  for (const Row& row : table) {
    auto file = parsePoints(row.text);
    ASSERT_TRUE(file) << row.name << ": " << file.message();
    const PointPair& p = file.value().pairs[0];
    EXPECT_EQ(p.source.x, 10.5) << row.name;
    EXPECT_EQ(p.source.y, -20.25) << row.name;
    EXPECT_EQ(p.target.x, 40500123.456) << row.name;
    EXPECT_EQ(p.target.y, 5572094.155411) << row.name;
    EXPECT_TRUE(file.value().notes.empty()) << row.name;
  }
  // There and back without a change.
  const PointFile file = parsePoints(qgis).take();
  EXPECT_EQ(file.crs, "EPSG:4547");
  const PointFile again = parsePoints(pointsOfQgis(file, {})).take();
  EXPECT_EQ(pointsOfQgis(again, {}), pointsOfQgis(file, {}));
  EXPECT_EQ(again.enabled, (std::vector<bool>{true, false}));
  EXPECT_EQ(pointsOfText(file), "10.5 -20.25 40500123.456 5572094.155411\n");
}

TEST(PointFile, WhatIsLeftOutIsSaid) {
  auto file = parsePoints("1 2 3 4\nx y z w\n1 2 nan 4\n1 2 3\n5 6 7 inf\n5 6 7 8\n");
  ASSERT_TRUE(file);
  EXPECT_EQ(file.value().pairs.size(), 2U);
  ASSERT_EQ(file.value().notes.size(), 4U);
  EXPECT_THAT(file.value().notes[1], HasSubstr("line 3"));
  for (const std::string& text : {std::string(), std::string("\n\n# only a note\n"),
                                  std::string("a,b,c,d\n"), std::string("1 2 3 4\0", 8)})
    EXPECT_FALSE(parsePoints(text));
  std::string many;
  while (many.size() < 10 << 20) many += "not a point but a long line of text\n";
  const auto none = parsePoints(many);
  ASSERT_FALSE(none);
  EXPECT_LT(none.message().size(), 200U);
}

class Tarnpoints : public ::testing::Test {
 protected:
  test::Outcome run(const std::vector<std::string>& arguments) {
    return test::runProgram("tarnpoints", arguments);
  }
  std::string write(const std::string& name, const std::string& text) {
    raster::writeText(scratch_ / name, text);
    return scratch_ / name;
  }
  raster::Scratch scratch_;
};

TEST_F(Tarnpoints, FitsAndPrintsOneObject) {
  const std::string path = write("点.txt",
                                 "288 1126 321210 130280\n2352 716 322698 129979\n"
                                 "2067 2398 322501 192061\n1102 2209 321803 192198\n");
  const test::Outcome linear = run({"--fit", "linear", path, "--at", "288,1000", "--at", "0,0"});
  EXPECT_EQ(linear.exitCode, 0) << linear.output;
  EXPECT_THAT(linear.output, HasSubstr("\"status\": 0"));
  EXPECT_THAT(linear.output, HasSubstr("{\"from\": [288, 1000], \"to\": [321212.32684"));
  EXPECT_THAT(linear.output, HasSubstr("\"rmse\": 6900.8648"));
  EXPECT_EQ(std::count(linear.output.begin(), linear.output.end(), '\n'), 1);
  const test::Outcome few = run({"--fit", "cubic", path, "--at", "1,1"});
  EXPECT_EQ(few.exitCode, 1);
  EXPECT_THAT(few.output, HasSubstr("\"status\": 1"));
  EXPECT_THAT(few.output, HasSubstr("needs 10 points, there are 4"));
  EXPECT_THAT(few.output, HasSubstr("\"to\": null"));
  EXPECT_THAT(few.output, Not(HasSubstr("nan")));
}

TEST_F(Tarnpoints, BadFilesAndPointsAreTold) {
  const auto same = write("same.txt", "5 5 1 1\n5 5 2 2\n5 5 3 3\n5 5 4 4\n");
  const auto line = write("line.txt", "0 0 1 1\n1 1 2 3\n2 2 3 9\n");
  const auto away =
      write("away.txt", "0 0 1e12 1e12\n1000 0 1000000001000 1e12\n0 1000 1e12 1000000001000\n");
  const auto none = write("none.txt", "hello\n");
  struct Row {
    std::vector<std::string> arguments;
    int exitCode;
    const char* text;
  };
  const Row table[] = {
      {{"--fit", "helmert", same}, 1, "same source"},
      {{"--fit", "affine", line}, 1, "one line"},
      {{"--fit", "affine", away}, 0, "\"status\": 0"},
      {{"--fit", "affine", none}, 1, "none.txt: holds no control point"},
      {{"--fit", "affine", scratch_ / "missing"}, 1, "missing"},
      {{"--fit", "affine", scratch_.folder()}, 1, "tarnpoints: "},
      {{"--fit", "spline", line}, 2, "not \"spline\""},
      {{"--fit", "affine", line, "--at", "1;2"}, 2, "needs X,Y"},
      {{"--fit", "affine"}, 2, "one file"},
      {{"--fit", "affine", line, "--report", "x.doc"}, 2, "ends in .pdf"},
      {{"--fit", "affine", line, "--report", scratch_ / "nowhere/x.pdf"}, 1, "nowhere"},
      {{"--fit", "affine", line, "--language", "xx"}, 2, "en or zh"},
      {{line, line, "--report", "x.pdf"}, 2, "needs --fit"},
      {{"--what"}, 2, "unknown option"},
      {{}, 2, "usage"},
      {{"--help"}, 0, "usage"},
      {{line, scratch_ / "x.csv"}, 1, ".points or .txt only"},
      {{line, scratch_ / "nowhere/x.points"}, 1, "nowhere"}};
  for (const Row& row : table) {
    const test::Outcome outcome = run(row.arguments);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << row.text << ": " << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(row.text));
  }
  const std::string there = scratch_ / "there.points", back = scratch_ / "back.txt";
  EXPECT_EQ(run({line, there}).exitCode, 0);
  EXPECT_EQ(run({there, back}).exitCode, 0);
  EXPECT_EQ(run({"--fit", "linear", back}).exitCode, run({"--fit", "linear", line}).exitCode);
}

/// Two hundred points about a survey's places, one of which takes no part, one without its prefix.
std::string manyPoints() {
  std::string text = "mapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n";
  for (int i = 0; i < 200; ++i) {
    const double x = 40500000 + 31.0 * (i % 20), y = 3500000 + 47.0 * (i / 20.0);
    const double prefix = i == 150 ? 40e6 : 0;
    text += formatDouble(x + 10 + 0.01 * (i % 3) - prefix) + "," + formatDouble(y - 5) + "," +
            formatDouble(x) + "," + formatDouble(y) + (i == 7 ? ",0" : ",1") + ",0,0,0\n";
  }
  return text;
}

TEST_F(Tarnpoints, ReportsOnPagesWithRepeatedHeads) {
  const std::string points = write("测区.points", manyPoints());
  const std::string pdf = scratch_ / "report.pdf";
  const std::vector<std::string> command = {"--fit", "helmert", points, "--report", pdf};
  const test::Outcome outcome = run(command);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr("\"point\": 150, \"of\": \"target\""));
  EXPECT_THAT(outcome.output, HasSubstr("lack the zone prefix 40"));
  if (test::runProgram("/usr/bin/pdftotext", {"-v"}).exitCode == test::kNoSuchProgram)
    GTEST_SKIP() << "no pdftotext to read the report by";
  const auto pagesOf = [&] {
    const test::Outcome text = test::runProgram("/usr/bin/pdftotext", {"-layout", pdf, "-"});
    EXPECT_EQ(text.exitCode, 0) << text.output;
    return split(text.output, '\f');
  };
  std::vector<std::string> pages = pagesOf();
  ASSERT_GE(pages.size(), 6U);
  const std::string last = "of " + std::to_string(pages.size() - 1);
  EXPECT_THAT(pages[0], testing::AllOf(HasSubstr("测区.points"), HasSubstr("199"),
                                       HasSubstr("Page 1 " + last)));
  for (size_t page = 1; page + 2 < pages.size(); ++page)
    EXPECT_THAT(pages[page], testing::AllOf(HasSubstr("Target E"), HasSubstr(last))) << page;
  // The same points make the same pages but for their date.
  EXPECT_EQ(run(command).exitCode, 0);
  std::vector<std::string> again = pagesOf();
  pages.erase(pages.begin());
  again.erase(again.begin());
  EXPECT_EQ(pages, again);
}

}  // namespace
}  // namespace tarn::rectify
