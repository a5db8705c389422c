// What was copied last: a drawing of its own, so that it outlives the one that it came from.
#pragma once

#include <memory>

#include "dbmain.h"
#include "gepnt3d.h"

namespace tarn::host {

struct Clipboard {
  std::unique_ptr<AcDbDatabase> drawing;  ///< null while nothing was copied
  AcGePoint3d base;                       ///< lower left of the entities
};

}  // namespace tarn::host
