#include "host/editor/space.h"

#include <algorithm>
#include <cmath>

#include "dbents.h"
#include "dblayout.h"
#include "dbmain.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/plot/sheetframe.h"

namespace tarn::host {

namespace {

constexpr double kSheetMargin = 0.03;

/// A view of another tab on the screen of this one: the scale stays when there was one.
void takeScreen(ViewState& view, const ViewState& screen) {
  view.height *= static_cast<double>(screen.pixelHeight) / view.pixelHeight;
  view.pixelWidth = screen.pixelWidth;
  view.pixelHeight = screen.pixelHeight;
}

/// A first look at a sheet: all of its paper.
ViewState viewOfSheet(AcDbObjectId layout, const ViewState& screen) {
  ViewState view = screen;
  view.twist = 0;
  const AcDbObjectPointer<AcDbLayout> open(layout, AcDb::kForRead);
  if (open.openStatus() != Acad::eOk) return view;
  return fittedTo(view, paperBoxOf(LayoutAccess::data(*open.object())), kSheetMargin);
}

}  // namespace

LayoutEntry Space::sheet() const {
  LayoutEntry first;
  for (const LayoutEntry& entry : layoutsOf(*database_)) {
    if (entry.isModel) continue;
    if (entry.id == sheet_) return entry;
    if (first.id.isNull()) first = entry;
  }
  return first;
}

LayoutEntry Space::tab() const {
  if (!tiled_) return sheet();
  for (const LayoutEntry& entry : layoutsOf(*database_)) {
    if (entry.isModel) return entry;
  }
  return {};
}

void Space::showModel() {
  if (tiled_) return;
  takeScreen(modelView_, screenView());
  tiled_ = true;
  current_.setNull();
}

void Space::showSheet(const LayoutEntry& sheet) {
  if (sheet.id.isNull() || sheet.isModel) return;
  const ViewState screen = screenView();
  const auto [view, isNew] = sheetViews_.try_emplace(sheet.id, screen);
  if (isNew) {
    view->second = viewOfSheet(sheet.id, screen);
  } else {
    takeScreen(view->second, screen);
  }
  tiled_ = false;
  sheet_ = sheet.id;
  current_.setNull();
  last_.setNull();
}

AcDbObjectId Space::modelBlock() const {
  AcDbObjectId id;
  const AcDbObjectPointer<AcDbBlockTable> blocks(database_->blockTableId(), AcDb::kForRead);
  if (blocks.openStatus() == Acad::eOk) blocks->getAt(ACDB_MODEL_SPACE, id);
  return id;
}

AcDbObjectId Space::shownBlock() const {
  return tiled_ ? modelBlock() : sheet().block;
}

AcDbObjectId Space::currentBlock() const {
  return currentPort() == kPaperViewport ? sheet().block : modelBlock();
}

bool Space::shows(AcDbObjectId block) const {
  return block == modelBlock() || (!tiled_ && block == sheet().block);
}

AcDbObjectId Space::currentViewport() const {
  return tiled_ || !current_.isValid() || current_.isErased() ? AcDbObjectId() : current_;
}

short Space::currentPort() const {
  if (tiled_) return kModelViewport;
  const auto window = currentWindow();
  return window ? window->number : kPaperViewport;
}

bool Space::setCurrentPort(short number) {
  if (tiled_) return number == kModelViewport;
  if (number == kPaperViewport) {
    leaveModel();
    return true;
  }
  for (const SheetWindow& window : windows()) {
    if (window.number != number) continue;
    current_ = last_ = window.id;
    return true;
  }
  return false;
}

bool Space::enterModel() {
  if (tiled_) return false;
  if (drawn_ && !drawn_->id.isNull()) {
    current_ = drawn_->id;
    return true;
  }
  if (!currentViewport().isNull()) return true;
  const std::vector<SheetWindow> all = windows();
  if (all.empty()) return false;
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const SheetWindow& window) { return window.id == last_; });
  current_ = last_ = found != all.end() ? found->id : all.front().id;
  return true;
}

