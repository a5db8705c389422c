#include <gtest/gtest.h>

#include <QImage>
#include <string>
#include <vector>

#include "acgi.h"
#include "acplplotconfig.h"
#include "acplplotinfo.h"
#include "acplplotreactor.h"
#include "acplplotreactormgr.h"
#include "base/file.h"
#include "base/text.h"
#include "dbents.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/regenerator.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

class Noting : public AcPlPlotReactor {
 public:
  Noting() { acplPlotReactorMgrPtr()->addReactor(this); }
  ~Noting() override { acplPlotReactorMgrPtr()->removeReactor(this); }
  void beginPlot() override { calls += "beginPlot "; }
  void beginDocument(AcPlPlotInfo& info, const ACHAR*, Adesk::Int32, bool toFile,
                     const ACHAR*) override {
    calls += "beginDocument ";
    dpi = info.deviceOverride()->maxDeviceDPI();
    type = info.overrideSettings()->plotType();
    EXPECT_TRUE(toFile);
    EXPECT_FALSE(info.layout().isNull());
  }
  void beginPage(AcPlPlotInfo&) override { calls += "beginPage "; }
  void endPage() override { calls += "endPage "; }
  void endDocument() override { calls += "endDocument "; }
  void endPlot() override { calls += "endPlot "; }
  void plotCancelled() override { calls += "plotCancelled "; }

  std::string calls;
  unsigned int dpi = 0;
  AcDbPlotSettings::PlotType type = AcDbPlotSettings::kDisplay;
};

/// Draws a line for the screen; when it is plotted, the user presses Escape.
class Impatient : public AcDbLine {
 public:
  Impatient() : AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 50, 0)) {}

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override {
    if (draw->context()->isPlotGeneration()) HeadlessFrontEnd::requestCancel();
    return AcDbLine::subWorldDraw(draw);
  }
};

class PlotCommand : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = makeTemporaryFolder(testing::TempDir(), "plot_").take();
    file_ = folder_ + "/plot.png";
    host_.run({"LINE 0,0 100,50", "", "ZOOM E"});
  }
  void TearDown() override { static_cast<void>(removeAll(folder_)); }

  std::string plot() {
    return host_.run({"PLOT", "Yes", "Model", "PNG", "100x60", "Millimeters", "Landscape", "0",
                      "Extents", "Fit", "Center", "50", file_.c_str(), "Yes", "Yes"});
  }
  ScriptedHost host_;
  std::string folder_;
  std::string file_;
  Noting reactor_;
};

TEST_F(PlotCommand, TellsItsReactorsInOrderAndDrawsNothingOnTheScreen) {
  const Regenerator& regenerator = host_.app().regenerator();
  const long long before = regenerator.screenDrawings();
  const std::string printed = plot();
  EXPECT_TRUE(host_.good()) << printed;
  EXPECT_EQ(reactor_.calls, "beginPlot beginDocument beginPage endPage endDocument endPlot ");
  EXPECT_EQ(reactor_.dpi, 50U);
  EXPECT_EQ(reactor_.type, AcDbPlotSettings::kExtents);
  EXPECT_EQ(regenerator.screenDrawings(), before);
  const QImage page(QString::fromStdString(file_));
  EXPECT_EQ(page.width(), 197);
  EXPECT_EQ(page.height(), 118);
  // The settings were saved with the layout: the next plot offers them.
  EXPECT_NE(plot().find("<100x60>"), std::string::npos);
}

TEST_F(PlotCommand, WhatIsOnALayerThatIsNotPlottedStaysOnTheScreen) {
  const auto inked = [&] {
    static_cast<void>(removeAll(file_));
    plot();
    const QImage page(QString::fromStdString(file_));
    int count = page.isNull() ? -1 : 0;
    for (int y = 0; y < page.height(); ++y) {
      for (int x = 0; x < page.width(); ++x) count += page.pixel(x, y) != qRgb(255, 255, 255);
    }
    return count;
  };
  EXPECT_GT(inked(), 50);
  HostDocument& document = host_.app().documents().current();
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(document.database()->layerZero(),
                                                        AcDb::kForWrite);
    EXPECT_EQ(layer->setIsPlottable(false), Acad::eOk);
  }
  EXPECT_EQ(inked(), 0);
  EXPECT_EQ(document.scene().size(), 1U);
}

TEST_F(PlotCommand, EscapeLeavesNoFileAndTheOldOneAsItWas) {
  AcDbBlockTableRecord* model = nullptr;
  const AcDbObjectId block = host_.app().documents().current().space().modelBlock();
  ASSERT_EQ(acdbOpenObject(model, block, AcDb::kForWrite), Acad::eOk);
  auto* line = new Impatient;
  ASSERT_EQ(model->appendAcDbEntity(line), Acad::eOk);
  model->close();
  line->close();
  plot();
  EXPECT_EQ(reactor_.calls,
            "beginPlot beginDocument beginPage plotCancelled endPage endDocument endPlot ");
  EXPECT_TRUE(listFolder(folder_).empty());
  ASSERT_TRUE(writeFileAtomically(file_, "old"));
  plot();
  EXPECT_EQ(readFile(file_, 100).take(), "old");
  EXPECT_EQ(listFolder(folder_).size(), 1U);
}

TEST_F(PlotCommand, CancellingAPromptPlotsNothing) {
  const std::vector<const char*> answers = {"PLOT",        "Yes",       "Model", "PNG", "A4",
                                            "Millimeters", "Landscape", "0",     "W",   "0,0"};
  for (size_t given = 1; given <= answers.size(); ++given) {
    ScriptedHost host;
    Noting reactor;
    for (size_t i = 0; i + 1 < given; ++i) host.add(answers[i]);
    host.run({answers[given - 1]});
    EXPECT_EQ(reactor.calls, "") << given;
  }
}

}  // namespace
}  // namespace tarn::host
