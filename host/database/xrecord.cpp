#include "dbfiler.h"
#include "dbxrecrd.h"
#include "host/database/resbufitems.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        XRECORD, ObjectDBX Classes)

namespace {

constexpr int kFirstExtended = 1000;

}  // namespace

struct AcDbXrecord::Items {
  tarn::host::ResbufItems list;
};

AcDbXrecord::AcDbXrecord() : items_(std::make_unique<Items>()) {}
AcDbXrecord::~AcDbXrecord() = default;

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& chain, AcDbDatabase*) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  // A record has no extended data among its values.
  for (const resbuf* buffer = &chain; buffer != nullptr; buffer = buffer->rbnext) {
    if (buffer->restype >= kFirstExtended) return Acad::eInvalidResBuf;
  }
  tarn::host::ResbufItems list;
  if (!tarn::host::itemsFrom(chain, list)) return Acad::eInvalidResBuf;
  assertWriteEnabled();
  items_->list = std::move(list);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** chain, AcDbDatabase*) const {
  assertReadEnabled();
  *chain = tarn::host::chainFrom(items_->list);
  return Acad::eOk;
}

void AcDbXrecord::setMergeStyle(AcDb::DuplicateRecordCloning style) {
  assertWriteEnabled();
  mergeStyle_ = style;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeInt16(static_cast<Adesk::Int16>(mergeStyle_));
  return tarn::host::writeItems(*filer, items_->list);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::Int16 style = 0;
  filer->readInt16(&style);
  tarn::host::ResbufItems list;
  if (const Acad::ErrorStatus read = tarn::host::readItems(*filer, list); read != Acad::eOk) {
    return read;
  }
  mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(style);
  items_->list = std::move(list);
  return Acad::eOk;
}
