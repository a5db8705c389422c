// In which order blocks are drawn.
#pragma once

#include "dbid.h"

class AcDbBlockTableRecord;
class AcDbSortentsTable;

namespace tarn::host {

/// The entities of a block, erased ones too, in the order in which they are drawn.
ACADHOST_EXPORT AcDbObjectIdArray drawnOrder(const AcDbBlockTableRecord& block);

}  // namespace tarn::host
