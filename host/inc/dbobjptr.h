// An open object that closes itself.
#pragma once

#include "dbmain.h"

/// Opens in the constructor, closes in the destructor; openStatus() tells whether it worked.
template <class T>
class AcDbObjectPointer {
 public:
  AcDbObjectPointer() = default;
  AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
    open(id, mode, openErased);
  }
  AcDbObjectPointer(const AcDbObjectPointer&) = delete;
  AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
  ~AcDbObjectPointer() { close(); }

  Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
    close();
    return status_ = acdbOpenObject(object_, id, mode, openErased);
  }
  Acad::ErrorStatus close() {
    if (object_ == nullptr) return Acad::eNullObjectPointer;
    T* const closing = object_;
    object_ = nullptr;
    status_ = Acad::eNullObjectPointer;
    return closing->close();
  }
  Acad::ErrorStatus openStatus() const { return status_; }
  T* object() const { return object_; }
  T* operator->() const { return object_; }

 private:
  T* object_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eNullObjectPointer;
};
