#include "host/editor/documentpicture.h"

#include "dblayout.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/graphics/sheetpicture.h"
#include "host/plot/sheetframe.h"

namespace tarn::host {

namespace {

/// Of a usual screen, so that a line looks as it does on paper.
constexpr double kPixelsPerMillimetre = 96 / 25.4;

}  // namespace

void renderDocument(QPainter& painter, const HostDocument& document, int width, int height,
                    const RenderStyle& usual) {
  RenderStyle style = usual;
  if (document.database()->lineWeightDisplay()) style.pixelsPerMillimetre = kPixelsPerMillimetre;
  const Space& space = document.space();
  ViewState view = document.view();
  view.pixelWidth = width;
  view.pixelHeight = height;
  if (space.isTiled()) return render(painter, document.scene(), view, style);

  SheetPicture picture;
  picture.view = view;
  picture.scene = &document.scene();
  const AcDbObjectPointer<AcDbLayout> layout(space.sheet().id, AcDb::kForRead);
  if (layout.openStatus() == Acad::eOk) {
    const PlotData& settings = LayoutAccess::data(*layout.object());
    picture.paper = paperBoxOf(settings);
    picture.printable = printableBoxOf(settings);
  }
  for (const SheetWindow& window : space.windows()) {
    const auto scene = document.windowScenes().find(window.id);
    if (scene == document.windowScenes().end()) continue;
    picture.windows.push_back(
        {&scene->second, throughWindow(window.place, view), deviceRectOf(window.place, view)});
    if (window.id == space.currentViewport()) picture.current = picture.windows.back().clip;
  }
  renderSheet(painter, picture, style);
}

}  // namespace tarn::host