GroundBox Space::limits() const {
  const AcGePoint2d lower = database_->limmin();
  const AcGePoint2d upper = database_->limmax();
  const GroundBox ofModel{lower.x, lower.y, upper.x, upper.y};
  if (currentPort() != kPaperViewport) return ofModel;
  const AcDbObjectPointer<AcDbLayout> layout(sheet().id, AcDb::kForRead);
  if (layout.openStatus() != Acad::eOk) return ofModel;
  return printableBoxOf(LayoutAccess::data(*layout.object()));
}

const ViewState& Space::screenView() const {
  if (tiled_) return modelView_;
  const auto found = sheetViews_.find(sheet_);
  return found != sheetViews_.end() ? found->second : modelView_;
}

ViewState& Space::screenView() {
  return const_cast<ViewState&>(static_cast<const Space&>(*this).screenView());
}

ViewState Space::view() const {
  if (drawn_ && drawn_->id == currentViewport()) return drawn_->view;
  const auto window = currentWindow();
  if (!window) return screenView();
  ViewState view;
  view.centerX = window->place.viewCenter.x;
  view.centerY = window->place.viewCenter.y;
  view.height = window->place.viewHeight;
  view.twist = window->place.twist;
  view.pixelWidth = std::max(1, static_cast<int>(std::lround(window->onDevice.width())));
  view.pixelHeight = std::max(1, static_cast<int>(std::lround(window->onDevice.height())));
  return view;
}

void Space::setView(const ViewState& view) {
  const AcDbObjectId id = currentViewport();
  if (id.isNull()) {
    ViewState& screen = screenView();
    const ViewState before = screen;
    screen = view;
    screen.pixelWidth = before.pixelWidth;
    screen.pixelHeight = before.pixelHeight;
    // Paper lies straight on the screen.
    if (!tiled_) screen.twist = 0;
    return;
  }
  const AcDbObjectPointer<AcDbViewport> viewport(id, AcDb::kForWrite);
  if (viewport.openStatus() != Acad::eOk) return;
  showInViewport(*viewport.object(), {view.centerX, view.centerY}, view.height, view.twist);
}

ViewState Space::mouseView() const {
  const auto window = currentWindow();
  return window ? window->through : screenView();
}

void Space::setMouseView(const ViewState& view) {
  const auto window = currentWindow();
  if (!window) return setView(view);
  const QPointF middle = window->onDevice.center();
  const GroundPoint center = groundFromPixel(view, {middle.x(), middle.y()});
  ViewState own;
  own.centerX = center.x;
  own.centerY = center.y;
  own.height = window->place.viewHeight * view.height / window->through.height;
  own.twist = view.twist;
  setView(own);
}

AcDbObjectId Space::viewKey() const {
  if (tiled_) return {};
  const AcDbObjectId viewport = currentViewport();
  return viewport.isNull() ? sheet_ : viewport;
}

std::vector<SheetWindow> Space::windows() const {
  std::vector<SheetWindow> all;
  if (tiled_) return all;
  short number = kPaperViewport;
  for (const AcDbObjectId& id : viewportsOf(sheet().block).views) {
    const AcDbObjectPointer<AcDbViewport> viewport(id, AcDb::kForRead);
    if (viewport.openStatus() != Acad::eOk) continue;
    ++number;
    if (!viewport->isOn()) continue;
    const PaperWindow place = paperWindowOf(*viewport.object());
    all.push_back(
        {id, number, place, deviceRectOf(place, screenView()), throughWindow(place, screenView())});
  }
  return all;
}

std::optional<SheetWindow> Space::currentWindow() const {
  const AcDbObjectId id = currentViewport();
  if (id.isNull()) return std::nullopt;
  for (const SheetWindow& window : windows()) {
    if (window.id == id) return window;
  }
  return std::nullopt;
}

DrawnViewport::DrawnViewport(Space& space, AcDbObjectId viewport, const ViewState& view)
    : space_(space), before_(space.current_) {
  space_.drawn_ = Space::Drawn{viewport, view};
  if (!viewport.isNull() && !space_.currentViewport().isNull()) space_.current_ = viewport;
}

DrawnViewport::~DrawnViewport() {
  space_.drawn_.reset();
  space_.current_ = before_;
}

}  // namespace tarn::host
