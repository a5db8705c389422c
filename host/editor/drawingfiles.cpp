#include "host/editor/drawingfiles.h"

#include <algorithm>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/autosave.h"
#include "host/editor/documents.h"
#include "host/editor/editorobject.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/filing/drawingsave.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

namespace {

/// Smaller drawings are there before anybody could read what is shown.
constexpr std::uint64_t kShownFrom = 8 << 20;
constexpr int kWhole = 100;
/// Of a drawing that is saved; then the disk takes its time.
constexpr int kWritten = 90;
constexpr size_t kShownPiece = 4 << 20;

/// The progress of a large drawing, as long as it lives.
class FileProgress {
 public:
  FileProgress(HostApp& app, const std::string& what, const std::string& path, std::uint64_t size)
      : frontEnd_(app.frontEnd()), shown_(size >= kShownFrom) {
    if (shown_) frontEnd_.progressBegin(what + " " + nameOf(path), 0, kWhole);
  }
  ~FileProgress() {
    if (shown_) frontEnd_.progressEnd();
  }
  FileProgress(const FileProgress&) = delete;
  FileProgress& operator=(const FileProgress&) = delete;
  void move(int position) {
    if (shown_) frontEnd_.progressMove(position);
  }

 private:
  FrontEnd& frontEnd_;
  bool shown_;
};

/// The sheet that the file has in front.
LayoutEntry frontSheet(const HostDocument& document) {
  AcDbDatabase& database = *document.database();
  AcDbObjectId block;
  const AcDbObjectPointer<AcDbBlockTable> blocks(database.blockTableId(), AcDb::kForRead);
  if (blocks.openStatus() == Acad::eOk) blocks->getAt(ACDB_PAPER_SPACE, block);
  for (const LayoutEntry& entry : layoutsOf(database)) {
    if (entry.block == block) return entry;
  }
  return document.space().sheet();
}

/// Shows a drawing that has been read as it was saved; false when it names no view.
bool takeState(HostDocument& document) {
  const OpeningState stored = document.drawing().state();
  if (stored.view) {
    ViewState& view = document.view();
    view.centerX = stored.view->centerX;
    view.centerY = stored.view->centerY;
    view.height = stored.view->height;
    view.twist = stored.view->twist;
  }
  if (!stored.isTiled) document.space().showSheet(frontSheet(document));
  return stored.view.has_value();
}

/// Offers a later version to a drawing that its own one cannot hold.
Status settleVersion(HostApp& app, DrawingFile& drawing) {
  const std::string reason = drawing.reasonAgainstVersion();
  if (reason.empty()) return {};
  if (app.ui().choose(reason + " Save it as a drawing of R2000?", {"Yes", "No"}, 0) != 0) {
    return Status::error(reason + " Nothing was saved.");
  }
  return drawing.makeModern();
}

/// The old file says how much there will be.
Status writeWithProgress(HostApp& app, HostDocument& document, const std::string& path) {
  const std::uint64_t expected = document.times().size;
  FileProgress progress(app, "Saving", path, expected);
  return saveDrawing(path, [&](const PieceTaker& take) {
    std::uint64_t done = 0;
    return document.drawing().write(stateToSave(document), [&](std::string_view piece) {
      while (!piece.empty()) {
        const std::string_view part = piece.substr(0, kShownPiece);
        if (Status status = take(part); !status) return status;
        piece.remove_prefix(part.size());
        done += part.size();
        progress.move(static_cast<int>(std::min(done, expected) * kWritten /
                                       std::max<std::uint64_t>(expected, 1)));
      }
      return Status();
    });
  });
}

}  // namespace

OpeningState stateToSave(const HostDocument& document) {
  const Space& space = document.space();
  const ViewState view = space.modelView();
  return {DrawingView{view.centerX, view.centerY, view.height, view.twist}, space.isTiled(),
          space.isTiled() ? AcDbObjectId() : space.sheet().block};
}

Result<HostDocument*> recoverDrawing(HostApp& app, const LostDrawing& lost) {
  if (lost.hadFile && app.documents().ofFile(lost.original) != nullptr) {
    return Status::error(lost.original + ": this drawing is open; close it to recover the copy.");
  }
  auto drawing = DrawingFile::open(lost.copy);
  if (!drawing) return drawing.status();
  // What cannot have its earlier form keeps the one of the copy.
  static_cast<void>(drawing.value()->setForm(lost.form));
  HostDocument& document = app.documents().addRecovered(
      lost.original, drawing.take(),
      lost.hadFile ? std::optional<FileTimes>(lost.times) : std::nullopt);
  takeState(document);
  app.regenerate();
  return &document;
}

Status openDrawing(HostApp& app, const std::string& path) {
  Documents& documents = app.documents();
  if (HostDocument* open = documents.ofFile(path)) {
    documents.setCurDocument(open, AcAp::kNone, true);
    app.regenerate();
    return {};
  }
  FileProgress progress(app, "Opening", path, fileTimes(path).size);
  auto drawing = DrawingFile::open(path, [&](int share) { progress.move(share); });
  if (!drawing) return drawing.status();
  const std::vector<std::string> notes = drawing.value()->notes();
  HostDocument& document = documents.add(path, drawing.take());
  for (const std::string& note : notes) app.print("\n" + note + "\n");
  const bool hasView = takeState(document);
  if (hasView || !app.zoomExtents()) app.regenerate();
  return {};
}

Status saveDrawingAs(HostApp& app, HostDocument& document, const std::string& path) {
  if (equalsIgnoreCase(std::string_view(extensionOf(path)), ".dwg")) {
    return Status::error(path + ": drawings are written as DXF; choose a name that ends in .dxf.");
  }
  if (HostDocument* other = app.documents().ofFile(path); other != nullptr && other != &document) {
    return Status::error(path + ": this file is open as another drawing.");
  }
  if (Status status = settleVersion(app, document.drawing()); !status) return status;
  const bool isOwn = document.hasFile() && document.path() == path;
  if (isOwn && document.fileWasChanged() &&
      app.ui().choose(path + " was changed by another program since it was opened. Replace it?",
                      {"Yes", "No"}, 1) != 0) {
    return Status::error(path + ": nothing was saved.");
  }
  if (Status status = writeWithProgress(app, document, path); !status) return status;
  document.becameFile(path);
  app.autosave().forget(document);
  app.frontEnd().displayChanged();
  return {};
}

}  // namespace tarn::host
