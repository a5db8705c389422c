#pragma once

#include <string>
#include <vector>

#include "inc/iimagedivision.h"

class TarnClientManager;

namespace tarn::image {

/// What a user wants to know of an open image, one line each: size, pixel size, coordinate system,
/// bands, pyramid, and what was found odd about it.
std::vector<std::wstring> describeImage(const std::wstring& path, IImageDivision& source);
/// The same of an image of a server: size and place, and what went wrong last, without asking the
/// server.
std::vector<std::wstring> describeServerImage(TarnClientManager& client);

}  // namespace tarn::image
