// Drawing what stands in a block.
#pragma once

#include "acdb.h"
#include "adesk.h"
#include "dbcolor.h"
#include "dbid.h"
#include "gemat3d.h"

class AcDbEntity;
class AcDbLayerTableRecord;
class AcGiSubEntityTraits;
class AcGiWorldDraw;

namespace tarn::host {

/// What an entity takes over from its layer, or from the insertion that it is part of. The colour
/// as AcGiSubEntityTraits::trueColor() gives it.
struct InheritedLook {
  Adesk::UInt32 color = 7;
  AcDbObjectId linetype{};
  AcDb::LineWeight lineWeight = AcDb::kLnWtByLwDefault;
  AcCmTransparency transparency{};
  bool isOff = false;  ///< what takes over this look is not seen
};
InheritedLook lookOf(const AcGiSubEntityTraits& traits);
/// The layer must be open.
ACADHOST_EXPORT InheritedLook lookOf(const AcDbLayerTableRecord& layer);
/// Colour, pattern of lines, line weight and transparency of an open entity, by itself, its layer
/// or its insertion.
ACADHOST_EXPORT void setLook(AcGiSubEntityTraits& traits, const AcDbEntity& entity,
                             const InheritedLook& layer, const InheritedLook& insertion);

/// What layer "0" stands for inside the blocks that `shown` shows: its own layer, and for one that
/// is itself part of a block and on layer "0", that of the insertion around it.
InheritedLook layerZeroWithin(const AcDbEntity& shown);

/// Draws the entities of a block, which `shown` shows, through `toWorld`. Layers and colours are
/// those of the entities; what is by block follows `insertion`, what is on layer "0" the layer of
/// `shown`. Blocks inside one another stop at a depth and at a number of entities that no honest
/// drawing reaches.
void drawBlock(AcGiWorldDraw& draw, const AcDbEntity& shown, AcDbObjectId block,
               const AcGeMatrix3d& toWorld, const InheritedLook& insertion);

/// Sets a colour as AcGiSubEntityTraits::trueColor() gives it.
void setResolvedColor(AcGiSubEntityTraits& traits, Adesk::UInt32 color);

}  // namespace tarn::host
