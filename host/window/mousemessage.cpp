#include "host/window/mousemessage.h"

namespace tarn::host {

namespace {

constexpr WPARAM kLeftHeld = 0x01;
constexpr WPARAM kRightHeld = 0x02;
constexpr WPARAM kShiftHeld = 0x04;
constexpr WPARAM kControlHeld = 0x08;
constexpr WPARAM kMiddleHeld = 0x10;

WPARAM heldBits(const MouseState& state) {
  WPARAM bits = 0;
  if (state.buttons.testFlag(Qt::LeftButton)) bits |= kLeftHeld;
  if (state.buttons.testFlag(Qt::RightButton)) bits |= kRightHeld;
  if (state.buttons.testFlag(Qt::MiddleButton)) bits |= kMiddleHeld;
  if (state.modifiers.testFlag(Qt::ShiftModifier)) bits |= kShiftHeld;
  if (state.modifiers.testFlag(Qt::ControlModifier)) bits |= kControlHeld;
  return bits;
}

WPARAM twoWords(int low, int high) {
  return static_cast<WPARAM>((static_cast<unsigned>(high) & 0xffffU) << 16 |
                             (static_cast<unsigned>(low) & 0xffffU));
}

}  // namespace

MSG mouseMessage(UINT id, const MouseState& state) {
  MSG message;
  message.message = id;
  message.wParam = heldBits(state);
  QPoint position = state.canvas;
  if (id == WM_MOUSEWHEEL) {
    message.wParam = twoWords(static_cast<int>(message.wParam), state.wheelDelta);
    position = state.screen;
  }
  message.lParam = static_cast<LPARAM>(twoWords(position.x(), position.y()));
  message.time = static_cast<DWORD>(state.milliseconds);
  message.pt.x = state.screen.x();
  message.pt.y = state.screen.y();
  return message;
}

}  // namespace tarn::host
