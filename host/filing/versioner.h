// A drawing in another version.
#pragma once

#include <string_view>

#include "base/result.h"
#include "host/filing/drawingpieces.h"

namespace tarn::host {

/// An error for a drawing of R12, and when the bodies of solids would be lost, which versions
/// before and after R2013 have in different forms.
Status canBeVersion(const TagDocument& document, std::string_view version);

/// Gives a drawing of R13 or later out as one of savedVersions(): its objects in the same number
/// and order, without the values and variables that the version does not know, texts in its
/// encoding (what a code page lacks as "\U+XXXX"). Returns how many values are left out. The pieces
/// are asked for twice.
Result<size_t> giveAsVersion(const DrawingPieces& pieces, const Ground& ground,
                             std::string_view version, const PieceTaker& take);

}  // namespace tarn::host
