// Windows that nobody sees: one row below the other, all of the same height.
#include "afxcmn.h"
#include "host/ui/treemodel.h"
#include "host/ui/windowviews.h"

namespace tarn::host {

namespace {

constexpr int kRow = 18;
constexpr int kIndent = 20;
constexpr int kBox = 16;
constexpr int kLabelWidth = 4096;

/// Where the rectangle stands; the rest has no meaning without a screen.
template <typename Base>
class Plain : public Base {
 public:
  explicit Plain(const WindowView* parent) : parent_(parent) {}
  void setVisible(bool) override {}
  void setGeometry(const RECT& rect) override { rect_ = rect; }
  POINT origin() const override {
    POINT at = parent_ ? parent_->origin() : POINT{};
    at.x += rect_.left;
    at.y += rect_.top;
    return at;
  }
  void setFocus() override {}
  void acceptFiles(bool) override {}

 private:
  const WindowView* parent_;
  RECT rect_;
};

int depthOf(const TreeNode& node) {
  int depth = 0;
  for (const TreeNode* above = node.parent; above->parent; above = above->parent) ++depth;
  return depth;
}

class PlainTree final : public Plain<TreeView> {
 public:
  PlainTree(const WindowView* parent, CTreeCtrl& tree) : Plain(parent), tree_(tree) {}
  void contentChanged() override {}

  TreeNode* hitTest(POINT client, UINT& flags) const override {
    const std::vector<TreeNode*> rows = tree_.model().rows();
    const int row = client.y / kRow;
    flags = TVHT_NOWHERE;
    if (client.y < 0 || row >= static_cast<int>(rows.size())) return nullptr;
    TreeNode* node = rows[static_cast<size_t>(row)];
    const int x = client.x - depthOf(*node) * kIndent;
    flags = x < 0                              ? TVHT_ONITEMINDENT
            : x < kIndent                      ? TVHT_ONITEMBUTTON
            : x < kIndent + kBox               ? TVHT_ONITEMSTATEICON
            : x < kIndent + kBox + kLabelWidth ? TVHT_ONITEMLABEL
                                               : TVHT_ONITEMRIGHT;
    return node;
  }

  POINT pointOf(const TreeNode& node, TreePart part) override {
    const std::vector<TreeNode*> rows = tree_.model().rows();
    int row = 0;
    while (row < static_cast<int>(rows.size()) && rows[static_cast<size_t>(row)] != &node) ++row;
    const int x = depthOf(node) * kIndent + kIndent + (part == TreePart::kCheck ? 8 : kBox + 8);
    return {x, row * kRow + kRow / 2};
  }

 private:
  CTreeCtrl& tree_;
};

class PlainDock final : public Plain<DockView> {
 public:
  PlainDock() : Plain(nullptr) {}
  void setTitle(const std::wstring&) override {}
  void allowSides(bool, bool) override {}
  void dock(DockPlace place) override { place_ = place; }
  void restore(DockPlace place) override { place_ = place; }
  bool isFloating() const override { return place_ == DockPlace::kFloating; }

 private:
  DockPlace place_ = DockPlace::kFloating;
};

class PlainWindows final : public WindowSystem {
 public:
  std::unique_ptr<DockView> makeDock(const std::wstring&, DockEvents&) override {
    return std::make_unique<PlainDock>();
  }
  std::unique_ptr<WindowView> makePane(WindowView& parent, CWnd&) override {
    return std::make_unique<Plain<WindowView>>(&parent);
  }
  std::unique_ptr<TreeView> makeTree(WindowView& parent, CTreeCtrl& tree) override {
    return std::make_unique<PlainTree>(&parent, tree);
  }
};

}  // namespace

WindowSystem& plainWindows() {
  static PlainWindows windows;
  return windows;
}

}  // namespace tarn::host
