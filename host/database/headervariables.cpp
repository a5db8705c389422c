#include "host/database/headervariables.h"

#include <cmath>
#include <string_view>

#include "dbmain.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/database/observer.h"

namespace tarn::host {

namespace {

constexpr Adesk::Int16 kLastFrameMode = 2;
constexpr int kLastPointShape = 4;
constexpr int kShapes = 7;
constexpr int kAround = 96;

template <typename Value>
bool isSame(const Value& a, const Value& b) {
  return a == b;
}
/// To the last digit.
bool isSame(const AcGePoint2d& a, const AcGePoint2d& b) {
  return a.x == b.x && a.y == b.y;
}

/// Calls with the name of each variable, the variable, and whether entities look by it.
template <typename Call>
void forEachVariable(Call call) {
  using Header = HeaderVariables;
  call(L"CLAYER", &Header::currentLayer, false);
  call(L"LTSCALE", &Header::linetypeScale, true);
  call(L"LWDISPLAY", &Header::showsLineWeights, true);
  call(L"IMAGEFRAME", &Header::imageFrame, true);
  call(L"WIPEOUTFRAME", &Header::wipeoutFrame, true);
  call(L"PDMODE", &Header::pointMode, true);
  call(L"PDSIZE", &Header::pointSize, true);
  call(L"LIMMIN", &Header::lowerLimit, false);
  call(L"LIMMAX", &Header::upperLimit, false);
}

/// False for the value that it has already, which is no change.
template <typename Value>
bool change(AcDbDatabase& database, const ACHAR* name, Value HeaderVariables::*variable,
            const Value& value) {
  DatabaseState& state = ObjectAccess::state(database);
  if (isSame(state.header.*variable, value)) return false;
  if (state.observer != nullptr) state.observer->headerWillChange();
  ObjectAccess::tell(database, [&](AcDbDatabaseReactor& reactor) {
    reactor.headerSysVarWillChange(&database, name);
  });
  state.header.*variable = value;
  ObjectAccess::tell(database, [&](AcDbDatabaseReactor& reactor) {
    reactor.headerSysVarChanged(&database, name, Adesk::kTrue);
  });
  return true;
}

/// The mode stands in an object of its own, which is written anew.
Acad::ErrorStatus setFrame(AcDbDatabase& database, const ACHAR* name,
                           Adesk::Int16 HeaderVariables::*frame, Adesk::Int16 mode,
                           std::wstring_view kind) {
  if (mode < 0 || mode > kLastFrameMode) return Acad::eInvalidInput;
  if (!change(database, name, frame, mode)) return Acad::eOk;
  for (const auto& [handle, slot] : ObjectAccess::state(database).stubs) {
    const auto* object = AcDbProxyObject::cast(slot->object.get());
    if (object != nullptr && object->originalDxfName() == kind) slot->changed = true;
  }
  return Acad::eOk;
}

Acad::ErrorStatus setLimit(AcDbDatabase& database, const ACHAR* name,
                           AcGePoint2d HeaderVariables::*limit, const AcGePoint2d& point) {
  if (!std::isfinite(point.x) || !std::isfinite(point.y)) return Acad::eInvalidInput;
  change(database, name, limit, point);
  return Acad::eOk;
}

}  // namespace

bool operator==(const HeaderVariables& a, const HeaderVariables& b) {
  bool same = true;
  forEachVariable(
      [&](const ACHAR*, auto variable, bool) { same = same && isSame(a.*variable, b.*variable); });
  return same;
}

bool isPointMode(int mode) {
  return mode >= 0 && (mode & ~(kShapes | kAround)) == 0 && (mode & kShapes) <= kLastPointShape;
}

void tellRestored(AcDbDatabase& database, const HeaderVariables& before) {
  const DatabaseState& state = ObjectAccess::state(database);
  const HeaderVariables now = state.header;
  bool looks = false;
  forEachVariable([&](const ACHAR* name, auto variable, bool isLook) {
    if (isSame(before.*variable, now.*variable)) return;
    looks = looks || isLook;
    ObjectAccess::tell(database, [&](AcDbDatabaseReactor& reactor) {
      reactor.headerSysVarChanged(&database, name, Adesk::kTrue);
    });
  });
  if (state.observer != nullptr) state.observer->headerRestored(looks);
}

}  // namespace tarn::host

