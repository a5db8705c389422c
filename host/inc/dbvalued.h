// Entities that are nothing but their values.
#pragma once

#include <utility>

#include "dbents.h"

/// Holds, files and copies the values; a class over it draws and moves them.
template <class Held>
class ACADHOST_EXPORT AcDbValuedEntity : public AcDbEntity {
 public:
  using Values = Held;

  /// Valid until they are changed.
  const Values& values() const {
    assertReadEnabled();
    return values_;
  }
  Acad::ErrorStatus setValues(Values values) {
    assertWriteEnabled();
    values_ = std::move(values);
    recordGraphicsModified();
    return Acad::eOk;
  }

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  /// The box around what is drawn.
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;

  Values values_;
};
