// The tabs of a drawing as the front ends use them.
#include "host/editor/tabs.h"

#include <algorithm>
#include <cmath>

#include "dbents.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/layoutcommands.h"
#include "host/editor/regenerator.h"
#include "host/plot/sheetframe.h"

namespace tarn::host {

namespace {

/// Part of the printable area that the first viewport of a new sheet leaves free on each side.
constexpr double kFirstWindowInset = 0.03;
constexpr double kModelMargin = 0.02;
/// The shape of a viewport in whole numbers.
constexpr int kFineness = 100000;

}  // namespace

TabNames tabNames(HostDocument& document) {
  TabNames names;
  const std::string shown = document.space().tab().name;
  for (const LayoutEntry& one : layoutsOf(*document.database())) {
    if (one.name == shown) names.shown = names.all.size();
    names.all.push_back(one.name);
  }
  return names;
}

const ViewState& HostApp::screenView() const {
  return const_cast<HostApp*>(this)->documents().current().view();
}

ViewState HostApp::mouseView() const {
  return const_cast<HostApp*>(this)->documents().current().space().mouseView();
}

GroundPoint HostApp::groundAt(PixelPoint pixel) const {
  return groundFromPixel(mouseView(), pixel);
}

bool HostApp::inViewport() const {
  return !const_cast<HostApp*>(this)->documents().current().space().currentViewport().isNull();
}

Status HostApp::showTab(const std::string& name) {
  if (regenerator().isDrawing()) return Status::error("The drawing is being drawn.");
  HostDocument& document = documents().current();
  const LayoutEntry entry = layoutNamed(*document.database(), name);
  if (entry.id.isNull())
    return Status::error("There is no layout \"" + name + "\"; LAYOUT ? lists them.");
  Space& space = document.space();
  if (entry.isModel) {
    space.showModel();
  } else {
    const GroundBox model = regenerator().extentsOf(space.modelBlock());
    const FirstSight wanted{model, kModelMargin, space.modelView().twist};
    space.showSheet(entry);
    if (!prepareSheet(*document.database(), entry, wanted)) {
      return Status::error("The layout \"" + name + "\" cannot get its first viewport.");
    }
  }
  viewSettled();
  regenerate();
  return {};
}

bool HostApp::workAt(PixelPoint pixel) {
  Space& space = documents().current().space();
  if (space.isTiled() || commandActive()) return false;
  for (const SheetWindow& window : space.windows()) {
    if (!window.onDevice.contains(QPointF(pixel.x, pixel.y))) continue;
    if (commands().runComplete({"MSPACE"}) == CommandOutcome::kEnded) {
      space.setCurrentPort(window.number);
    }
    frontEnd().displayChanged();
    return true;
  }
  if (inViewport()) commands().runComplete({"PSPACE"});
  frontEnd().displayChanged();
  return true;
}

AcDbObjectId appendViewport(AcDbObjectId block, const GroundBox& place, short number,
                            const FirstSight& shown) {
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
  if (record.openStatus() != Acad::eOk) return {};
  auto* viewport = new AcDbViewport;
  viewport->setDatabaseDefaults(block.database());
  viewport->setCenterPoint(
      AcGePoint3d((place.minX + place.maxX) / 2, (place.minY + place.maxY) / 2, 0));
  viewport->setWidth(place.maxX - place.minX);
  viewport->setHeight(place.maxY - place.minY);
  viewport->setNumber(number);
  ViewState view;
  view.twist = shown.twist;
  view.pixelHeight = kFineness;
  const double wide = kFineness * viewport->width() / viewport->height();
  view.pixelWidth = static_cast<int>(std::clamp(std::round(wide), 1.0, 1e9));
  view = fittedTo(view, shown.box, shown.margin);
  showInViewport(*viewport, {view.centerX, view.centerY}, view.height, view.twist);
  AcDbObjectId id;
  if (record->appendAcDbEntity(id, viewport) != Acad::eOk) {
    delete viewport;
    return {};
  }
  viewport->close();
  return id;
}

bool prepareSheet(AcDbDatabase& database, const LayoutEntry& sheet, const FirstSight& model) {
  const LayoutViewports present = viewportsOf(sheet.block);
  if (!present.sheet.isNull() || !present.views.empty() || sheet.id.database() != &database) {
    return true;
  }
  GroundBox paper;
  GroundBox inner;
  {
    const AcDbObjectPointer<AcDbLayout> layout(sheet.id, AcDb::kForRead);
    if (layout.openStatus() != Acad::eOk) return false;
    const PlotData& settings = LayoutAccess::data(*layout.object());
    paper = paperBoxOf(settings);
    inner = printableBoxOf(settings);
  }
  const double dx = (inner.maxX - inner.minX) * kFirstWindowInset;
  const double dy = (inner.maxY - inner.minY) * kFirstWindowInset;
  const GroundBox first{inner.minX + dx, inner.minY + dy, inner.maxX - dx, inner.maxY - dy};
  return !appendViewport(sheet.block, paper, kPaperViewport, {paper}).isNull() &&
         !appendViewport(sheet.block, first, 0, model).isNull();
}

}  // namespace tarn::host
