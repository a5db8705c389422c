// Sheets and their viewports: what the commands for them do.
#pragma once

#include "host/editor/space.h"

namespace tarn::host {

void mspaceCommand();
void pspaceCommand();
void layoutCommand();
void mviewCommand();

/// What a viewport shows when it is made: as large as it fits, whatever the viewport's shape, with
/// this part of it left free on each side. The twist in radians.
struct FirstSight {
  GroundBox box;
  double margin = 0;
  double twist = 0;
};

/// A viewport on the sheet that owns `block`, at `place` in sheet coordinates. Null when it cannot
/// be added.
AcDbObjectId appendViewport(AcDbObjectId block, const GroundBox& place, short number,
                            const FirstSight& shown);

/// A sheet that was never shown gets its own viewport and a first one that shows `model`. False
/// when the drawing cannot be changed.
bool prepareSheet(AcDbDatabase& database, const LayoutEntry& sheet, const FirstSight& model);

}  // namespace tarn::host
