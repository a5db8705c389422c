// The user's folder for settings and cache, and the support path.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adesk.h"

namespace tarn::host {

class ACADHOST_EXPORT Profile {
 public:
  /// Nothing is read or written here.
  explicit Profile(std::string folder);

  const std::string& folder() const { return folder_; }
  std::string configurationFolder() const;
  std::string cacheFolder() const;

  /// What the user chose for "LOCALE" ("CHS" or "ENU"), kept in a file of the profile; before that
  /// the usual one.
  std::string locale() const;
  /// One of the two: what holds until the user chooses. At first it is "CHS".
  void setUsualLocale(const std::string& locale) { usualLocale_ = locale; }
  /// The same; empty when nothing was chosen yet. The file is read once.
  const std::string& chosenLocale() const;
  /// False when it could not be kept; the choice stays as it was then.
  bool setLocale(const std::string& locale);

  /// Folders searched after the profile's own, first to last.
  void setFurtherFolders(std::vector<std::string> folders);

  /// Full path of a file: an absolute name as it is, others on the support path. Empty when there
  /// is no such file.
  std::string findFile(const std::string& name) const;

 private:
  std::string folder_;
  std::vector<std::string> further_;
  std::string usualLocale_;
  mutable std::optional<std::string> chosenLocale_;
};

}  // namespace tarn::host
