// A tree of the host as a widget. The host's tree holds the state; this shows it and hands on what
// the user does.
#include <QApplication>
#include <QDockWidget>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QStyle>
#include <QTimer>
#include <QToolTip>
#include <QTreeWidget>

#include "afxcmn.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/ui/windowinput.h"
#include "host/window/dockview.h"

namespace tarn::host {

namespace {

QString textOf(const TreeNode& node) {
  return QString::fromStdWString(node.text);
}

class TreeWidget final : public QTreeWidget {
 public:
  TreeWidget(QWidget* parent, const WindowSystemOfWidgets& system, CTreeCtrl& tree)
      : QTreeWidget(parent), system_(system), tree_(tree) {
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setRootIsDecorated(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setExpandsOnDoubleClick(false);
    // The frames of the check boxes are drawn in a shade of this colour.
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0xb0, 0xb8, 0xc2));
    setPalette(colours);
    later_.setSingleShot(true);
    QObject::connect(&later_, &QTimer::timeout, this, [this] { bringUpToDate(); });
  }

  void showLater() {
    if (!later_.isActive()) later_.start(0);
  }

  /// Up to date from here on.
  void bringUpToDate() {
    later_.stop();
    const QSignalBlocker quiet(this);
    TreeModel& model = tree_.model();
    if (shown_ != model.generation()) {
      clear();
      fill(invisibleRootItem(), model.root());
      shown_ = model.generation();
    }
    mark(invisibleRootItem(), model.root());
    QTreeWidgetItem* caret = model.caret() ? itemOf(*model.caret()) : nullptr;
    selectionModel()->setCurrentIndex(caret ? indexFromItem(caret) : QModelIndex(),
                                      QItemSelectionModel::NoUpdate);
    viewport()->update();
  }

  TreeNode* nodeOf(const QTreeWidgetItem* item) const {
    if (!item) return nullptr;
    const QTreeWidgetItem* above = item->parent();
    TreeNode* parent = above ? nodeOf(above) : &tree_.model().root();
    const int row = above ? above->indexOfChild(const_cast<QTreeWidgetItem*>(item))
                          : indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(item));
    const bool known = parent && row >= 0 && row < static_cast<int>(parent->children.size());
    return known ? parent->children[static_cast<size_t>(row)].get() : nullptr;
  }

  QTreeWidgetItem* itemOf(const TreeNode& node) const {
    if (!node.parent) return invisibleRootItem();
    QTreeWidgetItem* above = itemOf(*node.parent);
    return above ? above->child(static_cast<int>(node.row)) : nullptr;
  }

  /// Where the check box of an item is drawn, in the viewport.
  QRect checkBoxOf(const QTreeWidgetItem* item) const {
    const QModelIndex index = indexFromItem(const_cast<QTreeWidgetItem*>(item));
    QStyleOptionViewItem option = viewOptions();
    option.rect = visualRect(index);
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    option.text = item->text(0);
    return style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this);
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override { pressed(event, Gesture::kClick); }
  void mouseDoubleClickEvent(QMouseEvent* event) override { pressed(event, Gesture::kDoubleClick); }
  void mouseMoveEvent(QMouseEvent*) override {}
  void mouseReleaseEvent(QMouseEvent*) override {}
  void contextMenuEvent(QContextMenuEvent* event) override { event->accept(); }
  /// It is called as the bar in which it stands.
  void showEvent(QShowEvent* event) override {
    for (const QWidget* up = parentWidget(); up != nullptr; up = up->parentWidget()) {
      if (qobject_cast<const QDockWidget*>(up) != nullptr) setAccessibleName(up->windowTitle());
    }
    QTreeWidget::showEvent(event);
  }

