#include "host/editor/drawingfiles.h"

#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/editorobject.h"
#include "host/editor/hostapp.h"
#include "host/filing/drawingsave.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

namespace {

/// The model's view of a drawing that has been read; false when it names none.
bool takeView(HostDocument& document) {
  const auto stored = document.drawing().view();
  if (!stored) return false;
  ViewState& view = document.view();
  view.centerX = stored->centerX;
  view.centerY = stored->centerY;
  view.height = stored->height;
  view.twist = stored->twist;
  return true;
}

std::optional<DrawingView> viewToSave(const HostDocument& document) {
  if (!document.space().isTiled()) return std::nullopt;
  const ViewState& view = document.view();
  return DrawingView{view.centerX, view.centerY, view.height, view.twist};
}

}  // namespace

Status openDrawing(HostApp& app, const std::string& path) {
  Documents& documents = app.documents();
  if (HostDocument* open = documents.ofFile(path)) {
    documents.setCurDocument(open, AcAp::kNone, true);
    app.regenerate();
    return {};
  }
  auto drawing = DrawingFile::open(path);
  if (!drawing) return drawing.status();
  const std::vector<std::string> notes = drawing.value()->notes();
  const int tileMode = drawing.value()->tileMode();
  HostDocument& document = documents.add(path, drawing.take());
  for (const std::string& note : notes) app.print("\n" + note + "\n");
  const bool hasView = takeView(document);
  if (tileMode == 0) document.space().showSheet(document.space().sheet());
  if (hasView || !app.zoomExtents()) app.regenerate();
  return {};
}

Status saveDrawingAs(HostApp& app, HostDocument& document, const std::string& path) {
  if (HostDocument* other = app.documents().ofFile(path); other != nullptr && other != &document) {
    return Status::error(path + ": this file is open as another drawing.");
  }
  auto bytes = document.drawing().bytes(viewToSave(document));
  if (!bytes) return bytes.status();
  const bool isOwn = document.hasFile() && document.path() == path;
  if (isOwn && document.fileWasChanged() &&
      app.ui().messageBox(path + " was changed by another program since it was opened. Replace it?",
                          "", MB_YESNO) != IDYES) {
    return Status::error(path + ": nothing was saved.");
  }
  if (Status status = saveDrawing(path, bytes.value()); !status) return status;
  document.becameFile(path);
  app.frontEnd().displayChanged();
  return {};
}

}  // namespace tarn::host
