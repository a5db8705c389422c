// JPEG streams as tiles hold them; the first four bytes choose size, colours and shared tables.
#include <algorithm>
#include <vector>

#include "components/raster/jpegtile.h"
#include "fuzz/entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tarn::raster;
  if (size < 4) return 0;
  const int width = data[0] + 1, height = data[1] + 1;
  const auto colours = static_cast<JpegColours>(data[2] % 3);
  const std::vector<uint8_t> all(data + 4, data + size);
  const auto middle = all.begin() + static_cast<ptrdiff_t>(std::min<size_t>(data[3], all.size()));
  const std::vector<uint8_t> tables(all.begin(), middle), stream(middle, all.end());
  std::vector<uint8_t> out(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  decodeJpegTile(stream, tables, colours, width, height, out.data());
  return 0;
}
