// Files of the form NAME.aux.xml.
#include <cmath>

#include "components/raster/gdalaccess.h"
#include "components/raster/georeference.h"
#include "fuzz/entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarn::raster::prepareGdal();
  const tarn::raster::GdalErrors quiet;
  const auto facts =
      tarn::raster::parseAuxFile(std::string(reinterpret_cast<const char*>(data), size));
  if (facts.transform) require(std::isfinite(facts.transform->x0 + facts.transform->y0));
  return 0;
}
