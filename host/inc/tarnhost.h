// Our own few extensions of the host interface.
#pragma once

#include <string>

#include "adesk.h"

enum class TarnFolder {
  kProfile,        ///< the user's folder for settings and cache
  kConfiguration,  ///< kProfile/system, on the support path, holds tarnconfig.db
  kCache,          ///< kProfile/cache
};

/// Adds to a counter of the current redraw, for the statistics. Safe from any thread.
ACADHOST_EXPORT void tarnHostCount(const char* counter, long long amount);

/// A folder as UTF-8, without a separator at its end; empty when there is no host.
ACADHOST_EXPORT std::string tarnHostFolder(TarnFolder which);

/// True once the user has asked to stop the running operation.
ACADHOST_EXPORT bool tarnHostCancelWanted();

/// True while the file dialogs of the running command are answered with files named before it.
ACADHOST_EXPORT bool tarnHostFilesGiven();

/// A yes-or-no question; no when cancelled. UTF-8.
ACADHOST_EXPORT bool tarnHostQuestion(const std::string& text);

/// Draws every entity of the current drawing anew for the current view.
ACADHOST_EXPORT void tarnHostRegenerate();

/// A view: its centre, height and the side of a pixel in drawing units, the twist in radians.
struct TarnView {
  double centerX = 0;
  double centerY = 0;
  double width = 0;
  double height = 0;
  double pixel = 0;
  double twist = 0;
};

/// The view that entities are being drawn for, on the screen, in a viewport or on paper; between
/// drawings that of VIEWCTR and VIEWSIZE. False when there is no host.
ACADHOST_EXPORT bool tarnHostDrawnView(TarnView& view);
