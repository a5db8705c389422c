// Drawing files, as text and binary: what is read is written, and the same is read from that and
// written again to the byte.
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "fuzz/entry.h"
#include "host/filing/drawingfile.h"

namespace {

/// Every entity of the model counts as changed and is written anew.
void changeAll(AcDbDatabase& database) {
  AcDbObjectId model;
  const AcDbObjectPointer<AcDbBlockTable> blocks(database.blockTableId(), AcDb::kForRead);
  if (blocks.openStatus() == Acad::eOk) blocks->getAt(ACDB_MODEL_SPACE, model);
  const AcDbObjectPointer<AcDbBlockTableRecord> space(model, AcDb::kForRead);
  if (space.openStatus() != Acad::eOk) return;
  for (const AcDbObjectId& id : space->entityIds()) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (entity.openStatus() == Acad::eOk) entity->assertWriteEnabled();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using tarn::host::DrawingFile;
  const auto file = DrawingFile::fromBytes({reinterpret_cast<const char*>(data), size}, "drawing");
  if (!file) return 0;
  changeAll(file.value()->database());
  const auto bytes = file.value()->bytes();
  require(bytes.isOk());
  const auto again = DrawingFile::fromBytes(bytes.value(), "drawing");
  require(again.isOk());
  require(again.value()->database().approxNumObjects() ==
          file.value()->database().approxNumObjects());
  changeAll(again.value()->database());
  const auto same = again.value()->bytes();
  require(same.isOk() && same.value() == bytes.value());
  return 0;
}
