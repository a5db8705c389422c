// Listings that the user chooses from: folders, and in them images with what is known of each.
#pragma once

#include <functional>
#include <string>

#include "inc/kvalues.h"

namespace kel {

/// A rectangle in drawing coordinates.
struct GroundBox {
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
};

/// A folder or an image. Texts are UTF-8.
struct ListingEntry {
  /// What the owner of the listing knows it by; unique in the listing, never empty.
  DString key;
  /// What is shown.
  DString name;
  bool isFolder = false;
  /// -1 when it is not known.
  int64_t bytes = -1;
  /// As it is shown; may be empty.
  DString time;
  bool hasFootprint = false;
  GroundBox footprint;
};

struct Listing {
  DString title;
  /// Of the button that accepts.
  DString accept;
  bool severalAllowed = true;
  /// Puts what stands in a folder, by its key, into `entries`; the key of the top is empty. Called
  /// when the folder is opened, and again when the user asks anew. A reason, or empty when the
  /// folder could be read. May take time: it asks IUserInterface::cancelWanted().
  std::function<DString(const DString& folder, List<ListingEntry>& entries)> read;
  /// The bytes of a small PNG or JPEG picture of an image, by its key; none when there is no
  /// picture. May be missing.
  std::function<std::string(const DString& image)> preview;
};

}  // namespace kel
