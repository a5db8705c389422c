// World files.
#include <cmath>

#include "components/raster/georeference.h"
#include "fuzz/entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto t = tarn::raster::parseWorldFile({reinterpret_cast<const char*>(data), size});
  if (t) require(std::isfinite(t->x0 + t->y0) && t->a * t->e - t->b * t->d != 0);
  return 0;
}
