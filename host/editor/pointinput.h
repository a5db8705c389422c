// Points that choose something.
#pragma once

#include <string>

#include "adsdef.h"

namespace tarn::host {

/// As acedGetPoint, but a picked point is not snapped to entities.
int askPickedPoint(const std::string& prompt, ads_point value);

}  // namespace tarn::host
