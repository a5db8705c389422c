// The two values of a drawing that tune how much image data is fetched.
#pragma once

#include "commoncode/cadutil/dictrecord.h"

namespace tarn::image {

/// Where the values stand in the host's working database.
cad::RecordPlace clarityRatioPlace();
cad::RecordPlace offsetRatioPlace();

/// Divisor of the number of cells that are fetched: the stored value, 1 when there is none or it is
/// below 1.
int clarityRatio();

/// How far the fetched area reaches beyond the view: the stored value, 1.0 when there is none or it
/// is not at least 1.0.
double offsetRatio();

}  // namespace tarn::image
