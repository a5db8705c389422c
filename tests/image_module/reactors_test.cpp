#include "_image/reactors.h"

#include <algorithm>

#include "_image/inputwatch.h"
#include "accmd.h"
#include "aced.h"
#include "acplplotreactormgr.h"
#include "host/editor/documents.h"
#include "host/editor/regenerator.h"
#include "host/editor/sysvars.h"
#include "inc/iconfigmanager.h"
#include "inc/imessagerouter.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::image::g_refresh;
using tarn::image::g_suppressPixels;
using tarn::test::script;

class Reactors : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    script().width = 2000;
    script().height = 1000;
    ASSERT_TRUE(add(L"/data/a.tif"));
    host_->app->zoomExtents();
    script().calls.clear();
  }
  /// Redraws since the last call: each reads the one image once.
  int redraws() {
    int count = 0;
    for (const std::string& call : script().calls) count += call.rfind("readRegion", 0) == 0;
    script().calls.clear();
    return count;
  }
  static void message(UINT id) {
    MSG msg;
    msg.message = id;
    tarn::image::watchMessage(&msg);
  }
};

TEST_F(Reactors, WatchedNamesAreThoseOfTheConfigurationAndTheFixedOnes) {
  delete g_watchedCommands;
  g_watchedCommands = nullptr;
  tarn::image::fillWatchedCommands();
  EXPECT_EQ(*g_watchedCommands,
            (std::set<std::wstring>{L"", L"copy", L"pasteclip", L"move", L"rotate", L"circle",
                                    L"scale", L"grip_stretch"}));
  kel::Object<IConfigManager>("N", "test", 1)->setValue("临时禁用影像刷新", "Orbit,,拉伸, a");
  tarn::image::fillWatchedCommands();
  for (const wchar_t* name : {L"Orbit", L"拉伸", L" a", L"", L"move"}) {
    EXPECT_EQ(g_watchedCommands->count(name), 1U);
  }
  EXPECT_TRUE(tarn::image::isWatchedCommand(L"MOVE"));
  EXPECT_TRUE(tarn::image::isWatchedCommand(L"orbit"));
  EXPECT_FALSE(tarn::image::isWatchedCommand(L"line"));
  EXPECT_FALSE(tarn::image::isWatchedCommand(L"mov"));
}

TEST_F(Reactors, CommandsSetAndClearTheFlags) {
  const struct {
    const wchar_t* command;
    bool suspend, plotting, viewCube, suppress;
    int redrawsAtEnd;
  } cases[] = {
      {L"MOVE", true, false, false, true, 1},
      {L"copy", true, false, false, true, 1},
      {L"LINE", false, false, false, false, 0},
      {L"Plot", false, true, false, false, 0},
      {L"viewcubeaction", false, false, true, false, 1},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(tarn::toUtf8(one.command));
    g_editorReactor->commandWillStart(one.command);
    EXPECT_EQ(g_refresh.suspendRefresh, one.suspend);
    EXPECT_EQ(g_refresh.plotting, one.plotting);
    EXPECT_EQ(g_refresh.viewCube, one.viewCube);
    EXPECT_EQ(g_suppressPixels, one.suppress);
    EXPECT_EQ(redraws(), 0);
    g_editorReactor->commandEnded(one.command);
    EXPECT_EQ(redraws(), one.redrawsAtEnd);
    EXPECT_FALSE(g_refresh.suspendRefresh || g_refresh.plotting || g_refresh.viewCube);
    EXPECT_FALSE(g_suppressPixels);
  }
  // A plot that another command interrupts is over.
  g_editorReactor->commandWillStart(L"PLOT");
  g_editorReactor->commandWillStart(L"LINE");
  EXPECT_FALSE(g_refresh.plotting);
  g_editorReactor->commandEnded(L"LINE");
}

TEST_F(Reactors, AWatchedCommandOwesItsRedrawHoweverItEnds) {
  for (const auto end : {&tarnEditorReactor::commandCancelled, &tarnEditorReactor::commandFailed}) {
    g_editorReactor->commandWillStart(L"MOVE");
    (g_editorReactor->*end)(L"MOVE");
    EXPECT_EQ(redraws(), 1);
    EXPECT_FALSE(g_suppressPixels);
  }
  // Also when a transparent command inside it has cleared the flag.
  g_editorReactor->commandWillStart(L"MOVE");
  g_editorReactor->commandWillStart(L"ZOOM");
  g_editorReactor->commandEnded(L"ZOOM");
  EXPECT_TRUE(g_suppressPixels);
  g_editorReactor->commandEnded(L"MOVE");
  EXPECT_EQ(redraws(), 1);
}

