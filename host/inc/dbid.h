// Identity of objects: handles within a drawing, ids within a session.
#pragma once

#include "acarray.h"
#include "acdb.h"
#include "adesk.h"

class AcDbDatabase;
class AcDbStub;
class AcRxClass;

/// 64-bit number of an object in its drawing; 0 is none.
class ACADHOST_EXPORT AcDbHandle {
 public:
  AcDbHandle() = default;
  explicit AcDbHandle(Adesk::UInt64 value) : value_(value) {}
  /// Hexadecimal digits; anything else gives the null handle.
  explicit AcDbHandle(const ACHAR* digits);

  Adesk::UInt64 value() const { return value_; }
  bool isNull() const { return value_ == 0; }
  /// Hexadecimal digits, upper case, without leading zeros. False when they do not fit.
  bool getIntoAsciiBuffer(ACHAR* buffer, size_t capacity) const;
  bool operator==(const AcDbHandle& other) const { return value_ == other.value_; }
  bool operator!=(const AcDbHandle& other) const { return value_ != other.value_; }
  bool operator<(const AcDbHandle& other) const { return value_ < other.value_; }

 private:
  Adesk::UInt64 value_ = 0;
};

/// Names an object of an open drawing. Copied freely. An id kept after its drawing was closed stays
/// harmless: opening it gives ePermanentlyErased.
class AcDbObjectId {
 public:
  constexpr AcDbObjectId() = default;
  explicit constexpr AcDbObjectId(AcDbStub* target) : stub_(target) {}
  static const AcDbObjectId kNull;

  bool isNull() const { return stub_ == nullptr; }
  AcDbObjectId& setNull() {
    stub_ = nullptr;
    return *this;
  }
  /// True when it names an object of an open drawing, erased or not.
  ACADHOST_EXPORT bool isValid() const;
  ACADHOST_EXPORT bool isErased() const;
  bool isResident() const { return isValid(); }
  /// Null for an id that is not valid.
  ACADHOST_EXPORT AcDbDatabase* database() const;
  ACADHOST_EXPORT AcDbHandle handle() const;
  ACADHOST_EXPORT const AcRxClass* objectClass() const;

  Adesk::IntDbId asOldId() const { return reinterpret_cast<Adesk::IntDbId>(stub_); }
  AcDbObjectId& setFromOldId(Adesk::IntDbId old) {
    // Entity names carry ids as integers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    stub_ = reinterpret_cast<AcDbStub*>(old);
    return *this;
  }
  bool operator==(const AcDbObjectId& other) const { return stub_ == other.stub_; }
  bool operator!=(const AcDbObjectId& other) const { return stub_ != other.stub_; }
  bool operator<(const AcDbObjectId& other) const { return stub_ < other.stub_; }
  operator AcDbStub*() const { return stub_; }

 private:
  AcDbStub* stub_ = nullptr;
};

inline constexpr AcDbObjectId AcDbObjectId::kNull{};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;
using AcDbHardOwnershipId = AcDbObjectId;
using AcDbSoftOwnershipId = AcDbObjectId;
using AcDbHardPointerId = AcDbObjectId;
using AcDbSoftPointerId = AcDbObjectId;
