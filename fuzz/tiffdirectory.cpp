// The directories of TIFF files.
#include <sys/mman.h>
#include <unistd.h>

#include "components/raster/tiffdirectory.h"
#include "fuzz/entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int handle = memfd_create("tiff", MFD_CLOEXEC);
  require(ftruncate(handle, 0) == 0 && pwrite(handle, data, size, 0) == static_cast<ssize_t>(size));
  tarn::RandomFile file;
  require(file.open("/proc/self/fd/" + std::to_string(handle)).isOk());
  const auto directories = tarn::raster::readTiffDirectories(file, size);
  if (!directories) return 0;
  for (const tarn::raster::TiffDirectory& d : directories.value()) {
    const uint64_t blocks = uint64_t{d.blocksAcross()} * d.blocksDown();
    if (d.isPlainPicture()) require(d.offsets.size() == blocks && d.byteCounts.size() == blocks);
  }
  return 0;
}
