// Our own extensions of the host interface, the current view, and the document manager's entry.
#include <algorithm>

#include "acdocman.h"
#include "aced.h"
#include "afxwin.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/regenerator.h"
#include "host/editor/sysvars.h"
#include "host/ui/uibackend.h"
#include "tarnhost.h"

using tarn::host::HostApp;

void tarnHostCount(const char* counter, long long amount) {
  if (HostApp* app = HostApp::instance()) app->regenerator().count(counter, amount);
}

std::string tarnHostFolder(TarnFolder which) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return {};
  switch (which) {
    case TarnFolder::kConfiguration:
      return app->profile().configurationFolder();
    case TarnFolder::kCache:
      return app->profile().cacheFolder();
    default:
      return app->profile().folder();
  }
}

bool tarnHostFilesGiven() {
  HostApp* app = HostApp::instance();
  return app != nullptr && app->filesGiven();
}

bool tarnHostQuestion(const std::string& text) {
  HostApp* app = HostApp::instance();
  return app != nullptr && app->ui().messageBox(text, "", MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void tarnHostRegenerate() {
  if (HostApp* app = HostApp::instance()) app->regenerate();
}

bool tarnHostDrawnView(TarnView& view) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return false;
  const tarn::host::ViewState drawn = app->documents().current().space().drawnView();
  const double pixel = drawn.unitsPerPixel();
  view = {drawn.centerX, drawn.centerY, pixel * drawn.pixelWidth, drawn.height, pixel, drawn.twist};
  return true;
}

AcDbObjectId acedGetCurViewportObjectId() {
  HostApp* app = HostApp::instance();
  return app != nullptr ? app->documents().current().space().currentViewport() : AcDbObjectId();
}

AcApDocManager* acDocManagerPtr() {
  HostApp* app = HostApp::instance();
  return app != nullptr ? &app->documents() : nullptr;
}

Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view, AcDbViewport*) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || view == nullptr) return Acad::eInvalidInput;
  if (!(view->height() > 0) || !(view->width() > 0)) return Acad::eInvalidInput;
  const auto& variables = app->variables();
  const bool onSheet = variables.shortOf("TILEMODE") == 0 && variables.shortOf("CVPORT") == 1;
  if (view->isPaperspaceView() && !onSheet) return Acad::eInvalidInput;
  tarn::host::ViewState wanted = app->view();
  const double aspect = static_cast<double>(wanted.pixelHeight) / wanted.pixelWidth;
  wanted.centerX = view->centerPoint().x;
  wanted.centerY = view->centerPoint().y;
  // The whole of the record is shown, whatever the shape of the window.
  wanted.height = std::max(view->height(), view->width() * aspect);
  wanted.twist = view->viewTwist();
  app->setView(wanted);
  return Acad::eOk;
}

bool acdbUcs2Wcs(const ads_real* from, ads_real* to, bool) {
  std::copy_n(from, 3, to);
  return true;
}
