#include <algorithm>
#include <cmath>

#include "acgi.h"
#include "dbblockref.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/blockdraw.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"
#include "host/database/recordfiling.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        0, INSERT, ObjectDBX Classes)

using tarn::host::InheritedLook;

namespace {

constexpr Adesk::UInt16 kByBlock = 0;
constexpr Adesk::UInt16 kByLayer = 256;

AcGeMatrix3d scaleMatrix(const AcGeVector3d& scale) {
  AcGeMatrix3d matrix;
  matrix.entry[0][0] = scale.x;
  matrix.entry[1][1] = scale.y;
  matrix.entry[2][2] = scale.z;
  return matrix;
}

void writeAttribute(const AcDbAttributeLine& line, AcDbDwgFiler& filer) {
  line.write(filer);
  filer.writeHardPointerId(line.layer);
  filer.writeUInt16(line.color);
  filer.writeInt32(line.trueColor);
  filer.writeBool(line.hidden);
  filer.writeString(line.tag.c_str());
}

void readAttribute(AcDbAttributeLine& line, AcDbDwgFiler& filer) {
  line.read(filer);
  filer.readHardPointerId(&line.layer);
  filer.readUInt16(&line.color);
  filer.readInt32(&line.trueColor);
  filer.readBool(&line.hidden);
  tarn::host::readText(filer, line.tag);
}

/// By block it follows the insertion, on layer "0" what that stands for.
void drawAttribute(AcGiWorldDraw& draw, AcDbAttributeLine line, const AcGeVector3d& offset,
                   const InheritedLook& insertion, const InheritedLook& layerZero) {
  InheritedLook byLayer = layerZero;
  auto* layer = AcDbLayerTableRecord::cast(tarn::host::peek(line.layer));
  if (layer != nullptr && line.layer.database()->layerZero() != line.layer) {
    const tarn::host::ObjectAccess::Look look(*layer);
    if (layer->isFrozen()) return;
    byLayer = tarn::host::lookOf(*layer);
  }
  if (line.hidden || byLayer.isOff) return;
  AcGiSubEntityTraits& traits = draw.subEntityTraits();
  if (line.trueColor >= 0) {
    traits.setTrueColor(static_cast<Adesk::UInt32>(line.trueColor));
  } else if (line.color == kByLayer || line.color == kByBlock) {
    tarn::host::setResolvedColor(traits, (line.color == kByLayer ? byLayer : insertion).color);
  } else {
    traits.setColor(line.color);
  }
  line.transformBy(AcGeMatrix3d::translation(offset));
  line.draw(draw);
}

}  // namespace

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  assertReadEnabled();
  return block_;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
  assertWriteEnabled();
  block_ = block;
  recordGraphicsModified();
  return Acad::eOk;
}

const AcDbBlockReference::Placement& AcDbBlockReference::placement() const {
  assertReadEnabled();
  return placement_;
}

Acad::ErrorStatus AcDbBlockReference::setPlacement(const Placement& placement) {
  assertWriteEnabled();
  placement_ = placement;
  recordGraphicsModified();
  return Acad::eOk;
}

const std::vector<AcDbAttributeLine>& AcDbBlockReference::attributes() const {
  assertReadEnabled();
  return attributes_;
}

Acad::ErrorStatus AcDbBlockReference::setAttributes(std::vector<AcDbAttributeLine> attributes) {
  assertWriteEnabled();
  attributes_ = std::move(attributes);
  recordGraphicsModified();
  return Acad::eOk;
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
  assertReadEnabled();
  AcGePoint3d base;
  if (const auto* record = AcDbBlockTableRecord::cast(tarn::host::peek(block_))) {
    base = record->origin();
  }
  return tarn::host::entityToWorld(placement_.normal) *
         AcGeMatrix3d::translation(placement_.position.asVector()) *
         AcGeMatrix3d::rotation(placement_.rotation, AcGeVector3d::kZAxis) *
         scaleMatrix(placement_.scale) * AcGeMatrix3d::translation(-base.asVector());
}

Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeHardPointerId(block_);
  filer->writePoint3d(placement_.position);
  filer->writeVector3d(placement_.normal);
  filer->writeVector3d(placement_.scale);
  filer->writeDouble(placement_.rotation);
  filer->writeInt16(placement_.columns);
  filer->writeInt16(placement_.rows);
  filer->writeDouble(placement_.columnSpacing);
  filer->writeDouble(placement_.rowSpacing);
  filer->writeInt32(static_cast<Adesk::Int32>(attributes_.size()));
  for (const AcDbAttributeLine& line : attributes_) writeAttribute(line, *filer);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::Int32 count = 0;
  filer->readHardPointerId(&block_);
  filer->readPoint3d(&placement_.position);
  filer->readVector3d(&placement_.normal);
  filer->readVector3d(&placement_.scale);
  filer->readDouble(&placement_.rotation);
  filer->readInt16(&placement_.columns);
  filer->readInt16(&placement_.rows);
  filer->readDouble(&placement_.columnSpacing);
  filer->readDouble(&placement_.rowSpacing);
  filer->readInt32(&count);
  std::vector<AcDbAttributeLine> read;
  for (Adesk::Int32 i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
    readAttribute(read.emplace_back(), *filer);
  }
  if (filer->filerStatus() == Acad::eOk) attributes_ = std::move(read);
  return filer->filerStatus();
}

Adesk::Boolean AcDbBlockReference::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const AcGeMatrix3d first = blockTransform();
  const AcGeMatrix3d world = tarn::host::entityToWorld(placement_.normal) *
                             AcGeMatrix3d::rotation(placement_.rotation, AcGeVector3d::kZAxis);
  const InheritedLook look = tarn::host::lookOf(draw->subEntityTraits());
  const InheritedLook layerZero = tarn::host::layerZeroWithin(*this);
  for (int row = 0; row < std::max<int>(1, placement_.rows); ++row) {
    for (int column = 0; column < std::max<int>(1, placement_.columns); ++column) {
      if (draw->regenAbort()) return Adesk::kTrue;
      const AcGeVector3d offset =
          world * AcGeVector3d(column * placement_.columnSpacing, row * placement_.rowSpacing, 0);
      tarn::host::drawBlock(*draw, *this, block_, AcGeMatrix3d::translation(offset) * first, look);
      for (const AcDbAttributeLine& line : attributes_) {
        drawAttribute(*draw, line, offset, look, layerZero);
      }
    }
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbBlockReference::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                        const AcGePoint3d&, const AcGePoint3d&,
                                                        const AcGeMatrix3d&,
                                                        AcGePoint3dArray& snapPoints,
                                                        AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode != AcDb::kOsModeIns) return Acad::eOk;
  snapPoints.append(tarn::host::entityToWorld(placement_.normal) * placement_.position);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                       AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(tarn::host::entityToWorld(placement_.normal) * placement_.position);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const tarn::host::OwnChange change = tarn::host::changeOf(placement_.normal, transform);
  placement_.position.transformBy(change.map);
  placement_.rotation = change.turned(placement_.rotation);
  placement_.scale *= change.scale;
  placement_.columnSpacing *= change.scale;
  placement_.rowSpacing *= change.scale;
  placement_.normal = change.normal;
  for (AcDbAttributeLine& line : attributes_) line.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
