#include "host/ui/treemodel.h"

#include <algorithm>
#include <utility>

namespace tarn::host {

namespace {

bool isWithin(const TreeNode* node, const TreeNode& top) {
  while (node && node != &top) node = node->parent;
  return node != nullptr;
}

void addRows(TreeNode& node, std::vector<TreeNode*>& rows) {
  for (const auto& child : node.children) {
    rows.push_back(child.get());
    if (child->expanded) addRows(*child, rows);
  }
}

}  // namespace

TreeNode* TreeModel::add(TreeNode& parent, std::wstring text) {
  auto node = std::make_unique<TreeNode>();
  node->text = std::move(text);
  node->parent = &parent;
  node->row = parent.children.size();
  parent.children.push_back(std::move(node));
  ++generation_;
  tellChanged();
  return parent.children.back().get();
}

void TreeModel::remove(TreeNode& node) {
  if (isWithin(caret_, node)) caret_ = nullptr;
  std::vector<std::unique_ptr<TreeNode>>& all = node.parent->children;
  all.erase(all.begin() + static_cast<std::ptrdiff_t>(node.row));
  for (size_t i = 0; i < all.size(); ++i) all[i]->row = i;
  ++generation_;
  tellChanged();
}

void TreeModel::clear() {
  caret_ = nullptr;
  root_.children.clear();
  ++generation_;
  tellChanged();
}

void TreeModel::unselect(TreeNode& node) {
  node.selected = false;
  for (const auto& child : node.children) unselect(*child);
}

void TreeModel::choose(TreeNode* node, Choice choice) {
  const bool joins = several_ && node && caret_ && caret_->parent == node->parent;
  if (!joins || choice == Choice::kOnly) {
    unselect(root_);
    if (node) node->selected = true;
  } else if (choice == Choice::kToggle) {
    node->selected = !node->selected;
  } else {
    const auto [first, last] = std::minmax(caret_->row, node->row);
    for (size_t i = first; i <= last; ++i) node->parent->children[i]->selected = true;
  }
  caret_ = node;
  tellChanged();
}

TreeNode* TreeModel::sibling(const TreeNode& node, int step) const {
  const auto& all = node.parent->children;
  const auto row = static_cast<std::ptrdiff_t>(node.row) + step;
  return row >= 0 && row < static_cast<std::ptrdiff_t>(all.size())
             ? all[static_cast<size_t>(row)].get()
             : nullptr;
}

std::vector<TreeNode*> TreeModel::rows() {
  std::vector<TreeNode*> rows;
  addRows(root_, rows);
  return rows;
}

}  // namespace tarn::host
