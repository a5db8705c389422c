// Pixels of image files for the host's own image entities, from whoever can read such files.
#pragma once

#include <string>

#include "adesk.h"

class TarnImagePixels {
 public:
  virtual ~TarnImagePixels() = default;
  /// The size in pixels of the image file, whose path is UTF-8. False when it cannot be read.
  virtual bool size(const std::string& path, int& width, int& height) = 0;
  /// Fills `rgb` with width * height pixels of red, green and blue, the top row first. Each covers
  /// `reduction` * `reduction` pixels of the image (1 and more); the first begins at (x, y). Cells
  /// outside the image are black. False when nothing could be read.
  virtual bool read(const std::string& path, int x, int y, int width, int height, double reduction,
                    unsigned char* rgb) = 0;
};

/// Not owned; null takes it away.
ACADHOST_EXPORT void tarnHostSetImagePixels(TarnImagePixels* pixels);
/// Null while there is nobody.
ACADHOST_EXPORT TarnImagePixels* tarnHostImagePixels();
