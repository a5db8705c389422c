// Sheets and their viewports: what the commands for them do.
#pragma once

#include "host/editor/space.h"

namespace tarn::host {

void mspaceCommand();
void pspaceCommand();
void layoutCommand();
void mviewCommand();

/// A viewport on the sheet that owns `block`, at `place` in sheet coordinates, showing all that
/// `shown` shows. Null when it cannot be added.
AcDbObjectId appendViewport(AcDbObjectId block, const GroundBox& place, short number,
                            const ViewState& shown);

/// A sheet that was never shown gets its own viewport and a first one that shows `model`. False
/// when the drawing cannot be changed.
bool prepareSheet(AcDbDatabase& database, const LayoutEntry& sheet, const ViewState& model);

}  // namespace tarn::host
