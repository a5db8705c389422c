// What a drawing remembers of its selections.
#pragma once

#include <optional>
#include <vector>

#include "dbid.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

using EntityIds = std::vector<AcDbObjectId>;

struct SelectionMemory {
  EntityIds pickFirst;  ///< selected before a command, with grips
  EntityIds previous;   ///< of the command before
  EntityIds choosing;   ///< while a command asks
  EntityIds erased;     ///< by the last ERASE, for OOPS
  /// Where a point or corner that is being asked for begins, for the line or box to the cursor.
  std::optional<GroundPoint> rubberBase, windowCorner;
  /// Snaps that were named for the point asked for now; 0: none.
  int namedSnaps = 0;
  bool pickFirstUsable = false;  ///< the running command takes what was selected before it
};

}  // namespace tarn::host
