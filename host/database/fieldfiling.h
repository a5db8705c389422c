// Filing of a class's members by one list of them, for both directions.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "dbfiler.h"
#include "host/database/recordfiling.h"

namespace tarn::host {

/// A class says eachField(Object&, Filing&) once; `filing.all(members...)` files a number, a point,
/// a text, an id, or a vector of these and of classes that have an eachField of their own.
class FieldWriter {
 public:
  explicit FieldWriter(AcDbDwgFiler& filer) : filer_(filer) {}
  template <typename T>
  void operator()(const T& value) {
    if constexpr (std::is_same_v<T, AcDbObjectId>) {
      filer_.writeHardPointerId(value);
    } else if constexpr (std::is_same_v<T, std::wstring>) {
      filer_.writeString(value.c_str());
    } else if constexpr (std::is_class_v<T> && !std::is_same_v<T, AcGePoint3d> &&
                         !std::is_same_v<T, AcGeVector3d>) {
      eachField(const_cast<T&>(value), *this);  // one list for both ways; writing changes nothing
    } else {
      filer_.writeItem(value);
    }
  }
  template <typename... T>
  void all(const T&... values) {
    ((*this)(values), ...);
  }
  template <typename T>
  void operator()(const std::vector<T>& values) {
    filer_.writeInt32(static_cast<Adesk::Int32>(values.size()));
    for (const T& value : values) (*this)(value);
  }

 private:
  AcDbDwgFiler& filer_;
};

class FieldReader {
 public:
  explicit FieldReader(AcDbDwgFiler& filer) : filer_(filer) {}
  template <typename T>
  void operator()(T& value) {
    if constexpr (std::is_same_v<T, AcDbObjectId>) {
      filer_.readHardPointerId(&value);
    } else if constexpr (std::is_same_v<T, std::wstring>) {
      readText(filer_, value);
    } else if constexpr (std::is_class_v<T> && !std::is_same_v<T, AcGePoint3d> &&
                         !std::is_same_v<T, AcGeVector3d>) {
      eachField(value, *this);
    } else {
      filer_.readItem(&value);
    }
  }
  template <typename... T>
  void all(T&... values) {
    ((*this)(values), ...);
  }
  /// The vector changes only when all of it could be read.
  template <typename T>
  void operator()(std::vector<T>& values) {
    Adesk::Int32 count = 0;
    filer_.readInt32(&count);
    std::vector<T> read;
    for (Adesk::Int32 i = 0; i < count && filer_.filerStatus() == Acad::eOk; ++i) {
      T value{};
      (*this)(value);
      read.push_back(std::move(value));
    }
    if (filer_.filerStatus() == Acad::eOk) values = std::move(read);
  }

 private:
  AcDbDwgFiler& filer_;
};

}  // namespace tarn::host
