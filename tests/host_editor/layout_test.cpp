#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "aced.h"
#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/layouts.h"
#include "host/editor/documents.h"
#include "host/editor/regenerator.h"
#include "rxmfcapi.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

std::string textOf(HostApp& app, const char* name) {
  return formatValue(*app.variables().get(name));
}

/// Notes, each time that it is drawn, what the view variables say before and inside the bracket.
class Probe : public AcDbLine {
 public:
  Probe() : AcDbLine(AcGePoint3d(40500000, 3500000, 0), AcGePoint3d(40500100, 3500080, 0)) {}

  struct Seen {
    short portBefore = 0;
    short port = 0;
    double width = 0;
    double height = 0;
    double centerX = 0;
    double size = 0;
    double twist = 0;
    ads_point corner = {0, 0, 0};
  };
  static std::vector<Seen>& seen() {
    static std::vector<Seen> all;
    return all;
  }

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override {
    HostApp& app = *HostApp::instance();
    Seen now;
    now.portBefore = app.variables().shortOf("CVPORT");
    const bool bracket = app.variables().shortOf("TILEMODE") == 0 && now.portBefore == 1;
    if (bracket) acedCommandS(RTSTR, ACRX_T("MSPACE"), RTNONE);
    now.port = app.variables().shortOf("CVPORT");
    const Point3 screen = std::get<Point3>(*app.variables().get("SCREENSIZE"));
    now.width = screen.x;
    now.height = screen.y;
    now.centerX = std::get<Point3>(*app.variables().get("VIEWCTR")).x;
    now.size = std::get<double>(*app.variables().get("VIEWSIZE"));
    now.twist = std::get<double>(*app.variables().get("VIEWTWIST"));
    acedCoordFromPixelToWorld(now.port, CPoint(0, 0), now.corner);
    if (bracket) acedCommandS(RTSTR, ACRX_T("PSPACE"), RTNONE);
    seen().push_back(now);
    return AcDbLine::subWorldDraw(draw);
  }
};

class Layouts : public testing::Test {
 protected:
  void SetUp() override {
    app().resizeView(800, 600);
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, document().space().modelBlock(), AcDb::kForWrite), Acad::eOk);
    auto* probe = new Probe;
    ASSERT_EQ(model->appendAcDbEntity(probe), Acad::eOk);
    model->close();
    probe->close();
  }
  HostApp& app() { return host_.app(); }
  HostDocument& document() { return app().documents().current(); }
  /// A sheet with two viewports: 2 at 1 unit a millimetre, 3 twisted by 30 degrees.
  void makeSheet() {
    host_.run({"LAYOUT Set", "Layout1", "ERASE L", "", "MVIEW 10,10 210,160",
               "MVIEW 220,20 400,270", "MSPACE", "SETVAR CVPORT 2", "ZOOM C 40500050,3500040 150",
               "SETVAR CVPORT 3", "ZOOM C 40500000,3500000 500", "TWIST 30", "PSPACE"});
    ASSERT_TRUE(host_.good());
    Probe::seen().clear();
  }
  ScriptedHost host_;
};

TEST_F(Layouts, AreMadeShownRenamedAndDeleted) {
  const struct {
    std::initializer_list<const char*> lines;
    bool good;
    const char* tab;
    size_t count;
  } steps[] = {
      {{"LAYOUT New", "Blatt A"}, true, "\"Model\"", 3},
      {{"LAYOUT New", "blatt a"}, false, "\"Model\"", 3},
      {{"LAYOUT New", "a/b"}, false, "\"Model\"", 3},
      {{"LAYOUT Set", "Blatt A"}, true, "\"Blatt A\"", 3},
      {{"LAYOUT Rename", "Blatt A", "Blatt B"}, true, "\"Blatt B\"", 3},
      {{"LAYOUT Delete", "Model"}, false, "\"Blatt B\"", 3},
      {{"LAYOUT Delete", ""}, true, "\"Layout1\"", 2},
      {{"LAYOUT Delete", "Layout1"}, false, "\"Layout1\"", 2},
      {{"LAYOUT Set", "none"}, false, "\"Layout1\"", 2},
      {{"SETVAR CTAB", "Model"}, true, "\"Model\"", 2},
      {{"SETVAR TILEMODE 0"}, true, "\"Layout1\"", 2},
      {{"SETVAR CTAB", "none"}, false, "\"Layout1\"", 2},
  };
  for (const auto& step : steps) {
    const std::string printed = host_.run(step.lines);
    EXPECT_EQ(host_.good(), step.good) << printed;
    EXPECT_EQ(textOf(app(), "CTAB"), step.tab) << printed;
    EXPECT_EQ(layoutsOf(*document().database()).size(), step.count) << printed;
  }
}

