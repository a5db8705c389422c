// What is known of a listing so far: folders are read when they are looked into.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tarnlisting.h"

namespace tarn::host {

struct ListedFolder {
  std::string reason;  ///< why it could not be read; empty when it could
  /// Folders first, then by name, numbers in names by their value.
  std::vector<TarnListingEntry> entries;
};

/// An entry and the names of the folders that lead to it from where a search began, divided by '/'.
struct FoundEntry {
  TarnListingEntry entry;
  std::string path;
};

struct SearchResult {
  std::vector<FoundEntry> found;
  std::string reason;   ///< of the first folder that could not be read
  bool isWhole = true;  ///< false when it was stopped or ended at a limit
};

class ACADHOST_EXPORT ListingTree {
 public:
  /// `listing` must outlive the tree.
  explicit ListingTree(const TarnListing& listing) : listing_(listing) {}

  const TarnListing& listing() const { return listing_; }
  /// Reads the folder unless that has been done; one that could not be read is tried again.
  const ListedFolder& folder(const std::string& key);
  /// The folder is read anew when it is looked into next.
  void forget(const std::string& key) { folders_.erase(key); }

  /// Images in a folder and below whose name, with the folders that lead to it, holds every word of
  /// `text`, without regard to case. `goOn` is asked before each folder that has to be read.
  SearchResult find(const std::string& text, const std::string& folder,
                    const std::function<bool()>& goOn);

 private:
  const TarnListing& listing_;
  std::map<std::string, ListedFolder> folders_;
};

/// "1.4 GB" and the like; empty when it is not known.
ACADHOST_EXPORT std::string sizeText(long long bytes);

}  // namespace tarn::host
