// Drawing what stands in a block.
#pragma once

#include "adesk.h"
#include "dbid.h"
#include "gemat3d.h"

class AcGiWorldDraw;

namespace tarn::host {

/// Draws the entities of a block through `toWorld`. Layers and colours are those of the entities;
/// what is by block, and what is on layer "0", follows the colour of the insertion. Blocks inside
/// one another stop at a depth and at a number of entities that no honest drawing reaches.
void drawBlock(AcGiWorldDraw& draw, AcDbObjectId block, const AcGeMatrix3d& toWorld,
               Adesk::UInt16 insertColor);

}  // namespace tarn::host
