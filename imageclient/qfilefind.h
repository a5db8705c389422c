// The finder of images: how they are loaded, and which ones an image server offers.
#pragma once

#include "inc/kvalues.h"

enum class LOADWAY { kServer = 1, kLocal = 2 };

/// The servers stand in the configuration (inc/kimageservers.h). An image on one is named
/// "HOST:PORT/DIR:DIR:FILE.tif", which a display name may precede:
/// "NAME%$#@HOST:PORT/DIR:DIR:FILE.tif". Names are as the server's files have them (UTF-8, not
/// percent-encoded).
class QFileFind {
 public:
  /// Told of each fault of a listing, one sentence; without one the user interface is.
  using Callback = void (*)(const char* message);

  /// The one finder of the process. A callback that is given replaces the one before.
  static QFileFind& Instance(Callback callback = nullptr);

  /// What the configuration value "loadImgWay" says: 1 server, 2 (and anything else) local.
  LOADWAY loadImgWay();

  /// Lets the user choose among what the configured servers offer (IUserInterface). Returns the
  /// names of the chosen images and sets `imageName` to the first of them; both are
  /// empty when the user chose none.
  kel::StringList getImgInfo(kel::DString& imageName);
  /// What the last getImgInfo() has returned.
  const kel::StringList& lastChosen() const { return chosen_; }

 private:
  QFileFind() = default;
  Callback callback_ = nullptr;
  kel::StringList chosen_;
};
