// How long work tells how far it has come.
#pragma once

#include <functional>

namespace tarn::raster {

/// Called with the part done, 0 to 1, on the thread that started the work; false stops it.
using Progress = std::function<bool(double)>;

}  // namespace tarn::raster