int imagesSeen = 0;
int readsSeen = 0;
int readsNoted() {
  return static_cast<int>(
      std::count_if(script().calls.begin(), script().calls.end(),
                    [](const std::string& call) { return call.rfind("readRegion", 0) == 0; }));
}
/// A transparent command that looks at the picture while another one waits.
void lookCommand() {
  tarn::host::Scene& scene = tarn::host::HostApp::instance()->documents().current().scene();
  imagesSeen = 0;
  for (const auto key : scene.order()) {
    for (const auto& item : *scene.find(key)) {
      if (std::holds_alternative<tarn::host::ImageItem>(item)) ++imagesSeen;
    }
  }
  readsSeen = readsNoted();
}

TEST_F(Reactors, PicturesStandStillDuringAWatchedCommandAndAreDrawnOnceAtItsEnd) {
  host_->run("LINE 0,0 9,9 ");
  acedRegCmds->addCommand(L"TEST", L"LOOK", L"LOOK", ACRX_CMD_TRANSPARENT, lookCommand);
  const struct {
    const char* line;
    int during, after;  ///< redraws
  } cases[] = {
      {"MOVE 'ZOOM 2x 'PAN 0,0 5,5 'ZOOM E 'LOOK L", 0, 1},
      {"COPY 'TWIST 20 'LOOK L", 0, 1},
      {"ERASE 'ZOOM 0.8x 'LOOK 500000,500000 500001,500001", 1, 1},
  };
  for (const auto& one : cases) {
    host_->run("REGEN");
    script().calls.clear();
    imagesSeen = 0;
    host_->frontEnd.answers = {"", "0,0 1,1", ""};
    host_->run(one.line);
    EXPECT_EQ(imagesSeen, 1) << one.line;
    EXPECT_EQ(readsSeen, one.during) << one.line;
    EXPECT_EQ(readsNoted(), one.after) << one.line;
  }
  // The middle button pans inside a command; a cancelled command owes its redraw as well.
  script().calls.clear();
  host_->frontEnd.answers.clear();
  host_->run("MOVE L");
  EXPECT_EQ(redraws(), 1);
  g_editorReactor->commandWillStart(L"MOVE");
  for (const UINT id : {WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MOUSEWHEEL}) message(id);
  host_->app->panBy(5, 5);
  host_->app->regenerateForView();
  EXPECT_EQ(redraws(), 0);
  g_editorReactor->commandEnded(L"MOVE");
  EXPECT_EQ(redraws(), 1);
  EXPECT_EQ(host_->app->variables().shortOf("REGENMODE"), 1);
  // What the user has set stays set.
  host_->run("SETVAR REGENMODE 0");
  host_->run("ZOOM 2x");
  EXPECT_EQ(redraws(), 0);
  host_->run("MOVE L");
  EXPECT_EQ(host_->app->variables().shortOf("REGENMODE"), 0);
  acedRegCmds->removeGroup(L"TEST");
}

TEST_F(Reactors, AWatchedViewCubeRedrawsTwice) {
  g_watchedCommands->insert(L"viewcubeaction");
  g_editorReactor->commandWillStart(L"VIEWCUBEACTION");
  EXPECT_EQ(redraws(), 0);
  g_editorReactor->commandEnded(L"VIEWCUBEACTION");
  EXPECT_EQ(redraws(), 2);
  g_watchedCommands->erase(L"viewcubeaction");
}

TEST_F(Reactors, MouseMessagesSuspendAndRedraw) {
  message(WM_MBUTTONDOWN);
  EXPECT_TRUE(g_refresh.suspendRefresh);
  EXPECT_EQ(redraws(), 0);
  message(WM_MOUSEWHEEL);
  EXPECT_FALSE(g_refresh.suspendRefresh);
  EXPECT_EQ(redraws(), 0);
  message(WM_MBUTTONUP);
  EXPECT_TRUE(g_refresh.suspendRefresh);
  EXPECT_EQ(redraws(), 1);
  message(WM_MOUSEMOVE);
  message(WM_LBUTTONUP);  // no pan runs
  EXPECT_EQ(redraws(), 0);
  // The next command end pays the owed redraw.
  g_editorReactor->commandEnded(L"LINE");
  EXPECT_EQ(redraws(), 1);
  g_refresh.plotting = true;
  for (const UINT id : {WM_MBUTTONDOWN, WM_MBUTTONUP, WM_LBUTTONUP, WM_MOUSEWHEEL}) message(id);
  EXPECT_FALSE(g_refresh.suspendRefresh);
  EXPECT_EQ(redraws(), 0);
}

