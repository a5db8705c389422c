// What a component tells the user and asks of the user interface. Silent where there is none.
#pragma once

#include <string>

#include "components/raster/rasterimage.h"
#include "inc/iuserinterface.h"
#include "inc/kobject.h"

namespace tarn::interaction {

/// A text in the user's language.
struct Text {
  const char* chinese;
  const char* english;
  const char* in(bool isEnglish) const { return isEnglish ? english : chinese; }
};

/// What the host speaks to its user (its system variable LOCALE): English or, also without a host,
/// Chinese.
bool isEnglish();

/// What the progress of an image's pyramid is called.
std::string pyramidLabel(const std::string& name);

class Interaction {
 public:
  Interaction();

  void message(const std::string& text) const;
  bool cancelWanted() const;
  /// The user's cache folder; empty when there is none.
  std::string cacheFolder() const;
  void count(const raster::ReadCounts& counts) const;

 private:
  kel::Object<IUserInterface> user_;
};

/// The framework's progress display for the time of one operation; positions go from `first` to
/// `last`.
class ProgressScope {
 public:
  ProgressScope(const std::string& label, int first, int last);
  ~ProgressScope();
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;
  /// `part` goes from 0 to 1.
  void move(double part);

 private:
  int first_;
  int last_;
  int position_;
};

}  // namespace tarn::interaction