TEST_F(Layouts, DeletingIsUndone) {
  host_.run({"LAYOUT New", "Plan", "LAYOUT Set", "Plan", "LINE 0,0 100,100", "", "LAYOUT Delete",
             "Plan"});
  EXPECT_EQ(layoutsOf(*document().database()).size(), 2U);
  host_.run({"U"});
  EXPECT_EQ(layoutsOf(*document().database()).size(), 3U);
  host_.run({"LAYOUT Set", "Plan"});
  EXPECT_EQ(document().scene().size(), 3U) << "two viewports and the line";
}

TEST_F(Layouts, TheViewVariablesAreThoseOfTheViewportThatIsDrawn) {
  makeSheet();
  app().regenerate();
  ASSERT_EQ(Probe::seen().size(), 2U);
  const double perMillimetre = 600 / app().screenView().height;
  const struct {
    short port;
    double paperWidth, paperHeight, size, twist;
  } expected[] = {{2, 200, 150, 150, 0}, {3, 180, 250, 500, M_PI / 6}};
  for (size_t i = 0; i < 2; ++i) {
    const Probe::Seen& seen = Probe::seen()[i];
    EXPECT_EQ(seen.portBefore, 1);
    EXPECT_EQ(seen.port, expected[i].port);
    // Whole pixels that the viewport touches: at most one more than it is wide.
    EXPECT_NEAR(seen.width, expected[i].paperWidth * perMillimetre + 0.5, 1.5);
    EXPECT_NEAR(seen.size / seen.height,
                expected[i].size / (expected[i].paperHeight * perMillimetre), 1e-9);
    EXPECT_NEAR(seen.twist, expected[i].twist, 1e-12);
  }
  EXPECT_EQ(textOf(app(), "CVPORT"), "1");
  EXPECT_EQ(document().windowScenes().size(), 2U);
}

TEST_F(Layouts, WithAViewportCurrentEachIsCurrentInItsTurn) {
  makeSheet();
  host_.run({"MSPACE", "SETVAR CVPORT 3"});
  Probe::seen().clear();
  app().regenerate();
  ASSERT_EQ(Probe::seen().size(), 2U);
  EXPECT_EQ(Probe::seen()[0].portBefore, 2);
  EXPECT_EQ(Probe::seen()[1].portBefore, 3);
  EXPECT_EQ(textOf(app(), "CVPORT"), "3");
  EXPECT_EQ(textOf(app(), "VIEWSIZE"), "500");
  EXPECT_EQ(textOf(app(), "VIEWCTR"), "40500000,3500000,0");
}

TEST_F(Layouts, OnlyWhatTheScreenShowsOfAViewportIsDrawn) {
  makeSheet();
  host_.run({"ZOOM C 110,85 10"});
  Probe::seen().clear();
  app().regenerate();
  ASSERT_EQ(Probe::seen().size(), 1U) << "the other viewport is outside the screen";
  EXPECT_EQ(Probe::seen()[0].width, 800);
  EXPECT_EQ(Probe::seen()[0].height, 600);
  EXPECT_NEAR(Probe::seen()[0].centerX, 40500050, 1e-6);
}

TEST_F(Layouts, ZoomAndPanActOnWhatIsCurrent) {
  makeSheet();
  const double sheet = app().screenView().height;
  host_.run({"MSPACE", "SETVAR CVPORT 2", "ZOOM 2x", "PAN 0,0 10,0"});
  EXPECT_EQ(textOf(app(), "VIEWSIZE"), "75");
  EXPECT_EQ(textOf(app(), "VIEWCTR"), "40500040,3500040,0");
  host_.run({"ZOOM Previous"});
  EXPECT_EQ(textOf(app(), "VIEWCTR"), "40500050,3500040,0");
  EXPECT_EQ(app().screenView().height, sheet);
  // By hand: the ground under the mouse stays, the sheet stays.
  const PixelPoint mouse{300, 350};
  const GroundPoint before = app().groundAt(mouse);
  app().zoomAt(mouse, 3);
  EXPECT_NEAR(app().groundAt(mouse).x, before.x, 1e-6);
  EXPECT_NEAR(app().groundAt(mouse).y, before.y, 1e-6);
  EXPECT_NEAR(app().view().height, 25, 1e-9);
  app().panBy(12, -5);
  EXPECT_NEAR(app().groundAt({312, 345}).x, before.x, 1e-6);
  EXPECT_EQ(app().screenView().height, sheet);
  host_.run({"PSPACE", "ZOOM 2x"});
  EXPECT_NEAR(app().screenView().height, sheet / 2, 1e-9);
}

