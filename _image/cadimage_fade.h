// One image of the entity seen through on the screen, and what the screen showed last, so that
// another opacity needs no pixels of any source.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "_image/view/pixelwindow.h"

namespace tarn::image {

/// An image as it was drawn: its marker's place and its pixels, three bytes each.
struct ShownPixels {
  std::wstring path;
  ImageExtent extent;
  std::optional<PixelRequest> request;  ///< nothing when only its marker was drawn
  std::vector<unsigned char> pixels;
};

class ImageFade {
 public:
  /// Of 0 (not seen) to 1.
  ImageFade(std::wstring path, double opacity) : path_(std::move(path)), opacity_(opacity) {}

  const std::wstring& path() const { return path_; }
  double opacityOf(const std::wstring& path) const { return path == path_ ? opacity_ : 1; }
  /// The next drawing takes what was kept, if the view is still the same.
  void change(double opacity);

  /// A drawing for the screen begins: true when it is to be made of kept(), else what it shows is
  /// to be kept, image by image.
  bool takesKept(const ViewState& view, bool isComplete);
  void keep(const std::wstring& path, const ImageExtent& extent,
            const std::optional<PixelRequest>& request, const unsigned char* pixels);
  const std::vector<ShownPixels>& kept() const { return kept_; }

 private:
  std::wstring path_;
  double opacity_;
  bool takesNext_ = false;
  bool isComplete_ = false;
  ViewState view_;
  std::vector<ShownPixels> kept_;
};

}  // namespace tarn::image
