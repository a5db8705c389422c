// Binary drawing files.
#pragma once

#include <string>
#include <string_view>

#include "adesk.h"
#include "base/result.h"
#include "host/filing/drawingpieces.h"

namespace tarn::host {

/// True when the bytes begin with the mark of a binary drawing.
ACADHOST_EXPORT bool isBinaryDrawing(std::string_view bytes);

/// The same drawing as ASCII, tag by tag: group codes of one byte (R12) and of two, numbers in the
/// shortest text that reads back the same. An error names the file and the place when a value is
/// cut off or a code has no known size; a file that ends between two tags is taken as it is.
ACADHOST_EXPORT Result<std::string> asciiFromBinary(std::string_view bytes,
                                                    const std::string& name);
/// Gives an ASCII drawing out as binary: codes of one byte for R12, of two for later ones; each
/// value of the type of its code. Comments stay out, other programs refuse them there. An error
/// names the line of a value that its type cannot hold.
Status giveAsBinary(const DrawingPieces& pieces, const Ground& ground, const std::string& name,
                    const PieceTaker& take);

}  // namespace tarn::host
