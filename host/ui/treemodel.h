// What stands in a tree of items.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "afxtypes.h"

namespace tarn::host {

struct TreeNode {
  std::wstring text;
  DWORD_PTR data = 0;
  bool checked = false;
  bool expanded = false;
  bool selected = false;
  TreeNode* parent = nullptr;  ///< of a top item: the model's own root, which is no item
  size_t row = 0;              ///< among the parent's children
  std::vector<std::unique_ptr<TreeNode>> children;
};

class ACADHOST_EXPORT TreeModel {
 public:
  enum class Choice { kOnly, kToggle, kExtend };

  const TreeNode& root() const { return root_; }
  TreeNode& root() { return root_; }
  /// At the end of `parent`'s children.
  TreeNode* add(TreeNode& parent, std::wstring text);
  void remove(TreeNode& node);
  void clear();
  TreeNode* caret() const { return caret_; }
  /// Makes the node the caret. kToggle and kExtend (all between caret and node) choose several,
  /// when that is allowed, and count among brothers only.
  void choose(TreeNode* node, Choice choice);
  void allowSeveral(bool allow) { several_ = allow; }
  bool severalAllowed() const { return several_; }
  /// The brother `step` places on; null when there is none.
  TreeNode* sibling(const TreeNode& node, int step) const;
  /// Nodes in sight: expanded ones with what is in them, top first.
  std::vector<TreeNode*> rows();
  /// Changes whenever nodes come or go: handles from before may be void.
  unsigned generation() const { return generation_; }

  /// Told after every change; may be empty.
  std::function<void()> changed;
  void tellChanged() const {
    if (changed) changed();
  }

 private:
  void unselect(TreeNode& node);

  TreeNode root_;
  TreeNode* caret_ = nullptr;
  bool several_ = false;
  unsigned generation_ = 0;
};

}  // namespace tarn::host
