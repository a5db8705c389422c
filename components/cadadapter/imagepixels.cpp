#include "components/cadadapter/imagepixels.h"

#include <algorithm>

#include "base/path.h"

namespace kel {

namespace {

constexpr const char* kSource = "components/cadadapter/imagepixels";
constexpr size_t kMostOpen = 32;

}  // namespace

/// A file that cannot be opened is not tried again before others have taken its place.
IImageDivision* ImagePixels::sourceOf(const std::string& path) {
  const auto known =
      std::find_if(open_.begin(), open_.end(), [&](const Open& open) { return open.path == path; });
  if (known != open_.end()) {
    open_.splice(open_.begin(), open_, known);
  } else {
    Open opened;
    opened.path = path;
    opened.source = Object<IImageDivision>("N", kSource, __LINE__);
    if (!opened.source.isNull()) {
      opened.source->setNoPyramid(true);
      opened.good = opened.source->init(path.c_str(), tarn::folderOf(path).c_str(), false);
    }
    open_.push_front(std::move(opened));
    if (open_.size() > kMostOpen) open_.pop_back();
  }
  return open_.front().good ? open_.front().source.get() : nullptr;
}

bool ImagePixels::size(const std::string& path, int& width, int& height) {
  IImageDivision* source = sourceOf(path);
  if (source == nullptr) return false;
  width = source->width();
  height = source->height();
  return width > 0 && height > 0;
}

bool ImagePixels::read(const std::string& path, int x, int y, int width, int height,
                       double reduction, unsigned char* rgb) {
  IImageDivision* source = sourceOf(path);
  return source != nullptr && source->readRegion(x, y, width, height, reduction, reduction, rgb);
}

}  // namespace kel
