// What a drawing remembers of its selections.
#pragma once

#include <vector>

#include "dbid.h"

namespace tarn::host {

using EntityIds = std::vector<AcDbObjectId>;

struct SelectionMemory {
  EntityIds pickFirst;           ///< selected before a command, with grips
  EntityIds previous;            ///< of the command before
  EntityIds choosing;            ///< while a command asks
  EntityIds erased;              ///< by the last ERASE, for OOPS
  bool pickFirstUsable = false;  ///< the running command takes what was selected before it
};

}  // namespace tarn::host
