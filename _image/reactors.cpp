#include "_image/reactors.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/imagerestore.h"
#include "_image/moduleglobals.h"
#include "_image/plotarea.h"
#include "acdocman.h"
#include "acplplotreactormgr.h"
#include "base/text.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/cadutil/message.h"
#include "inc/iconfigmanager.h"
#include "rxdict.h"

using tarn::equalsIgnoreCase;
using tarn::image::g_heldRegenMode;
using tarn::image::g_refresh;
using tarn::image::g_suppressPixels;

namespace {

constexpr const ACHAR* kFixedNames[] = {L"copy",   L"pasteclip", L"move",        L"rotate",
                                        L"circle", L"scale",     L"grip_stretch"};

std::wstring nameOf(const ACHAR* command) {
  return command ? command : L"";
}

double viewTwist() {
  resbuf value{};
  return acedGetVar(L"VIEWTWIST", &value) == RTNORM ? value.resval.rreal : 0.0;
}

void setRegenMode(short mode) {
  resbuf value{};
  value.restype = RTSHORT;
  value.resval.rint = mode;
  acedSetVar(L"REGENMODE", &value);
}

/// While pixels are suppressed a regeneration would take the pictures away, so the host is asked to
/// make none of its own.
void suppressPixels() {
  g_suppressPixels = true;
  resbuf value{};
  if (g_heldRegenMode || acedGetVar(L"REGENMODE", &value) != RTNORM) return;
  g_heldRegenMode = value.resval.rint;
  setRegenMode(0);
}

void allowPixels() {
  g_suppressPixels = false;
  if (g_heldRegenMode) setRegenMode(*g_heldRegenMode);
  g_heldRegenMode.reset();
}

/// Commands after which the drawing may hold other images than the record knows.
bool isUndoCommand(const std::wstring& name) {
  constexpr const ACHAR* kNames[] = {L"u", L"undo", L"redo", L"mredo"};
  return std::any_of(std::begin(kNames), std::end(kNames),
                     [&](const ACHAR* one) { return equalsIgnoreCase(one, name); });
}

}  // namespace

tarnEditorReactor::tarnEditorReactor() {
  if (AcEditor* editor = AcEditor::cast(acrxSysRegistry()->at(ACED_EDITOR_OBJ))) {
    editor->addReactor(this);
  }
}

tarnEditorReactor::~tarnEditorReactor() {
  allowPixels();
  if (AcEditor* editor = AcEditor::cast(acrxSysRegistry()->at(ACED_EDITOR_OBJ))) {
    editor->removeReactor(this);
  }
}

void tarnEditorReactor::commandWillStart(const ACHAR* command) {
  const std::wstring name = nameOf(command);
  tarn::image::g_viewTwistAtCommandStart = viewTwist();
  g_refresh.suspendRefresh = tarn::image::isWatchedCommand(name);
  if (g_refresh.suspendRefresh) suppressPixels();
  if (equalsIgnoreCase(name, L"plot")) {
    g_refresh.plotting = true;
  } else if (equalsIgnoreCase(name, L"VIEWCUBEACTION")) {
    g_refresh.viewCube = true;
  } else {
    g_refresh.plotting = false;
    g_refresh.viewCube = false;
  }
}

void tarnEditorReactor::commandEnded(const ACHAR* command) {
  commandOver(command);
}

void tarnEditorReactor::commandCancelled(const ACHAR* command) {
  commandOver(command);
}

void tarnEditorReactor::commandFailed(const ACHAR* command) {
  commandOver(command);
}

void tarnEditorReactor::commandOver(const ACHAR* command) {
  const std::wstring name = nameOf(command);
  bool isOwed = g_refresh.suspendRefresh;
  if (isUndoCommand(name) && tarn::image::followDrawing(acDocManager->curDocument())) isOwed = true;
  // A transparent command inside a watched one has cleared the flag, but pictures are missing.
  if (g_suppressPixels && tarn::image::isWatchedCommand(name)) {
    allowPixels();
    isOwed = true;
  }
  if (equalsIgnoreCase(name, L"plot")) {
    g_refresh.plotting = false;
  } else if (equalsIgnoreCase(name, L"VIEWCUBEACTION")) {
    g_refresh.viewCube = false;
    redrawImages();
  }
  if (!isOwed) return;
  g_refresh.suspendRefresh = false;
  redrawImages();
}

void tarnEditorReactor::redrawImages() {
  // A redraw now would show nothing but markers; the command's end brings the one that is owed.
  if (g_suppressPixels) return;
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (!record) return;
  m_redrawIds = m_missedIds;
  m_missedIds.removeAll();
  const AcDbObjectId resident = record->residentImage();
  if (!resident.isNull() && !m_redrawIds.contains(resident)) m_redrawIds.append(resident);
  for (const AcDbObjectId& id : m_redrawIds) {
    CCadImage* image = nullptr;
    const Acad::ErrorStatus status = acdbOpenObject(image, id, AcDb::kForRead);
    if (status == Acad::eWasOpenForWrite) m_missedIds.append(id);
    if (status != Acad::eOk) continue;
    image->draw();
    image->close();
  }
}

tarnPlotReactor::tarnPlotReactor() {
  acplPlotReactorMgrPtr()->addReactor(this);
}

tarnPlotReactor::~tarnPlotReactor() {
  acplPlotReactorMgrPtr()->removeReactor(this);
}

void tarnPlotReactor::beginDocument(AcPlPlotInfo& plotInfo, const ACHAR*, Adesk::Int32, bool,
                                    const ACHAR*) {
  tarn::image::rememberPlot(plotInfo);
}

void tarnPlotReactor::endPlot() {
  tarn::image::forgetPlot();
}

void tarnPlotReactor::plotCancelled() {
  endPlot();
}

namespace tarn::image {

void fillWatchedCommands() {
  if (!g_watchedCommands) g_watchedCommands = new std::set<std::wstring>();
  const auto config = makeObject<IConfigManager>(kWatchedSetSite);
  const std::string names =
      config.isNull() ? std::string() : config->getValue("临时禁用影像刷新").toString().str();
  for (const std::wstring& name : split(toWide(names), L',')) g_watchedCommands->insert(name);
  g_watchedCommands->insert(std::begin(kFixedNames), std::end(kFixedNames));
}

bool isWatchedCommand(const std::wstring& command) {
  return g_watchedCommands &&
         std::any_of(g_watchedCommands->begin(), g_watchedCommands->end(),
                     [&](const std::wstring& name) { return equalsIgnoreCase(name, command); });
}

void redrawImages() {
  if (g_editorReactor) g_editorReactor->redrawImages();
}

void redrawImagesLocked() {
  AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  if (!document) return;
  const cad::DocumentLock lock(document);
  if (lock.isLocked()) {
    redrawImages();
  } else {
    cad::printMessage(L"\nlockDocument fail");
  }
}

}  // namespace tarn::image
