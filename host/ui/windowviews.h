// What is seen of windows. The window classes keep all state; a view shows it and tells what the
// user does there (windowinput.h, DockEvents). A program without windows has plain views with a
// simple layout, so that places and hit tests are real there too.
#pragma once

#include <memory>
#include <string>

#include "afxtypes.h"

class CTreeCtrl;
class CWnd;

namespace tarn::host {

struct TreeNode;

class WindowView {
 public:
  virtual ~WindowView() = default;
  virtual void setVisible(bool visible) = 0;
  /// In the parent's client area; pixels.
  virtual void setGeometry(const RECT& rect) = 0;
  /// The client area's upper left corner on the screen.
  virtual POINT origin() const = 0;
  virtual void setFocus() = 0;
  virtual void acceptFiles(bool accept) = 0;
};

enum class TreePart { kCheck, kLabel };

class TreeView : public WindowView {
 public:
  /// Texts, marks or items are others now: show them soon. Cheap.
  virtual void contentChanged() = 0;
  /// The node at a client point with the TVHT_ bits of the place; null when there is none.
  virtual TreeNode* hitTest(POINT client, UINT& flags) const = 0;
  /// A client point on that part of the node, which is brought into sight.
  virtual POINT pointOf(const TreeNode& node, TreePart part) = 0;
};

enum class DockPlace { kLeft, kRight, kFloating };

class DockView : public WindowView {
 public:
  virtual void setTitle(const std::wstring& title) = 0;
  virtual void allowSides(bool left, bool right) = 0;
  virtual void dock(DockPlace place) = 0;
  /// Where it was when last seen; `place` when it never was.
  virtual void restore(DockPlace place) = 0;
  virtual bool isFloating() const = 0;
};

/// What a dock view tells its bar.
class DockEvents {
 public:
  virtual ~DockEvents() = default;
  virtual void resized(int width, int height) = 0;
  virtual void menuWanted(POINT screen) = 0;
  /// The user has closed it or brought it back.
  virtual void visibleNow(bool visible) = 0;
};

/// Makes views. Each may outlive the program's windows and shows nothing then.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;
  /// `key` is what the place is remembered by. `events` outlives the view.
  virtual std::unique_ptr<DockView> makeDock(const std::wstring& key, DockEvents& events) = 0;
  virtual std::unique_ptr<WindowView> makePane(WindowView& parent, CWnd& window) = 0;
  virtual std::unique_ptr<TreeView> makeTree(WindowView& parent, CTreeCtrl& tree) = 0;
};

/// Views of a program without windows.
ACADHOST_EXPORT WindowSystem& plainWindows();

}  // namespace tarn::host
