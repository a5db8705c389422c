// Points that choose something.
#pragma once

#include <string>

#include "adsdef.h"

namespace tarn::host {

/// As acedGetPoint, but a picked point is not snapped to entities. `corner`: the other corner of a
/// window, or null.
int askPickedPoint(const std::string& prompt, ads_point value, const ads_real* corner = nullptr);

}  // namespace tarn::host
