#include "_image/reactors.h"

#include "_image/inputwatch.h"
#include "acplplotreactormgr.h"
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
