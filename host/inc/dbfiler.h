// Binary filers: objects write themselves to them and read themselves back.
#pragma once

#include "acdb.h"
#include "dbid.h"
#include "gepnt2d.h"
#include "gepnt3d.h"
#include "gevec2d.h"
#include "gevec3d.h"

/// Items are read in the order in which they were written. After the first error every read and
/// write returns that error and changes nothing.
class ACADHOST_EXPORT AcDbDwgFiler {
 public:
  AcDbDwgFiler() = default;
  AcDbDwgFiler(const AcDbDwgFiler&) = delete;
  AcDbDwgFiler& operator=(const AcDbDwgFiler&) = delete;
  virtual ~AcDbDwgFiler();

  virtual Acad::ErrorStatus filerStatus() const = 0;
  virtual AcDb::FilerType filerType() const = 0;
  virtual void setFilerStatus(Acad::ErrorStatus status) = 0;
  virtual void resetFilerStatus() = 0;
  virtual Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                       AcDb::MaintenanceReleaseVersion& maintenance) const;

  virtual Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) = 0;
  virtual Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) = 0;
  virtual Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) = 0;
  virtual Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) = 0;
  virtual Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) = 0;
  virtual Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) = 0;
  virtual Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) = 0;
  virtual Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) = 0;

  /// The text is the caller's; acutDelString frees it. An earlier text in *text is not freed.
  virtual Acad::ErrorStatus readString(ACHAR** text) = 0;
  virtual Acad::ErrorStatus writeString(const ACHAR* text) = 0;
  virtual Acad::ErrorStatus readBytes(void* bytes, Adesk::UIntPtr count) = 0;
  virtual Acad::ErrorStatus writeBytes(const void* bytes, Adesk::UIntPtr count) = 0;
  virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) = 0;
  virtual Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& handle) = 0;

  virtual Acad::ErrorStatus readBool(bool* value) = 0;
  virtual Acad::ErrorStatus writeBool(bool value) = 0;
  virtual Acad::ErrorStatus readInt8(Adesk::Int8* value) = 0;
  virtual Acad::ErrorStatus writeInt8(Adesk::Int8 value) = 0;
  virtual Acad::ErrorStatus readInt16(Adesk::Int16* value) = 0;
  virtual Acad::ErrorStatus writeInt16(Adesk::Int16 value) = 0;
  virtual Acad::ErrorStatus readInt32(Adesk::Int32* value) = 0;
  virtual Acad::ErrorStatus writeInt32(Adesk::Int32 value) = 0;
  virtual Acad::ErrorStatus readInt64(Adesk::Int64* value) = 0;
  virtual Acad::ErrorStatus writeInt64(Adesk::Int64 value) = 0;
  virtual Acad::ErrorStatus readUInt8(Adesk::UInt8* value) = 0;
  virtual Acad::ErrorStatus writeUInt8(Adesk::UInt8 value) = 0;
  virtual Acad::ErrorStatus readUInt16(Adesk::UInt16* value) = 0;
  virtual Acad::ErrorStatus writeUInt16(Adesk::UInt16 value) = 0;
  virtual Acad::ErrorStatus readUInt32(Adesk::UInt32* value) = 0;
  virtual Acad::ErrorStatus writeUInt32(Adesk::UInt32 value) = 0;
  virtual Acad::ErrorStatus readUInt64(Adesk::UInt64* value) = 0;
  virtual Acad::ErrorStatus writeUInt64(Adesk::UInt64 value) = 0;
  virtual Acad::ErrorStatus readDouble(double* value) = 0;
  virtual Acad::ErrorStatus writeDouble(double value) = 0;
  virtual Acad::ErrorStatus readPoint2d(AcGePoint2d* point) = 0;
  virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d& point) = 0;
  virtual Acad::ErrorStatus readPoint3d(AcGePoint3d* point) = 0;
  virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d& point) = 0;
  virtual Acad::ErrorStatus readVector2d(AcGeVector2d* vector) = 0;
  virtual Acad::ErrorStatus writeVector2d(const AcGeVector2d& vector) = 0;
  virtual Acad::ErrorStatus readVector3d(AcGeVector3d* vector) = 0;
  virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d& vector) = 0;

  /// Position in bytes; `method` 0 from the start, 1 from here, 2 from the end.
  virtual Acad::ErrorStatus seek(Adesk::Int64 offset, int method) = 0;
  virtual Adesk::Int64 tell() const = 0;

  /// By the type of the value.
  Acad::ErrorStatus readItem(bool* v) { return readBool(v); }
  Acad::ErrorStatus readItem(Adesk::Int16* v) { return readInt16(v); }
  Acad::ErrorStatus readItem(Adesk::Int32* v) { return readInt32(v); }
  Acad::ErrorStatus readItem(Adesk::Int64* v) { return readInt64(v); }
  Acad::ErrorStatus readItem(Adesk::UInt8* v) { return readUInt8(v); }
  Acad::ErrorStatus readItem(Adesk::UInt16* v) { return readUInt16(v); }
  Acad::ErrorStatus readItem(Adesk::UInt32* v) { return readUInt32(v); }
  Acad::ErrorStatus readItem(double* v) { return readDouble(v); }
  Acad::ErrorStatus readItem(ACHAR** v) { return readString(v); }
  Acad::ErrorStatus readItem(AcGePoint3d* v) { return readPoint3d(v); }
  Acad::ErrorStatus readItem(AcGeVector3d* v) { return readVector3d(v); }
  Acad::ErrorStatus writeItem(bool v) { return writeBool(v); }
  Acad::ErrorStatus writeItem(Adesk::Int16 v) { return writeInt16(v); }
  Acad::ErrorStatus writeItem(Adesk::Int32 v) { return writeInt32(v); }
  Acad::ErrorStatus writeItem(Adesk::Int64 v) { return writeInt64(v); }
  Acad::ErrorStatus writeItem(Adesk::UInt8 v) { return writeUInt8(v); }
  Acad::ErrorStatus writeItem(Adesk::UInt16 v) { return writeUInt16(v); }
  Acad::ErrorStatus writeItem(Adesk::UInt32 v) { return writeUInt32(v); }
  Acad::ErrorStatus writeItem(double v) { return writeDouble(v); }
  Acad::ErrorStatus writeItem(const ACHAR* v) { return writeString(v); }
  Acad::ErrorStatus writeItem(const AcGePoint3d& v) { return writePoint3d(v); }
  Acad::ErrorStatus writeItem(const AcGeVector3d& v) { return writeVector3d(v); }
};
