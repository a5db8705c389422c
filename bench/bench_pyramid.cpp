// bench_pyramid IMAGE: builds the pyramid beside the image as the program does, synced, and prints
// the seconds.
#include <chrono>
#include <cstdio>
#include <string>

#include "base/path.h"
#include "components/raster/rasterimage.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: bench_pyramid IMAGE\n");
    return 2;
  }
  const std::string path = argv[1], folder = tarn::folderOf(path);
  auto opened = tarn::raster::RasterImage::open(path, {{folder, ""}, true});
  std::string note;
  const auto start = std::chrono::steady_clock::now();
  const tarn::Status built =
      opened ? opened.value()->buildPyramid({folder, ""}, nullptr, note) : opened.status();
  if (!built) {
    std::fprintf(stderr, "%s\n", built.message().c_str());
    return 1;
  }
  std::printf("%.3f\n",
              std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  return 0;
}
