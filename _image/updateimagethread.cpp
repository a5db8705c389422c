#include "_image/updateimagethread.h"

#include <cmath>
#include <cstddef>

UpdateImageThread::Request UpdateImageThread::request;
UpdateImageThread UpdateImageThread::pool[4];

UpdateImageThread::~UpdateImageThread() = default;

void UpdateImageThread::run() {
  if (m_stopped) return;
  const int32_t height = request.height;
  int32_t row = request.originRow;
  int32_t stripHeight = 0;
  int strip = 3;
  if (currentThread() == &pool[0]) {
    strip = 0;
  } else if (currentThread() == &pool[1]) {
    strip = 1;
    // Deliberate: the strip's height is not known yet and still 0, so worker 1 reads the rows of
    // worker 0 into its own strip.
    row -= stripHeight / 4;
  } else if (currentThread() == &pool[2]) {
    strip = 2;
    row -= height / 2;
  } else {
    row -= 3 * height / 4;
  }
  stripHeight = height / 4;
  const double resolution = std::fabs(request.resolution);
  unsigned char* destination =
      request.buffer + static_cast<std::ptrdiff_t>(strip) * request.width * stripHeight;
  request.source->readBlock(request.originColumn, row, request.width, stripHeight, resolution,
                            resolution, &destination);
  sleep(1);
}