TEST_F(Layouts, EntitiesGoToTheCurrentSpaceAndADoubleClickChangesIt) {
  makeSheet();
  const ViewState screen = app().screenView();
  app().workAt(pixelFromGround(screen, {300, 100}));
  EXPECT_EQ(textOf(app(), "CVPORT"), "3");
  host_.run({"LINE 40500000,3500000 40500010,3500010", ""});
  EXPECT_EQ(document().scene().size(), 3U);
  EXPECT_EQ(document().windowScenes().begin()->second.size(), 2U);
  app().workAt(pixelFromGround(screen, {-50, -50}));
  EXPECT_EQ(textOf(app(), "CVPORT"), "1");
  host_.run({"LINE 0,0 10,10", ""});
  EXPECT_EQ(document().scene().size(), 4U);
  EXPECT_EQ(document().windowScenes().begin()->second.size(), 2U);
}

TEST_F(Layouts, ANewViewportIsFilledByTheModelWhateverItsShape) {
  // The model is 100 wide and 80 high; a twist is the viewport's own matter.
  const struct {
    const char* corners;
    const char* size;
  } cases[] = {
      {"MVIEW 10,10 210,110", "80"}, {"MVIEW 10,10 60,110", "200"}, {"MVIEW 10,10 60,50", "80"}};
  for (const char* window : {"800x600", "300x900"}) {
    int width = 0;
    int height = 0;
    ASSERT_EQ(std::sscanf(window, "%dx%d", &width, &height), 2);
    app().resizeView(width, height);
    for (const auto& each : cases) {
      host_.run({"LAYOUT Set", "Layout1", "ERASE ALL", "", each.corners, "MSPACE"});
      EXPECT_TRUE(host_.good());
      EXPECT_NEAR(app().view().height, std::stod(each.size), 1e-2) << each.corners << window;
      EXPECT_NEAR(app().view().centerX, 40500050, 1e-6);
      host_.run({"PSPACE"});
    }
  }
}

TEST_F(Layouts, AViewportFitsTheSheetAndIsSwitchedOffAndOn) {
  host_.run({"LAYOUT Set", "Layout1", "ERASE ALL", "", "MVIEW Fit"});
  const auto windows = document().space().windows();
  ASSERT_EQ(windows.size(), 1U);
  const GroundBox limits = document().space().limits();
  EXPECT_NEAR(windows[0].place.paperWidth, limits.maxX - limits.minX, 1e-9);
  host_.run({"MVIEW OFF", "ALL", ""});
  EXPECT_TRUE(document().space().windows().empty());
  host_.run({"MSPACE"});
  EXPECT_FALSE(host_.good());
  host_.run({"MVIEW ON", "ALL", "", "MSPACE"});
  EXPECT_TRUE(host_.good());
  EXPECT_EQ(document().space().windows().size(), 1U);
}

TEST_F(Layouts, TheSheetItselfIsNotTwisted) {
  makeSheet();
  for (const char* line : {"DVIEW TW", "TWIST"}) {
    const std::string printed = host_.run({line});
    EXPECT_FALSE(host_.good());
    EXPECT_NE(printed.find("A sheet cannot be twisted; enter a viewport first (MSPACE)."),
              std::string::npos)
        << printed;
    EXPECT_EQ(app().screenView().twist, 0);
  }
  host_.run({"MSPACE", "DVIEW TW 15"});
  EXPECT_NEAR(app().view().twist, M_PI / 12, 1e-12);
}

TEST_F(Layouts, ASheetWithoutAViewportThatIsOnHasNoModel) {
  host_.run({"LAYOUT Set", "Layout1", "ERASE L", ""});
  for (const char* line : {"MSPACE", "SETVAR CVPORT 2", "MVIEW 10,10 10,50"}) {
    host_.run({line});
    EXPECT_FALSE(host_.good()) << line;
  }
  host_.run({"SETVAR TILEMODE 1", "MVIEW 0,0 10,10"});
  EXPECT_FALSE(host_.good());
}

}  // namespace
}  // namespace tarn::host
