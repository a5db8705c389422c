// What a pyramid's metadata says about the image that it was made from.
#include "components/raster/pyramidstamp.h"
#include "fuzz/entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tarn::raster;
  const auto mark = markInMetadata(std::string(reinterpret_cast<const char*>(data), size));
  if (!mark) return 0;
  const auto again = markInMetadata(markMetadata(*mark));
  require(again && again->stamp == mark->stamp);
  return 0;
}
