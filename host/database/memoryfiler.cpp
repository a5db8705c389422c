#include "host/database/memoryfiler.h"

#include <cstring>

#include "acutmem.h"
#include "base/text.h"

AcDbDwgFiler::~AcDbDwgFiler() = default;

Acad::ErrorStatus AcDbDwgFiler::dwgVersion(AcDb::AcDbDwgVersion& version,
                                           AcDb::MaintenanceReleaseVersion& maintenance) const {
  version = AcDb::kDHL_CURRENT;
  maintenance = AcDb::kMReleaseCurrent;
  return Acad::eOk;
}

namespace tarn::host {

Acad::ErrorStatus MemoryFiler::readBytes(void* bytes, Adesk::UIntPtr count) {
  if (status_ != Acad::eOk) return status_;
  if (count > bytes_.size() - position_) return status_ = Acad::eEndOfObject;
  if (count > 0) std::memcpy(bytes, bytes_.data() + position_, count);
  position_ += count;
  return Acad::eOk;
}

Acad::ErrorStatus MemoryFiler::writeBytes(const void* bytes, Adesk::UIntPtr count) {
  if (status_ != Acad::eOk) return status_;
  if (bytes_.size() < position_ + count) bytes_.resize(position_ + count);
  if (count > 0) std::memcpy(bytes_.data() + position_, bytes, count);
  position_ += count;
  return Acad::eOk;
}

Acad::ErrorStatus MemoryFiler::readId(AcDbObjectId* id) {
  Adesk::Int64 value = 0;
  const Acad::ErrorStatus status = read(&value);
  if (status == Acad::eOk) id->setFromOldId(static_cast<Adesk::IntDbId>(value));
  return status;
}

Acad::ErrorStatus MemoryFiler::readHardOwnershipId(AcDbHardOwnershipId* id) {
  return readId(id);
}
Acad::ErrorStatus MemoryFiler::writeHardOwnershipId(const AcDbHardOwnershipId& id) {
  return writeId(id);
}
Acad::ErrorStatus MemoryFiler::readSoftOwnershipId(AcDbSoftOwnershipId* id) {
  return readId(id);
}
Acad::ErrorStatus MemoryFiler::writeSoftOwnershipId(const AcDbSoftOwnershipId& id) {
  return writeId(id);
}
Acad::ErrorStatus MemoryFiler::readHardPointerId(AcDbHardPointerId* id) {
  return readId(id);
}
Acad::ErrorStatus MemoryFiler::writeHardPointerId(const AcDbHardPointerId& id) {
  return writeId(id);
}
Acad::ErrorStatus MemoryFiler::readSoftPointerId(AcDbSoftPointerId* id) {
  return readId(id);
}
Acad::ErrorStatus MemoryFiler::writeSoftPointerId(const AcDbSoftPointerId& id) {
  return writeId(id);
}

Acad::ErrorStatus MemoryFiler::readString(ACHAR** text) {
  Adesk::UInt32 size = 0;
  if (read(&size) != Acad::eOk) return status_;
  if (size > bytes_.size() - position_) return status_ = Acad::eEndOfObject;
  std::string utf8(size, '\0');
  readBytes(utf8.data(), size);
  return acutNewString(toWide(utf8).c_str(), *text);
}

Acad::ErrorStatus MemoryFiler::writeString(const ACHAR* text) {
  const std::string utf8 = toUtf8(text != nullptr ? text : L"");
  write(static_cast<Adesk::UInt32>(utf8.size()));
  return writeBytes(utf8.data(), utf8.size());
}

Acad::ErrorStatus MemoryFiler::readAcDbHandle(AcDbHandle* handle) {
  Adesk::UInt64 value = 0;
  const Acad::ErrorStatus status = read(&value);
  if (status == Acad::eOk) *handle = AcDbHandle(value);
  return status;
}

Acad::ErrorStatus MemoryFiler::writeAcDbHandle(const AcDbHandle& handle) {
  return write(handle.value());
}

Acad::ErrorStatus MemoryFiler::readBool(bool* value) {
  Adesk::UInt8 byte = 0;
  const Acad::ErrorStatus status = read(&byte);
  if (status == Acad::eOk) *value = byte != 0;
  return status;
}

Acad::ErrorStatus MemoryFiler::writeBool(bool value) {
  return write<Adesk::UInt8>(value ? 1 : 0);
}

namespace {

// Points and vectors are files of their coordinates; all or nothing is read.
template <class T, size_t kCount>
Acad::ErrorStatus readAll(MemoryFiler& filer, T* value, double (&coordinates)[kCount]) {
  for (double& coordinate : coordinates) filer.readDouble(&coordinate);
  if (filer.filerStatus() != Acad::eOk) return filer.filerStatus();
  value->x = coordinates[0];
  value->y = coordinates[1];
  if constexpr (kCount == 3) value->z = coordinates[2];
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus MemoryFiler::readPoint2d(AcGePoint2d* point) {
  double coordinates[2] = {};
  return readAll(*this, point, coordinates);
}
Acad::ErrorStatus MemoryFiler::readPoint3d(AcGePoint3d* point) {
  double coordinates[3] = {};
  return readAll(*this, point, coordinates);
}
Acad::ErrorStatus MemoryFiler::readVector2d(AcGeVector2d* vector) {
  double coordinates[2] = {};
  return readAll(*this, vector, coordinates);
}
Acad::ErrorStatus MemoryFiler::readVector3d(AcGeVector3d* vector) {
  double coordinates[3] = {};
  return readAll(*this, vector, coordinates);
}
Acad::ErrorStatus MemoryFiler::writePoint2d(const AcGePoint2d& point) {
  write(point.x);
  return write(point.y);
}
Acad::ErrorStatus MemoryFiler::writePoint3d(const AcGePoint3d& point) {
  write(point.x);
  write(point.y);
  return write(point.z);
}
Acad::ErrorStatus MemoryFiler::writeVector2d(const AcGeVector2d& vector) {
  write(vector.x);
  return write(vector.y);
}
Acad::ErrorStatus MemoryFiler::writeVector3d(const AcGeVector3d& vector) {
  write(vector.x);
  write(vector.y);
  return write(vector.z);
}

Acad::ErrorStatus MemoryFiler::seek(Adesk::Int64 offset, int method) {
  const auto size = static_cast<Adesk::Int64>(bytes_.size());
  const Adesk::Int64 from = method == 0 ? 0 : method == 1 ? tell() : size;
  if (method < 0 || method > 2 || from + offset < 0 || from + offset > size) {
    return Acad::eInvalidInput;
  }
  position_ = static_cast<size_t>(from + offset);
  return Acad::eOk;
}

}  // namespace tarn::host