TEST_F(Reactors, TheFrameworksViewChangeRedraws) {
  kel::Object<IMessageRouter> router("N", "test", 1);
  router->send("tarn_image.viewchange", 1);
  EXPECT_EQ(redraws(), 1);
  router->send("something else", 1);
  EXPECT_EQ(redraws(), 0);
}

TEST_F(Reactors, TheTwistIsKeptAndPlotValuesAreReset) {
  host_->run("TWIST 30");
  g_editorReactor->commandWillStart(L"LINE");
  EXPECT_NEAR(tarn::image::g_viewTwistAtCommandStart, 0.5235987755982988, 1e-12);
  tarn::image::g_plotValues[3] = 7;
  g_plotReactor->endPlot();
  for (const double value : tarn::image::g_plotValues) EXPECT_EQ(value, 0.0);
}

/// Counts the commands of the paper-space bracket.
class Bracket : public AcEditorReactor {
 public:
  Bracket() { acedEditor->addReactor(this); }
  ~Bracket() override { acedEditor->removeReactor(this); }
  void commandWillStart(const ACHAR* command) override {
    const std::wstring name = command;
    enter += name == L"MSPACE";
    leave += name == L"PSPACE";
  }
  int enter = 0;
  int leave = 0;
};

TEST_F(Reactors, TheBracketRunsExactlyWhileTheSheetIsCurrent) {
  const struct {
    const char* line;
    bool runs;
  } steps[] = {
      {"SETVAR TILEMODE 0", true},
      {"SETVAR CVPORT 2", false},
      {"SETVAR CVPORT 1", true},
      {"SETVAR TILEMODE 1", false},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.line);
    host_->run(step.line);
    redraws();
    const Bracket bracket;
    g_refresh.suspendRefresh = true;
    host_->app->regenerate();
    EXPECT_EQ(redraws(), 1);
    EXPECT_EQ(bracket.enter, step.runs ? 1 : 0);
    EXPECT_EQ(bracket.enter, bracket.leave);
    EXPECT_TRUE(g_refresh.suspendRefresh) << "the flags are kept";
    g_refresh.suspendRefresh = false;
  }
}

TEST_F(Reactors, APlotFetchesOnceAndDrawsNothingOnTheScreen) {
  const std::string file = host_->folder + "/plot.png";
  const auto plot = [&](const char* layout, const char* area) {
    host_->frontEnd.answers = {"Yes", layout, "PNG",    "A4", "Millimeters", "Landscape", "0",
                               area,  "Fit",  "Center", "40", file,          "No",        "Yes"};
    const long long before = host_->app->regenerator().screenDrawings();
    const Bracket bracket;
    const std::string printed = host_->run("PLOT");
    EXPECT_NE(printed.find("written"), std::string::npos) << printed;
    EXPECT_EQ(host_->app->regenerator().screenDrawings(), before);
    EXPECT_FALSE(g_refresh.plotting);
    for (const double value : tarn::image::g_plotValues) EXPECT_EQ(value, 0.0);
    EXPECT_TRUE(tarn::image::g_plotViewports.empty());
    EXPECT_EQ(bracket.enter, bracket.leave);
    const int drawn = redraws();
    EXPECT_EQ(bracket.enter, std::string(layout) == "Model" ? 0 : drawn);
    return drawn;
  };
  for (const char* area : {"Display", "Extents", "Limits"}) {
    EXPECT_EQ(plot("Model", area), 1) << area;
  }
  host_->run("SETVAR TILEMODE 0");
  host_->run("MVIEW 10,10 100,100");
  redraws();
  EXPECT_EQ(plot("Layout1", "Layout"), 2) << "once for each viewport";
  host_->run("SETVAR CVPORT 3");
  redraws();
  EXPECT_EQ(plot("Layout1", "Layout"), 2);
  EXPECT_EQ(std::get<short>(*host_->app->variables().get("CVPORT")), 3);
}

TEST_F(Reactors, UnloadDetachesThem) {
  acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
  EXPECT_EQ(g_editorReactor, nullptr);
  EXPECT_EQ(g_plotReactor, nullptr);
  g_refresh.suspendRefresh = true;
  host_->run("LINE 0,0 1,1 ");
  message(WM_MBUTTONUP);
  EXPECT_EQ(redraws(), 0);
  acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
  ASSERT_NE(g_editorReactor, nullptr);
}

}  // namespace
