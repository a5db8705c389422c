#include "acgi.h"
#include "acutmem.h"
#include "dbents.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/extendeddata.h"
#include "host/database/objectaccess.h"
#include "host/database/observer.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)

namespace {

constexpr Adesk::UInt16 kByLayer = 256;

AcDbDatabase* databaseFor(const AcDbEntity& entity) {
  return entity.database() != nullptr ? entity.database()
                                      : acdbHostApplicationServices()->workingDatabase();
}

}  // namespace

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;

AcDbObjectId AcDbEntity::layerId() const {
  assertReadEnabled();
  return layerId_;
}

ACHAR* AcDbEntity::layer() const {
  assertReadEnabled();
  const auto* record = AcDbLayerTableRecord::cast(tarn::host::peek(layerId_));
  const ACHAR* name = L"0";
  if (record != nullptr) record->getName(name);
  ACHAR* copy = nullptr;
  acutNewString(name, copy);
  return copy;
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, Adesk::Boolean doSubents) {
  AcDbDatabase* database = databaseFor(*this);
  if (database == nullptr) return Acad::eNoDatabase;
  const auto* layers = AcDbLayerTable::cast(tarn::host::peek(database->layerTableId()));
  AcDbObjectId id;
  if (layers == nullptr || layers->getIdAt(name, id) != Acad::eOk) return Acad::eKeyNotFound;
  return setLayer(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId id, Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  const AcDbObject* record = tarn::host::peek(id);
  if (record == nullptr || !record->isKindOf(AcDbLayerTableRecord::desc()))
    return Acad::eInvalidInput;
  if (database() != nullptr && id.database() != database()) return Acad::eWrongDatabase;
  layerId_ = id;
  recordGraphicsModified();
  return Acad::eOk;
}

Adesk::UInt16 AcDbEntity::colorIndex() const {
  assertReadEnabled();
  return color_;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 color, Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  if (color > kByLayer) return Acad::eInvalidInput;
  color_ = color;
  properties_.trueColor = -1;
  recordGraphicsModified();
  return Acad::eOk;
}

AcDb::Visibility AcDbEntity::visibility() const {
  assertReadEnabled();
  return visibility_;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility,
                                            Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  visibility_ = visibility;
  recordGraphicsModified();
  return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* database) {
  assertWriteEnabled();
  if (database == nullptr) database = databaseFor(*this);
  if (database != nullptr) layerId_ = database->clayer();
  color_ = kByLayer;
  properties_ = Properties();
}

Adesk::Boolean AcDbEntity::worldDraw(AcGiWorldDraw* draw) {
  return subWorldDraw(draw);
}
void AcDbEntity::viewportDraw(AcGiViewportDraw* draw) {
  subViewportDraw(draw);
}
Adesk::UInt32 AcDbEntity::setAttributes(AcGiDrawableTraits* traits) {
  return subSetAttributes(traits);
}

Acad::ErrorStatus AcDbEntity::draw() {
  if (!isReadEnabled()) return Acad::eNotOpenForRead;
  if (tarn::host::DatabaseObserver* observer = tarn::host::observerOf(*this)) {
    observer->drawWanted(*this);
  }
  return Acad::eOk;
}

void AcDbEntity::recordGraphicsModified(Adesk::Boolean setModified) {
  setModifiedGraphics(setModified);
}

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
  return subGetGeomExtents(extents);
}

Acad::ErrorStatus AcDbEntity::getOsnapPoints(
    AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark, const AcGePoint3d& pickPoint,
    const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
    AcDbIntArray& geomIds) const {
  return subGetOsnapPoints(osnapMode, gsSelectionMark, pickPoint, lastPoint, viewXform, snapPoints,
                           geomIds);
}

Acad::ErrorStatus AcDbEntity::getGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                            AcDbIntArray& geomIds) const {
  return subGetGripPoints(gripPoints, osnapModes, geomIds);
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d& transform) {
  const Acad::ErrorStatus status = subTransformBy(transform);
  if (status == Acad::eOk) tarn::host::transformExtendedData(*this, transform);
  return status;
}

Acad::ErrorStatus AcDbEntity::moveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
  return subMoveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbEntity::getTransformedCopy(const AcGeMatrix3d& transform,
                                                 AcDbEntity*& copy) const {
  return subGetTransformedCopy(transform, copy);
}

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeHardPointerId(layerId_);
  filer->writeUInt16(color_);
  filer->writeUInt8(static_cast<Adesk::UInt8>(visibility_));
  filer->writeHardPointerId(properties_.linetype);
  filer->writeDouble(properties_.linetypeScale);
  filer->writeDouble(properties_.thickness);
  filer->writeInt32(properties_.trueColor);
  filer->writeUInt32(properties_.transparency.serializeOut());
  filer->writeInt16(properties_.lineWeight);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  AcDbObjectId layer;
  Adesk::UInt16 color = 0;
  Adesk::UInt8 visibility = 0;
  Properties properties;
  Adesk::UInt32 transparency = 0;
  filer->readHardPointerId(&layer);
  filer->readUInt16(&color);
  filer->readUInt8(&visibility);
  filer->readHardPointerId(&properties.linetype);
  filer->readDouble(&properties.linetypeScale);
  filer->readDouble(&properties.thickness);
  filer->readInt32(&properties.trueColor);
  filer->readUInt32(&transparency);
  if (filer->readInt16(&properties.lineWeight) != Acad::eOk) return filer->filerStatus();
  properties.transparency.serializeIn(transparency);
  layerId_ = layer;
  color_ = color;
  visibility_ = visibility == AcDb::kInvisible ? AcDb::kInvisible : AcDb::kVisible;
  setProperties(properties);
  recordGraphicsModified();
  return filer->filerStatus();
}

Adesk::Boolean AcDbEntity::subWorldDraw(AcGiWorldDraw*) {
  assertReadEnabled();
  return Adesk::kTrue;
}

void AcDbEntity::subViewportDraw(AcGiViewportDraw*) {
  assertReadEnabled();
}

Adesk::UInt32 AcDbEntity::subSetAttributes(AcGiDrawableTraits* traits) {
  assertReadEnabled();
  if (traits != nullptr) traits->setColor(color_);
  return 0;
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents&) const {
  assertReadEnabled();
  return Acad::eInvalidExtents;
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, Adesk::GsMarker,
                                                const AcGePoint3d&, const AcGePoint3d&,
                                                const AcGeMatrix3d&, AcGePoint3dArray&,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&,
                                               AcDbIntArray&) const {
  assertReadEnabled();
  return Acad::eOk;
}

// A refusal leaves the entity unchanged, so it does not count as a change.

/// All grips together move the entity.
Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
  assertWriteEnabled(Adesk::kTrue, Adesk::kFalse);
  AcGePoint3dArray grips;
  AcDbIntArray modes;
  AcDbIntArray ids;
  getGripPoints(grips, modes, ids);
  if (indices.length() != grips.length()) return Acad::eNotApplicable;
  return transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d&) {
  assertWriteEnabled(Adesk::kTrue, Adesk::kFalse);
  return Acad::eNotApplicable;
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  const Acad::ErrorStatus status = acdbOpenObject(entity, id, mode, openErased);
  return status == Acad::eNotThatKindOfClass ? Acad::eNotAnEntity : status;
}
