// Commands that change entities, driven by their inputs.
#include <gtest/gtest.h>

#include "acedads.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/host_editor/drawnlines.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

using Lines = std::initializer_list<const char*>;

TEST(EditCommands, changeWhatWasSelected) {
  struct Case {
    Lines lines;
    const char* drawn;
    const char* printed;
  };
  // Two lines, the second drawn last.
  const char* const kBoth = "0,0>10,0 0,5>10,5";
  const Case cases[] = {
      {{"MOVE L", "", "0,0 3,1"}, "0,0>10,0 3,6>13,6", "1 moved."},
      {{"MOVE L", "", "3,1", ""}, "0,0>10,0 3,6>13,6", "first point as displacement"},
      {{"MOVE L", "", "D 3,1"}, "0,0>10,0 3,6>13,6", "Displacement"},
      {{"MOVE L", "", "", "3,1"}, "0,0>10,0 3,6>13,6", ""},
      {{"MOVE ALL", "", "0,0 @1<90"}, "0,1>10,1 0,6>10,6", "2 moved."},
      {{"COPY L", "", "0,0 0,1 0,2", ""}, "0,0>10,0 0,5>10,5 0,6>10,6 0,7>10,7", "1 copied."},
      {{"COPY L", "", "D 0,1"}, "0,0>10,0 0,5>10,5 0,6>10,6", ""},
      {{"COPY L", "", "0,0 0,1", "", "MOVE P", "", "0,0 1,0"},
       "0,0>10,0 1,5>11,5 0,6>10,6",
       "1 selected"},
      {{"ROTATE L", "", "0,5 90"}, "0,0>10,0 0,5>0,15", "1 rotated."},
      {{"ROTATE L", "", "0,5 R 45 135"}, "0,0>10,0 0,5>0,15", "Reference angle"},
      {{"ROTATE L", "", "0,5 0,9"}, "0,0>10,0 0,5>0,15", ""},
      {{"SCALE L", "", "0,5 2"}, "0,0>10,0 0,5>20,5", "1 scaled."},
      {{"SCALE L", "", "0,5 R 4 2"}, "0,0>10,0 0,5>5,5", "Reference length"},
      {{"SCALE L", "", "0,5 0 -1 x 3"}, "0,0>10,0 0,5>30,5", "must not be zero"},
      {{"MIRROR L", "", "5,0 6,1", ""}, "0,0>10,0 0,5>10,5 10,-5>10,5", "1 mirrored."},
      {{"MIRROR L", "", "0,0 1,0 Y"}, "0,0>10,0 0,-5>10,-5", "Erase the originals?"},
      {{"ERASE L", "", "ERASE L", "", "OOPS"}, "0,0>10,0", "1 brought back."},
      {{"ERASE ALL", "", "OOPS", "OOPS"}, kBoth, "0 brought back."},
      {{"ERASE ALL", "", "OOPS", "U", "U"}, kBoth, "ERASE"},
      {{"MOVE L", "", "END 9,5 0,0"}, "0,0>10,0 -10,0>0,0", "of 9,5"},
      {{"MOVE L", "", "mid 9,5 MID 1,0"}, "0,0>10,0 0,0>10,0", ""},
      {{"MOVE L", "", "END 500,500 END 1,0 1,0"}, "0,0>10,0 1,5>11,5", "No such point"},
      {{"MOVE L", "", "NEA 3,5.001 3,9"}, "0,0>10,0 0,9>10,9", ""},
      {{"LINE 5,-5 5,8", "", "MOVE 5,-2", "", "INT 5.1,0 0,0"},
       "0,0>10,0 0,5>10,5 0,-5>0,8",
       "1 found"},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    host.app().resizeView(400, 400);
    host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", "", "LINE 0,5 10,5", ""});
    const DrawingState before = stateOf(host.app());
    const std::string printed = host.run(c.lines);
    EXPECT_EQ(drawnLines(host.app()), c.drawn) << printed;
    EXPECT_NE(printed.find(c.printed), std::string::npos) << printed;
    EXPECT_TRUE(host.good()) << printed;
    host.run({"UNDO 100", "MREDO 2"});
    EXPECT_TRUE(stateOf(host.app()) == before) << printed;
  }
}

