// Our own extension of the host interface: listings that the user chooses images from.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "adesk.h"

/// A folder or an image. Texts are UTF-8.
struct TarnListingEntry {
  std::string key;   ///< what the owner of the listing knows it by
  std::string name;  ///< what is shown
  bool isFolder = false;
  long long bytes = -1;  ///< -1 when it is not known
  std::string time;
  bool hasFootprint = false;
  /// The footprint in drawing coordinates.
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
};

struct TarnListing {
  std::string title;
  std::string accept;  ///< of the button that accepts
  bool severalAllowed = true;
  /// Puts what stands in a folder into the entries; the key of the top is empty. A reason, or empty
  /// when the folder could be read. May take time and asks tarnHostCancelWanted().
  std::function<std::string(const std::string& folder, std::vector<TarnListingEntry>& entries)>
      read;
  /// The bytes of a small PNG or JPEG picture of an image, or none. May be missing.
  std::function<std::string(const std::string& image)> preview;
};

/// Lets the user choose images: in a dialog where there are windows, else on the command line.
/// Their keys in the order chosen; none when it is cancelled.
ACADHOST_EXPORT std::vector<std::string> tarnHostChooseFromListing(const TarnListing& listing);
