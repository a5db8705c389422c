// Variables of a drawing that say how points and frames look.
#include <cmath>
#include <string_view>

#include "dbmain.h"
#include "dbproxy.h"
#include "host/database/objectaccess.h"

using tarn::host::DatabaseState;
using tarn::host::ObjectAccess;

namespace {

constexpr Adesk::Int16 kLastFrameMode = 2;
constexpr Adesk::Int16 kLastPointShape = 4;
constexpr Adesk::Int16 kShapes = 7;
constexpr Adesk::Int16 kAround = 96;

/// The mode stands in an object of its own, which is written anew.
Acad::ErrorStatus setFrame(DatabaseState& state, Adesk::Int16& frame, Adesk::Int16 mode,
                           std::wstring_view kind) {
  if (mode < 0 || mode > kLastFrameMode) return Acad::eInvalidInput;
  frame = mode;
  for (const auto& [handle, slot] : state.stubs) {
    const auto* object = AcDbProxyObject::cast(slot->object.get());
    if (object != nullptr && object->originalDxfName() == kind) slot->changed = true;
  }
  return Acad::eOk;
}

}  // namespace

Adesk::Int16 AcDbDatabase::imageFrame() const {
  return state_->imageFrame;
}
Acad::ErrorStatus AcDbDatabase::setImageFrame(Adesk::Int16 mode) {
  return setFrame(*state_, state_->imageFrame, mode, L"RASTERVARIABLES");
}
Adesk::Int16 AcDbDatabase::wipeoutFrame() const {
  return state_->wipeoutFrame;
}
Acad::ErrorStatus AcDbDatabase::setWipeoutFrame(Adesk::Int16 mode) {
  return setFrame(*state_, state_->wipeoutFrame, mode, L"WIPEOUTVARIABLES");
}
Adesk::Int16 AcDbDatabase::pdmode() const {
  return state_->pointMode;
}
Acad::ErrorStatus AcDbDatabase::setPdmode(Adesk::Int16 mode) {
  if (mode < 0 || (mode & ~(kShapes | kAround)) != 0 || (mode & kShapes) > kLastPointShape) {
    return Acad::eInvalidInput;
  }
  state_->pointMode = mode;
  return Acad::eOk;
}
double AcDbDatabase::pdsize() const {
  return state_->pointSize;
}
Acad::ErrorStatus AcDbDatabase::setPdsize(double size) {
  if (!std::isfinite(size)) return Acad::eInvalidInput;
  state_->pointSize = size;
  return Acad::eOk;
}
