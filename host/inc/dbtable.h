// Tables.
#pragma once

#include "dbblockref.h"

/// A table is seen as the block that was made for it. It can be moved and turned.
class ACADHOST_EXPORT AcDbTable : public AcDbBlockReference {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTable);

 protected:
  /// eNotApplicable for what changes the size of the cells.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
};
