// Drawing over the picture, and drawing single entities anew.
#include <memory>

#include "acedads.h"
#include "dbents.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/regenerator.h"

using tarn::host::HostApp;
using tarn::host::HostDocument;
using tarn::host::TemporaryVectors;

int acedGrDraw(const ads_point from, const ads_point to, int color, int highlight) {
  constexpr int kForeground = 7;
  constexpr int kLastColor = 255;
  HostApp* app = HostApp::instance();
  if (app == nullptr || from == nullptr || to == nullptr) return RTERROR;
  HostDocument& document = app->documents().current();
  TemporaryVectors& vectors = document.temporaryVectors();
  const AcDbObjectId key = document.space().viewKey();
  if (vectors.key != key) vectors = {key, {}};
  const bool isIndex = color >= 1 && color <= kLastColor;
  vectors.lines.push_back({{from[0], from[1]},
                           {to[0], to[1]},
                           static_cast<unsigned>(isIndex ? color : kForeground),
                           highlight != 0});
  app->frontEnd().displayChanged();
  return RTNORM;
}

int acedRedraw(const ads_name entity, int /*mode*/) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return RTERROR;
  if (entity != nullptr) return acdbEntUpd(entity);
  app->documents().current().temporaryVectors().lines.clear();
  app->frontEnd().displayChanged();
  return RTNORM;
}

int acdbEntUpd(const ads_name entity) {
  HostApp* app = HostApp::instance();
  AcDbObjectId id;
  AcDbEntity* opened = nullptr;
  if (app == nullptr || entity == nullptr || acdbGetObjectId(id, entity) != Acad::eOk ||
      acdbOpenObject(opened, id, AcDb::kForRead) != Acad::eOk) {
    return RTERROR;
  }
  app->regenerator().redraw(*opened);
  opened->close();
  return RTNORM;
}