  void keyPressEvent(QKeyEvent* event) override {
    WPARAM key = 0;
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) key = VK_RETURN;
    if (event->key() == Qt::Key_Escape) key = VK_ESCAPE;
    if (key != 0 && takesKey(tree_, key)) return;
    const QTreeWidgetItem* item = currentItem();
    if (event->key() == Qt::Key_Space && item) {
      gesture(Gesture::kClick, checkBoxOf(item).center(), TreeModel::Choice::kOnly);
      return;
    }
    if (isTyping(*event)) return typeOnCommandLine(*event);
    if (event->key() != Qt::Key_Up && event->key() != Qt::Key_Down) {
      QTreeWidget::keyPressEvent(event);
      return;
    }
    const QTreeWidgetItem* next = event->key() == Qt::Key_Up ? itemAbove(item)
                                  : item                     ? itemBelow(item)
                                                             : topLevelItem(0);
    if (TreeNode* node = nodeOf(next)) {
      const bool extend = event->modifiers().testFlag(Qt::ShiftModifier);
      tree_.model().choose(node, extend ? TreeModel::Choice::kExtend : TreeModel::Choice::kOnly);
      bringUpToDate();
      scrollTo(indexFromItem(const_cast<QTreeWidgetItem*>(next)));
    }
  }

  bool viewportEvent(QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return QTreeWidget::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    TreeNode* node = nodeOf(itemAt(help->pos()));
    const std::wstring tip = node ? treeTip(tree_, *node) : std::wstring();
    QToolTip::showText(help->globalPos(), QString::fromStdWString(tip), this);
    return true;
  }

 private:
  static bool isTyping(const QKeyEvent& event) {
    const bool plain = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
    return plain && !event.text().isEmpty() && event.text()[0].isPrint();
  }

  /// Who types means a command, wherever the last click was.
  void typeOnCommandLine(QKeyEvent& event) {
    if (HostApp* app = HostApp::instance()) app->frontEnd().focusCommandLine();
    QWidget* line = QApplication::focusWidget();
    if (line && line != this) QCoreApplication::sendEvent(line, &event);
  }

  void fill(QTreeWidgetItem* item, const TreeNode& node) {
    QList<QTreeWidgetItem*> made;
    for (const auto& child : node.children) {
      auto* one = new QTreeWidgetItem;
      fill(one, *child);
      made.append(one);
    }
    item->addChildren(made);
  }

  void mark(QTreeWidgetItem* item, const TreeNode& node) {
    for (const auto& child : node.children) {
      QTreeWidgetItem* one = item->child(static_cast<int>(child->row));
      if (one->text(0) != textOf(*child)) one->setText(0, textOf(*child));
      one->setCheckState(0, child->checked ? Qt::Checked : Qt::Unchecked);
      if (one->isSelected() != child->selected) one->setSelected(child->selected);
      if (one->isExpanded() != child->expanded) one->setExpanded(child->expanded);
      mark(one, *child);
    }
  }

  void pressed(QMouseEvent* event, Gesture gestureKind) {
    bringUpToDate();
    const bool right = event->button() == Qt::RightButton;
    if (!right && event->button() != Qt::LeftButton) return;
    setFocus();
    const auto choice =
        event->modifiers().testFlag(Qt::ControlModifier) ? TreeModel::Choice::kToggle
        : event->modifiers().testFlag(Qt::ShiftModifier) ? TreeModel::Choice::kExtend
                                                         : TreeModel::Choice::kOnly;
    gesture(right ? Gesture::kRightClick : gestureKind, event->pos(), choice);
  }

  void gesture(Gesture kind, QPoint at, TreeModel::Choice choice) {
    const QPoint client = viewport()->mapTo(this, at);
    const QPointer<TreeWidget> alive(this);
    system_.perform([alive, kind, client, choice] {
      if (!alive) return;
      treeGesture(alive->tree_, kind, {client.x(), client.y()}, choice);
      if (alive) alive->showLater();
    });
  }

  const WindowSystemOfWidgets& system_;
  CTreeCtrl& tree_;
  QTimer later_;
  unsigned shown_ = 0;
};

class TreeViewOfWidget final : public WidgetView<TreeView> {
 public:
  explicit TreeViewOfWidget(TreeWidget* widget) : WidgetView(widget), tree_(widget) {}

  void contentChanged() override {
    if (tree_) tree_->showLater();
  }

  TreeNode* hitTest(POINT client, UINT& flags) const override {
    flags = TVHT_NOWHERE;
    if (!tree_) return nullptr;
    tree_->bringUpToDate();
    const QPoint at = tree_->viewport()->mapFrom(tree_, QPoint(client.x, client.y));
    const QTreeWidgetItem* item = tree_->itemAt(at);
    TreeNode* node = tree_->nodeOf(item);
    if (!node) return nullptr;
    const QRect row = tree_->visualItemRect(item);
    flags = tree_->checkBoxOf(item).adjusted(-1, -2, 1, 2).contains(at) ? TVHT_ONITEMSTATEICON
            : at.x() >= row.left()                                      ? TVHT_ONITEMLABEL
            : at.x() >= row.left() - tree_->indentation()               ? TVHT_ONITEMBUTTON
                                                                        : TVHT_ONITEMINDENT;
    return node;
  }

  POINT pointOf(const TreeNode& node, TreePart part) override {
    if (!tree_) return {};
    tree_->bringUpToDate();
    QTreeWidgetItem* item = tree_->itemOf(node);
    if (!item) return {};
    tree_->scrollToItem(item);
    const QRect box = tree_->checkBoxOf(item);
    const QPoint at =
        part == TreePart::kCheck ? box.center() : QPoint(box.right() + 12, box.center().y());
    const QPoint client = tree_->viewport()->mapTo(tree_, at);
    return {client.x(), client.y()};
  }

 private:
  QPointer<TreeWidget> tree_;
};

}  // namespace

std::unique_ptr<TreeView> makeTreeWidget(const WindowSystemOfWidgets& system, QWidget* parent,
                                         CTreeCtrl& tree) {
  return std::make_unique<TreeViewOfWidget>(parent ? new TreeWidget(parent, system, tree)
                                                   : nullptr);
}

}  // namespace tarn::host
