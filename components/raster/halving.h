// Halves of pictures: each pixel the average of two by two. Pure black and pure white pixels mean
// "nothing here" and are left out.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::raster {

/// A picture inside a larger one: `width * height` pixels of `channels` bytes, `stride` bytes from
/// row to row.
struct PictureView {
  const uint8_t* pixels = nullptr;
  int width = 0;
  int height = 0;
  size_t stride = 0;
  int channels = 3;
  /// Of the four pixels behind a half pixel so many are content, or it is nothing.
  int leastContent = 2;
};

/// Writes the half (sizes rounded up; a pixel over at the edge counts twice) with `stride` bytes
/// from row to row. `hasKeys`: the source has pure black or white pixels. A half pixel is black
/// when fewer than `leastContent` of its four are content; an average of content never is pure
/// black or white. `roundUp` chooses how an average exactly between two values is rounded: taking
/// turns from level to level keeps a pyramid from growing brighter. Returns true when the result
/// has keys.
bool halve(const PictureView& source, bool hasKeys, bool roundUp, uint8_t* out, size_t stride);

}  // namespace tarn::raster
