// Pixels for the host's own image entities, from the framework's image source.
#pragma once

#include <list>
#include <string>

#include "inc/iimagedivision.h"
#include "tarnimagepixels.h"

namespace kel {

/// Keeps the sources of the images used last open. Nothing is built beside the files.
class ImagePixels final : public TarnImagePixels {
 public:
  bool size(const std::string& path, int& width, int& height) override;
  bool read(const std::string& path, int x, int y, int width, int height, double reduction,
            unsigned char* rgb) override;
  void closeAll() { open_.clear(); }

 private:
  struct Open {
    std::string path;
    Object<IImageDivision> source;
    bool good = false;
  };
  IImageDivision* sourceOf(const std::string& path);

  std::list<Open> open_;  ///< the one used last first
};

}  // namespace kel