TEST(EditCommands, curvesAndTextsAreDrawnSnappedAndStretched) {
  struct Case {
    Lines lines;
    const char* printed;
  };
  const Case cases[] = {
      {{"CIRCLE 0,0 5", "ID CEN 5,0"}, "X = 0  Y = 0"},
      {{"CIRCLE 0,0 D 10", "ID QUA 5.1,0"}, "X = 5  Y = 0"},
      {{"CIRCLE 0,0 5", "ID NEA 3.6,3.6"}, "X = 3.53"},
      {{"CIRCLE 0,0 5", "ERASE CEN 5,0", "0,5", ""}, "1 erased."},
      {{"PLINE 0,0 10,0 A 10,10", "", "ID MID 5,0"}, "X = 5  Y = 0"},
      {{"PLINE 0,0 10,0 A 10,10", "", "ID MID 15,5"}, "X = 15  Y = 5"},
      {{"PLINE 0,0 10,0 U 0,10 10,10 C", "LIST L", ""}, "extents 0,0,0 to 10,10,0"},
      {{"PLINE 0,0 10,0 C", "", "LIST L", ""}, "Three points are needed"},
      {{"TEXT 3,4 2 0", "two words", "LIST L", ""}, "TEXT  layer \"0\""},
      {{"TEXT 3,4", "", "", "second", "MOVE L", "", "0,0 1,1", "U", "U", "LIST ALL", ""},
       "0 found"},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    host.app().resizeView(400, 400);
    host.run({"ZOOM C 5,5 40"});
    const std::string printed = host.run(c.lines);
    EXPECT_NE(printed.find(c.printed), std::string::npos) << printed;
  }
}

TEST(EditCommands, selectByPointsWindowsAndWords) {
  struct Case {
    Lines lines;
    const char* left;  ///< after ERASE
  };
  // The view is 40 high on 400 pixels: a tenth of a unit a pixel, PICKBOX is half a unit.
  const Case cases[] = {
      {{"ERASE 3,0.4", ""}, "0,5>10,5 20,0>20,10"},
      {{"ERASE 3,0.7 100,100", ""}, "0,0>10,0 0,5>10,5 20,0>20,10"},
      {{"ERASE -1,-1 11,6", ""}, "20,0>20,10"},
      {{"ERASE -1,-1 5,6", ""}, "0,0>10,0 0,5>10,5 20,0>20,10"},
      {{"ERASE 5,6 -1,-1", ""}, "20,0>20,10"},
      {{"ERASE C 5,6 19,4", ""}, "0,0>10,0 20,0>20,10"},
      {{"ERASE W 21,11 -1,4", ""}, "0,0>10,0 20,0>20,10"},
      {{"ERASE ALL R 3,0 20,3", ""}, "0,0>10,0 20,0>20,10"},
      {{"ERASE ALL R 3,0 A 3,0", ""}, ""},
      {{"ERASE 3,0 20,3 Undo", ""}, "0,5>10,5 20,0>20,10"},
      {{"ERASE foo 3,0", ""}, "0,5>10,5 20,0>20,10"},
      {{"ERASE 300,300", "", ""}, "0,0>10,0 0,5>10,5 20,0>20,10"},
      {{"ERASE 'ZOOM 2x", "3,0", ""}, "0,5>10,5 20,0>20,10"},
  };
  for (const double twist : {0.0, 37.0}) {
    for (const Case& c : cases) {
      ScriptedHost host;
      host.app().resizeView(400, 400);
      host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", "", "LINE 0,5 10,5", "", "LINE 20,0 20,10", ""});
      // A window is one on the screen; points mean the same in every view.
      const bool isWindow = std::string(*c.lines.begin()).find(' ', 6) != std::string::npos;
      if (twist != 0 && isWindow) continue;
      host.run({twist != 0 ? "TWIST 37" : "TWIST 0"});
      const std::string printed = host.run(c.lines);
      EXPECT_EQ(drawnLines(host.app()), c.left) << printed;
    }
  }
}

