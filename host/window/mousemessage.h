// Mouse events of the canvas as the raw window messages that watchers of the host know.
#pragma once

#include <QPoint>
#include <Qt>

#include "afxwin.h"

namespace tarn::host {

/// What one mouse event tells. Positions are device pixels, y down.
struct MouseState {
  QPoint canvas;                            ///< from the upper left corner of the canvas
  QPoint screen;                            ///< from the upper left corner of the screen
  Qt::MouseButtons buttons = Qt::NoButton;  ///< held after the event
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  int wheelDelta = 0;  ///< 120 a notch, positive away from the user
  unsigned long milliseconds = 0;
};

/// The message `id` (WM_MOUSEWHEEL, WM_MBUTTONDOWN ...) with its parameters packed: buttons, keys
/// and wheel in wParam, the position in lParam (of the canvas for buttons, of the screen for the
/// wheel).
MSG mouseMessage(UINT id, const MouseState& state);

}  // namespace tarn::host
