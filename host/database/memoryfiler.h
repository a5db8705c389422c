// A binary filer over bytes in memory: snapshots of objects for undo, copies and tests.
#pragma once

#include <string>
#include <vector>

#include "dbfiler.h"

namespace tarn::host {

/// Writes append at the position (they overwrite after a seek), reads advance it; one position for
/// both. Numbers stand little-endian, texts as UTF-8 with a length, ids as their session value.
/// Reading past the end gives eEndOfObject, now and from then on.
class ACADHOST_EXPORT MemoryFiler : public AcDbDwgFiler {
 public:
  explicit MemoryFiler(AcDb::FilerType type = AcDb::kUndoFiler) : type_(type) {}
  /// A filer that reads bytes written by another one.
  explicit MemoryFiler(std::vector<char> bytes, AcDb::FilerType type = AcDb::kUndoFiler)
      : type_(type), bytes_(std::move(bytes)) {}

  const std::vector<char>& bytes() const { return bytes_; }

  Acad::ErrorStatus filerStatus() const override { return status_; }
  AcDb::FilerType filerType() const override { return type_; }
  void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
  void resetFilerStatus() override { status_ = Acad::eOk; }

  Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override;
  Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) override;
  Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override;
  Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override;
  Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override;
  Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) override;
  Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override;
  Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) override;

  Acad::ErrorStatus readString(ACHAR** text) override;
  Acad::ErrorStatus writeString(const ACHAR* text) override;
  Acad::ErrorStatus readBytes(void* bytes, Adesk::UIntPtr count) override;
  Acad::ErrorStatus writeBytes(const void* bytes, Adesk::UIntPtr count) override;
  Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) override;
  Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& handle) override;

  Acad::ErrorStatus readBool(bool* value) override;
  Acad::ErrorStatus writeBool(bool value) override;
  Acad::ErrorStatus readInt8(Adesk::Int8* value) override { return read(value); }
  Acad::ErrorStatus writeInt8(Adesk::Int8 value) override { return write(value); }
  Acad::ErrorStatus readInt16(Adesk::Int16* value) override { return read(value); }
  Acad::ErrorStatus writeInt16(Adesk::Int16 value) override { return write(value); }
  Acad::ErrorStatus readInt32(Adesk::Int32* value) override { return read(value); }
  Acad::ErrorStatus writeInt32(Adesk::Int32 value) override { return write(value); }
  Acad::ErrorStatus readInt64(Adesk::Int64* value) override { return read(value); }
  Acad::ErrorStatus writeInt64(Adesk::Int64 value) override { return write(value); }
  Acad::ErrorStatus readUInt8(Adesk::UInt8* value) override { return read(value); }
  Acad::ErrorStatus writeUInt8(Adesk::UInt8 value) override { return write(value); }
  Acad::ErrorStatus readUInt16(Adesk::UInt16* value) override { return read(value); }
  Acad::ErrorStatus writeUInt16(Adesk::UInt16 value) override { return write(value); }
  Acad::ErrorStatus readUInt32(Adesk::UInt32* value) override { return read(value); }
  Acad::ErrorStatus writeUInt32(Adesk::UInt32 value) override { return write(value); }
  Acad::ErrorStatus readUInt64(Adesk::UInt64* value) override { return read(value); }
  Acad::ErrorStatus writeUInt64(Adesk::UInt64 value) override { return write(value); }
  Acad::ErrorStatus readDouble(double* value) override { return read(value); }
  Acad::ErrorStatus writeDouble(double value) override { return write(value); }
  Acad::ErrorStatus readPoint2d(AcGePoint2d* point) override;
  Acad::ErrorStatus writePoint2d(const AcGePoint2d& point) override;
  Acad::ErrorStatus readPoint3d(AcGePoint3d* point) override;
  Acad::ErrorStatus writePoint3d(const AcGePoint3d& point) override;
  Acad::ErrorStatus readVector2d(AcGeVector2d* vector) override;
  Acad::ErrorStatus writeVector2d(const AcGeVector2d& vector) override;
  Acad::ErrorStatus readVector3d(AcGeVector3d* vector) override;
  Acad::ErrorStatus writeVector3d(const AcGeVector3d& vector) override;

  Acad::ErrorStatus seek(Adesk::Int64 offset, int method) override;
  Adesk::Int64 tell() const override { return static_cast<Adesk::Int64>(position_); }

 private:
  template <class T>
  Acad::ErrorStatus read(T* value) {
    T got{};
    const Acad::ErrorStatus status = readBytes(&got, sizeof got);
    if (status == Acad::eOk) *value = got;
    return status;
  }
  template <class T>
  Acad::ErrorStatus write(T value) {
    return writeBytes(&value, sizeof value);
  }
  Acad::ErrorStatus readId(AcDbObjectId* id);
  Acad::ErrorStatus writeId(const AcDbObjectId& id) { return write<Adesk::Int64>(id.asOldId()); }

  AcDb::FilerType type_;
  std::vector<char> bytes_;
  size_t position_ = 0;
  Acad::ErrorStatus status_ = Acad::eOk;
};

}  // namespace tarn::host
