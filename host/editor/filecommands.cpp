// Commands that open, save and close drawings.
#include <algorithm>

#include "acedads.h"
#include "base/file.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

namespace {

constexpr char kFilter[] = "Drawings|*.dxf||";

HostApp& app() {
  return *HostApp::instance();
}

/// The full path that the user names; empty when cancelled.
std::string askFile(bool open, const std::string& title, const std::string& initial,
                    const std::vector<std::string>& kinds = {}, size_t kind = 0) {
  FileRequest request;
  request.open = open;
  request.mustExist = open;
  request.overwritePrompt = !open;
  request.title = title;
  request.initialName = initial;
  request.defaultExtension = ".dxf";
  request.filter = kFilter;
  request.kinds = kinds;
  request.kind = kind;
  const auto chosen = app().ui().fileNames(request);
  return chosen && !chosen->empty() ? absolutePath(chosen->front()) : std::string();
}

/// What a drawing may be saved as: in its own version or another one, as text or binary.
std::vector<SavedForm> formsOf(const DrawingFile& drawing) {
  std::vector<std::string> versions = savedVersions();
  const std::string& own = drawing.form().version;
  if (std::find(versions.begin(), versions.end(), own) == versions.end()) {
    versions.insert(versions.begin(), own);
  }
  std::vector<SavedForm> forms;
  for (const bool binary : {false, true}) {
    for (const std::string& version : versions) forms.push_back({version, binary});
  }
  return forms;
}

/// False, after the reason was printed, when it could not be saved.
bool saveTo(HostDocument& document, const std::string& path) {
  const Status status = saveDrawingAs(app(), document, path);
  if (!status) {
    failCommand(app(), status.message());
    return false;
  }
  app().print("\n" + path + " saved.\n");
  const std::string& leftOut = document.drawing().leftOut();
  if (!leftOut.empty()) app().print("\n" + leftOut + "\n");
  return true;
}

/// A drawing of R12 may become a later one, and has to when it holds what R12 cannot keep. False
/// when cancelled or failed.
bool chooseVersion(HostDocument& document) {
  DrawingFile& drawing = document.drawing();
  if (!drawing.isOld() || !drawing.reasonAgainstVersion().empty()) return true;
  enum : size_t { kOld, kModern };
  const size_t version =
      app().ui().choose("Version of the drawing", {"R12", "R2000", "Cancel"}, kOld);
  if (version != kModern) return version == kOld;
  const Status status = drawing.makeModern();
  if (!status) failCommand(app(), status.message());
  return status.isOk();
}

/// False, after the reason was printed, when the drawing cannot have that form.
bool takeForm(HostDocument& document, const SavedForm& form) {
  DrawingFile& drawing = document.drawing();
  Status status;
  if (form.version != drawing.form().version) status = drawing.makeModern();
  if (status) status = drawing.setForm(form);
  if (!status) failCommand(app(), status.message() + " Nothing was saved.");
  return status.isOk();
}

bool saveAs(HostDocument& document) {
  DrawingFile& drawing = document.drawing();
  const std::vector<SavedForm> forms = formsOf(drawing);
  std::vector<std::string> kinds;
  for (const SavedForm& form : forms) {
    kinds.push_back(nameOfVersion(form.version) + (form.binary ? "-binary" : ""));
  }
  const SavedForm before = drawing.form();
  const auto own =
      static_cast<size_t>(std::find(forms.begin(), forms.end(), before) - forms.begin());
  const std::string path = askFile(false, "Save drawing as", document.path(), kinds, own);
  if (path.empty()) return false;
  const std::optional<size_t> chosen = app().ui().chosenKind();
  if (!(chosen ? takeForm(document, forms[*chosen]) : chooseVersion(document))) return false;
  if (saveTo(document, path)) return true;
  static_cast<void>(drawing.setForm(before));
  return false;
}

bool save(HostDocument& document) {
  return document.hasFile() ? saveTo(document, document.path()) : saveAs(document);
}

/// Asks what is to become of unsaved changes. False when the drawing must stay.
bool settle(HostDocument& document) {
  if (!document.isModified()) return true;
  enum : size_t { kSave, kDiscard };
  const size_t answer =
      app().ui().choose(toUtf8(document.docTitle()) + " has changes that are not saved.",
                        {"Save", "Discard", "Cancel"}, kSave);
  return answer == kDiscard || (answer == kSave && save(document));
}

}  // namespace

void openCommand() {
  const std::string path = askFile(true, "Open drawing", {});
  if (path.empty()) return;
  if (const Status status = openDrawing(app(), path); !status) {
    failCommand(app(), status.message());
  }
}

void saveCommand() {
  save(app().documents().current());
}

void saveAsCommand() {
  saveAs(app().documents().current());
}

void newCommand() {
  app().documents().create();
  app().regenerate();
}

void closeCommand() {
  HostDocument& document = app().documents().current();
  if (!settle(document)) return;
  app().documents().close(document);
  app().regenerate();
}

void quitCommand() {
  for (HostDocument* document : app().documents().unsaved()) {
    if (document != &app().documents().current()) {
      app().documents().setCurDocument(document, AcAp::kNone, true);
      app().regenerate();
    }
    if (!settle(*document)) return;
  }
  app().requestQuit();
}

}  // namespace tarn::host