TEST(EditCommands, lockedAndHiddenLayersAreLeftAlone) {
  ScriptedHost host;
  host.run({"LINE 0,0 10,0", ""});
  AcDbLayerTableRecord* layer = nullptr;
  ASSERT_EQ(acdbOpenObject(layer, host.app().documents().current().database()->layerZero(),
                           AcDb::kForWrite),
            Acad::eOk);
  layer->setIsLocked(true);
  layer->close();
  EXPECT_NE(host.run({"MOVE L", "", "0,0 1,1"}).find("1 on a locked layer"), std::string::npos);
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0");
  ASSERT_EQ(acdbOpenObject(layer, host.app().documents().current().database()->layerZero(),
                           AcDb::kForWrite),
            Acad::eOk);
  layer->setIsLocked(false);
  layer->setIsOff(true);
  layer->close();
  EXPECT_NE(host.run({"ERASE 5,0 6,1", ""}).find("0 found"), std::string::npos);
}

std::string stretched(const char* grip, const char* to) {
  ScriptedHost host;
  host.app().resizeView(400, 400);
  host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", "", "LINE 10,0 10,8", ""});
  ads_name all = {0, 0};
  acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, all);
  acedSSSetFirst(nullptr, all);
  acedSSFree(all);
  host.run({(std::string("GRIP_STRETCH ") + grip + " " + to).c_str()});
  return drawnLines(host.app());
}

TEST(EditCommands, gripsOfCurvesStretchThem) {
  const struct {
    const char* draw;
    const char* stretch;
    const char* ask;
    const char* printed;
  } cases[] = {
      {"CIRCLE 0,0 5", "GRIP_STRETCH 5,0 8,0", "ID QUA 8.1,0", "X = 8  Y = 0"},
      {"CIRCLE 0,0 5", "GRIP_STRETCH 0,0 1,0", "ID QUA 6.1,0", "X = 6  Y = 0"},
      {"PLINE 0,0 10,0 10,10 ", "GRIP_STRETCH 10,0 12,-1", "ID END 12.1,-1", "X = 12  Y = -1"},
      {"LINE 0,0 10,0 ", "GRIP_STRETCH 5,0 5,2", "ID MID 5,2.1", "X = 5  Y = 2"},
  };
  for (const auto& c : cases) {
    ScriptedHost host;
    host.app().resizeView(400, 400);
    host.run({"ZOOM C 5,5 40", c.draw, ""});
    ads_name all = {0, 0};
    ASSERT_EQ(acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, all), RTNORM);
    acedSSSetFirst(nullptr, all);
    acedSSFree(all);
    EXPECT_NE(host.run({c.stretch}).find("1 stretched."), std::string::npos);
    const std::string printed = host.run({c.ask});
    EXPECT_NE(printed.find(c.printed), std::string::npos) << printed;
  }
}

TEST(EditCommands, gripsStretchEveryEntityThatHasOneThere) {
  EXPECT_EQ(stretched("10,0", "12,1"), "0,0>12,1 12,1>10,8");
  EXPECT_EQ(stretched("5,0", "5,1"), "0,1>10,1 10,0>10,8");
  EXPECT_EQ(stretched("10,0", "Base 0,0 1,0"), "0,0>11,0 11,0>10,8");
  EXPECT_EQ(stretched("10,0", "X"), "0,0>10,0 10,0>10,8");
  EXPECT_EQ(stretched("7,7", ""), "0,0>10,0 10,0>10,8");
}

TEST(EditCommands, takeWhatWasSelectedBefore) {
  ScriptedHost host;
  host.run({"LINE 0,0 10,0", "", "LINE 0,5 10,5", ""});
  ads_name last = {0, 0};
  const auto select = [&] {
    acedSSGet(ACRX_T("L"), nullptr, nullptr, nullptr, last);
    acedSSSetFirst(nullptr, last);
    acedSSFree(last);
  };
  select();
  host.run({"MOVE 0,0 0,1"});
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0 0,6>10,6");
  host.run({"ERASE", ""});
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0 0,6>10,6") << "the selection was used up";
  select();
  host.run({"ZOOM 2x", "REGEN", "ERASE", ""});
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0 0,6>10,6") << "REGEN has let it go";
  select();
  host.run({"ZOOM 2x", "ERASE"});
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0") << "ZOOM has kept it";
  select();
  host.run({"SETVAR PICKFIRST 0", "ERASE", ""});
  EXPECT_EQ(drawnLines(host.app()), "0,0>10,0");
}

}  // namespace
}  // namespace tarn::host
