#include <gtest/gtest.h>

#include <cmath>

#include "aced.h"
#include "dbsymtb.h"
#include "rxmfcapi.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

struct Expected {
  double x, y, height;
};

TEST(ViewCommands, showWhatTheySay) {
  struct Case {
    const char* line;
    Expected view;
  };
  const Case cases[] = {
      {"ZOOM W 0,0 400,100", {200, 50, 200}},
      {"ZOOM 0,0 100,100", {50, 50, 100}},
      {"ZOOM C 40500000.5,3500000.25 80", {40500000.5, 3500000.25, 80}},
      {"ZOOM 2x", {40500000.5, 3500000.25, 40}},
      {"ZOOM 60", {40500000.5, 3500000.25, 60}},
      {"PAN 0,0 10,-5", {40499990.5, 3500005.25, 60}},
      {"ZOOM Previous", {40500000.5, 3500000.25, 60}},
      {"ZOOM E", {150, 50, 102}},
  };
  ScriptedHost host;
  host.app().resizeView(400, 200);
  host.run({"LINE 50,0 250,100", ""});
  for (const Case& c : cases) {
    host.run({c.line});
    EXPECT_TRUE(host.good()) << c.line;
    const ViewState view = host.app().view();
    EXPECT_NEAR(view.centerX, c.view.x, 1e-9) << c.line;
    EXPECT_NEAR(view.centerY, c.view.y, 1e-9) << c.line;
    EXPECT_NEAR(view.height, c.view.height, 1e-9) << c.line;
  }
  host.run({"ZOOM bogus"});
  EXPECT_FALSE(host.good());
}

TEST(View, resizingKeepsScaleAndCentre) {
  ScriptedHost host;
  host.app().resizeView(400, 200);
  host.run({"ZOOM C 10,20 100"});
  host.app().resizeView(800, 600);
  EXPECT_DOUBLE_EQ(host.app().view().height, 300);
  EXPECT_DOUBLE_EQ(host.app().view().centerX, 10);
}

TEST(View, pixelsAreTheEdgesOfTheView) {
  ScriptedHost host;
  host.app().resizeView(1001, 501);
  host.run({"ZOOM C 40500000,3500000 250.5", "TWIST 30"});
  for (const CPoint corner : {CPoint(0, 501), CPoint(1001, 0), CPoint(500, 250), CPoint(0, 0)}) {
    ads_point world = {0, 0, 0};
    CPoint back;
    ASSERT_TRUE(acedCoordFromPixelToWorld(2, corner, world));
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, world, back));
    EXPECT_EQ(back.x, corner.x);
    EXPECT_EQ(back.y, corner.y);
  }
  // The diagonal and the centre do not depend on the twist.
  ads_point a = {0, 0, 0};
  ads_point b = {0, 0, 0};
  acedCoordFromPixelToWorld(CPoint(0, 501), a);
  acedCoordFromPixelToWorld(CPoint(1001, 0), b);
  EXPECT_NEAR(std::hypot(b[0] - a[0], b[1] - a[1]), std::hypot(500.5, 250.5), 1e-6);
  EXPECT_NEAR((a[0] + b[0]) / 2, 40500000, 1e-6);
}

TEST(View, aRecordBecomesTheCurrentView) {
  ScriptedHost host;
  host.app().resizeView(400, 200);
  AcDbViewTableRecord record;
  record.setCenterPoint(AcGePoint2d(40500000, 3500000));
  record.setHeight(10);
  record.setWidth(400);
  record.setViewTwist(0.25);
  EXPECT_EQ(acedSetCurrentView(&record, nullptr), Acad::eOk);
  EXPECT_DOUBLE_EQ(host.app().view().height, 200) << "the whole width must be seen";
  EXPECT_DOUBLE_EQ(host.app().view().twist, 0.25);
  record.setHeight(0);
  EXPECT_EQ(acedSetCurrentView(&record, nullptr), Acad::eInvalidInput);
  EXPECT_EQ(acedSetCurrentView(nullptr, nullptr), Acad::eInvalidInput);
}

TEST(Space, switchesOnlyInALayout) {
  ScriptedHost host;
  SystemVariables& variables = host.app().variables();
  host.run({"MSPACE"});
  EXPECT_FALSE(host.good());
  host.run({"SETVAR TILEMODE 0"});
  EXPECT_EQ(variables.shortOf("CVPORT"), 1);
  host.run({"MSPACE"});
  EXPECT_EQ(variables.shortOf("CVPORT"), 2);
  host.run({"PSPACE"});
  EXPECT_EQ(variables.shortOf("CVPORT"), 1);
  host.run({"SETVAR TILEMODE 1"});
  EXPECT_EQ(variables.shortOf("CVPORT"), 2);
}

}  // namespace
}  // namespace tarn::host
