// Names of images on servers: "HOST:PORT/DIR:DIR:FILE.tif", which a display name and "%$#@" may
// precede.
#pragma once

#include <optional>
#include <string>

namespace tarn::image {

/// Where an image of a server is.
struct ServerImage {
  std::wstring address;
  std::wstring port;   ///< may be empty when there was a display name
  std::wstring image;  ///< "DIR/DIR/FILE.tif"
};

/// Nothing when the text names no image of a server, as paths of files do not.
std::optional<ServerImage> parseServerImage(const std::wstring& text);

inline bool isServerImage(const std::wstring& text) {
  return parseServerImage(text).has_value();
}

/// The name without what precedes the separator: the key of an image in lists and drawings.
std::wstring withoutDisplayName(const std::wstring& text);

}  // namespace tarn::image
