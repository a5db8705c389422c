// Commands that open, save and close drawings.
#include "acedads.h"
#include "afxwin.h"
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
std::string askFile(bool open, const std::string& title, const std::string& initial) {
  FileRequest request;
  request.open = open;
  request.mustExist = open;
  request.overwritePrompt = !open;
  request.title = title;
  request.initialName = initial;
  request.defaultExtension = ".dxf";
  request.filter = kFilter;
  const auto chosen = app().ui().fileNames(request);
  return chosen && !chosen->empty() ? absolutePath(chosen->front()) : std::string();
}

/// False, after the reason was printed, when it could not be saved.
bool saveTo(HostDocument& document, const std::string& path) {
  const Status status = saveDrawingAs(app(), document, path);
  if (!status) {
    failCommand(app(), status.message());
    return false;
  }
  app().print("\n" + path + " saved.\n");
  return true;
}

bool saveAs(HostDocument& document) {
  const std::string path = askFile(false, "Save drawing as", document.path());
  return !path.empty() && saveTo(document, path);
}

bool save(HostDocument& document) {
  return document.hasFile() ? saveTo(document, document.path()) : saveAs(document);
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
  if (document.isModified()) {
    const int answer = app().ui().messageBox("Save changes to " + toUtf8(document.docTitle()) + "?",
                                             "", MB_YESNOCANCEL);
    if (answer == IDCANCEL) return;
    if (answer == IDYES && !save(document)) return;
  }
  app().documents().close(document);
  app().regenerate();
}

}  // namespace tarn::host
