#pragma once

#include <string>
#include <vector>

#include "inc/iimagedivision.h"

namespace tarn::image {

/// What a user wants to know of an open image, one line each: size, pixel size, coordinate system,
/// bands, pyramid, and what was found odd about it.
std::vector<std::wstring> describeImage(const std::wstring& path, IImageDivision& source);

}  // namespace tarn::image
