// Dimensions that no block was made for.
#pragma once

#include "dbdim.h"

class AcGiWorldDraw;

namespace tarn::host {

/// Draws lines, arrows and text as the points and the style's lengths say: straight dimensions with
/// the lines to what is measured, angles with their arc, radii, diameters and ordinates with
/// theirs.
void drawPlainDimension(AcGiWorldDraw& draw, const AcDbDimension::Values& values);

}  // namespace tarn::host
