// The inside of a window, for the window classes themselves.
#pragma once

#include <memory>
#include <vector>

#include "afxwnd.h"
#include "host/ui/windowviews.h"

namespace tarn::host {

struct WindowState {
  CWnd* parent = nullptr;
  std::vector<CWnd*> children;
  CRect rect;
  DWORD style = 0;
  int id = 0;
  bool visible = false;
  CString text;
  std::unique_ptr<WindowView> view;  ///< null: this kind of window is never seen
};

struct WindowAccess {
  /// Null while there is no window.
  static WindowState* of(const CWnd& window) { return window.state_.get(); }
  static WindowView* viewOf(const CWnd* window) {
    return window && window->state_ ? window->state_->view.get() : nullptr;
  }
  /// The window is there from now on. Nothing is sent to it.
  static void make(CWnd& window, std::unique_ptr<WindowState> state);
  /// `to` takes the place of `from`, which is no window any more.
  static void replace(CWnd& from, CWnd& to);
  static void tellMade(CWnd& window) { window.windowMade(); }
};

/// The window system of the running program, or the plain one.
WindowSystem& windowSystem();

}  // namespace tarn::host
