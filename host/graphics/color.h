// Colour indices of entities as screen colours.
#pragma once

#include <QColor>

#include "adesk.h"

namespace tarn::host {

/// The colour of an index 1 to 255, or a true colour as in LineItem. Index 7 is the opposite of the
/// background, black or white. Other indices are taken as 7.
ACADHOST_EXPORT QRgb colorOfIndex(unsigned index, QRgb background);

}  // namespace tarn::host