using tarn::host::HeaderVariables;
using tarn::host::ObjectAccess;

AcDbObjectId AcDbDatabase::clayer() const {
  return state_->header.currentLayer;
}
Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
  const AcDbObject* record = tarn::host::peek(layer);
  if (record != nullptr && layer.database() != this) return Acad::eWrongDatabase;
  if (record == nullptr || layer.isErased()) return Acad::eInvalidInput;
  if (!record->isKindOf(AcDbLayerTableRecord::desc())) return Acad::eNotThatKindOfClass;
  tarn::host::change(*this, L"CLAYER", &HeaderVariables::currentLayer, layer);
  return Acad::eOk;
}
double AcDbDatabase::ltscale() const {
  return state_->header.linetypeScale;
}
Acad::ErrorStatus AcDbDatabase::setLtscale(double scale) {
  if (!(scale > 0) || !std::isfinite(scale)) return Acad::eInvalidInput;
  tarn::host::change(*this, L"LTSCALE", &HeaderVariables::linetypeScale, scale);
  return Acad::eOk;
}
bool AcDbDatabase::lineWeightDisplay() const {
  return state_->header.showsLineWeights;
}
Acad::ErrorStatus AcDbDatabase::setLineWeightDisplay(bool display) {
  tarn::host::change(*this, L"LWDISPLAY", &HeaderVariables::showsLineWeights, display);
  return Acad::eOk;
}
Adesk::Int16 AcDbDatabase::imageFrame() const {
  return state_->header.imageFrame;
}
Acad::ErrorStatus AcDbDatabase::setImageFrame(Adesk::Int16 mode) {
  return tarn::host::setFrame(*this, L"IMAGEFRAME", &HeaderVariables::imageFrame, mode,
                              L"RASTERVARIABLES");
}
Adesk::Int16 AcDbDatabase::wipeoutFrame() const {
  return state_->header.wipeoutFrame;
}
Acad::ErrorStatus AcDbDatabase::setWipeoutFrame(Adesk::Int16 mode) {
  return tarn::host::setFrame(*this, L"WIPEOUTFRAME", &HeaderVariables::wipeoutFrame, mode,
                              L"WIPEOUTVARIABLES");
}
Adesk::Int16 AcDbDatabase::pdmode() const {
  return state_->header.pointMode;
}
Acad::ErrorStatus AcDbDatabase::setPdmode(Adesk::Int16 mode) {
  if (!tarn::host::isPointMode(mode)) return Acad::eInvalidInput;
  tarn::host::change(*this, L"PDMODE", &HeaderVariables::pointMode, mode);
  return Acad::eOk;
}
double AcDbDatabase::pdsize() const {
  return state_->header.pointSize;
}
Acad::ErrorStatus AcDbDatabase::setPdsize(double size) {
  if (!std::isfinite(size)) return Acad::eInvalidInput;
  tarn::host::change(*this, L"PDSIZE", &HeaderVariables::pointSize, size);
  return Acad::eOk;
}
AcGePoint2d AcDbDatabase::limmin() const {
  return state_->header.lowerLimit;
}
Acad::ErrorStatus AcDbDatabase::setLimmin(const AcGePoint2d& corner) {
  return tarn::host::setLimit(*this, L"LIMMIN", &HeaderVariables::lowerLimit, corner);
}
AcGePoint2d AcDbDatabase::limmax() const {
  return state_->header.upperLimit;
}
Acad::ErrorStatus AcDbDatabase::setLimmax(const AcGePoint2d& corner) {
  return tarn::host::setLimit(*this, L"LIMMAX", &HeaderVariables::upperLimit, corner);
}
