#include "host/window/listingdialog.h"

#include <QBuffer>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "host/window/appearance.h"
#include "host/window/listingmap.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kWidth = 1080, kHeight = 640, kPreviewHeight = 180;
constexpr int kTypingMilliseconds = 300, kRestingMilliseconds = 150;
/// A picture with more pixels a side is no preview.
constexpr int kLargestPreview = 8192;
constexpr int kKeyRole = Qt::UserRole, kReadRole = Qt::UserRole + 1;
enum ImageColumn { kName, kSize, kTime };
/// What those call them who have listings to choose from.
[[maybe_unused]] constexpr const char* kGivenNames[] = {toSay("Images on servers"), toSay("Add")};

QString qt(const std::string& text) {
  return QString::fromStdString(text);
}

/// Null for what is no small picture.
QImage decoded(const std::string& bytes, QSize within) {
  QByteArray data(bytes.data(), static_cast<int>(bytes.size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  const QSize size = reader.size();
  if (!size.isValid() || size.width() > kLargestPreview || size.height() > kLargestPreview)
    return {};
  reader.setScaledSize(size.scaled(within, Qt::KeepAspectRatio));
  return reader.read();
}

QWidget* titled(const QString& title, QWidget* content) {
  auto* whole = new QWidget;
  auto* column = new QVBoxLayout(whole);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(new QLabel(title));
  content->setAccessibleName(title);
  column->addWidget(content, 1);
  return whole;
}

}  // namespace

ListingDialog::ListingDialog(QWidget* parent, const TarnListing& listing, Hooks hooks)
    : QDialog(parent), tree_(listing), hooks_(std::move(hooks)) {
  setObjectName("listing");
  setWindowTitle(words(listing.title.c_str()));
  auto* column = new QVBoxLayout(this);
  auto* parts = new QSplitter;
  parts->addWidget(makeFolders());
  parts->addWidget(makeImages());
  parts->addWidget(makeMap());
  parts->setSizes({230, 430, 420});
  parts->setChildrenCollapsible(false);
  column->addWidget(parts, 1);
  addButtons(*column);
  resize(kWidth, kHeight);
  searchTimer_.setSingleShot(true);
  searchTimer_.setInterval(kTypingMilliseconds);
  connect(&searchTimer_, &QTimer::timeout, this, [this] { showWanted(); });
  previewTimer_.setSingleShot(true);
  previewTimer_.setInterval(kRestingMilliseconds);
  connect(&previewTimer_, &QTimer::timeout, this, [this] { showPreview(); });
  search_->setFocus();
  chosenChanged();
  QTimer::singleShot(0, this, [this] { folders_->topLevelItem(0)->setExpanded(true); });
}

QWidget* ListingDialog::makeFolders() {
  folders_ = new QTreeWidget;
  folders_->setObjectName("folders");
  folders_->setHeaderHidden(true);
  auto* top = new QTreeWidgetItem(folders_, {words(tree_.listing().title.c_str())});  // the tree's
  top->setData(0, kKeyRole, QString());
  top->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  connect(folders_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
    if (!item->data(0, kReadRole).toBool()) perform([this, item] { readFolder(*item); });
  });
  connect(folders_, &QTreeWidget::currentItemChanged, this, [this] { showWanted(); });
  folders_->setCurrentItem(top);
  return titled(words("Folders"), folders_);
}

QWidget* ListingDialog::makeImages() {
  search_ = new QLineEdit;
  search_->setObjectName("search");
  search_->setPlaceholderText(words("Search in this folder and below"));
  search_->setAccessibleName(search_->placeholderText());
  search_->setClearButtonEnabled(true);
  connect(search_, &QLineEdit::textChanged, this, [this] { searchTimer_.start(); });
  images_ = new QTreeWidget;
  images_->setObjectName("images");
  images_->setAccessibleName(words("Images"));
  images_->setRootIsDecorated(false);
  images_->setUniformRowHeights(true);
  images_->setHeaderLabels({words("Name"), words("Size"), words("Changed")});
  images_->header()->setStretchLastSection(false);
  images_->header()->setSectionResizeMode(kName, QHeaderView::Stretch);
  images_->setSelectionMode(tree_.listing().severalAllowed ? QAbstractItemView::ExtendedSelection
                                                           : QAbstractItemView::SingleSelection);
  connect(images_, &QTreeWidget::itemSelectionChanged, this, [this] { chosenChanged(); });
  connect(images_, &QTreeWidget::currentItemChanged, this, [this] { previewTimer_.start(); });
  connect(images_, &QTreeWidget::itemDoubleClicked, this, [this] { accept(); });
  auto* whole = new QWidget;
  auto* column = new QVBoxLayout(whole);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(search_);
  column->addWidget(images_, 1);
  return titled(words("Images"), whole);
}

QWidget* ListingDialog::makeMap() {
  map_ = new ListingMap(this);
  map_->setObjectName("map");
  map_->clicked = [this](size_t footprint, bool adds) {
    QTreeWidgetItem* item = images_->topLevelItem(static_cast<int>(footprint));
    const bool several = adds && tree_.listing().severalAllowed;
    if (!several) images_->clearSelection();
    images_->setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    item->setSelected(!several || !item->isSelected());
    images_->scrollToItem(item);
  };
  auto* drawing = new QPushButton(words("Drawing's view"));
  auto* all = new QPushButton(words("All footprints"));
  drawing->setObjectName("showDrawing");
  all->setObjectName("showFootprints");
  connect(drawing, &QPushButton::clicked, this, [this] { map_->showDrawing(); });
  connect(all, &QPushButton::clicked, this, [this] { map_->showFootprints(); });
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {drawing, all}) {
    button->setAutoDefault(false);
    buttons->addWidget(button);
  }
  buttons->addStretch(1);
  preview_ = new QLabel;
  preview_->setObjectName("preview");
  preview_->setAlignment(Qt::AlignCenter);
  preview_->setFixedHeight(kPreviewHeight);
  auto* whole = new QWidget;
  auto* column = new QVBoxLayout(whole);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(map_, 1);
  column->addLayout(buttons);
  if (tree_.listing().preview) {
    column->addWidget(preview_);
  } else {
    preview_->setParent(this);
    preview_->hide();
  }
  return titled(words("Where they lie"), whole);
}

void ListingDialog::addButtons(QVBoxLayout& column) {
  remark_ = new QLabel;
  remark_->setObjectName("remark");
  remark_->setTextFormat(Qt::PlainText);
  remark_->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  accept_ = buttons->button(QDialogButtonBox::Ok);
  const std::string& text = tree_.listing().accept;
  if (!text.empty()) accept_->setText(words(text.c_str()));
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
  auto* row = new QHBoxLayout;
  row->addWidget(remark_, 1);
  row->addWidget(buttons);
  column.addLayout(row);
}

void ListingDialog::perform(std::function<void()> work) {
  if (isComputing_) {
    next_ = std::move(work);
    hooks_.cancel();
    return;
  }
  isComputing_ = true;
  setCursor(Qt::BusyCursor);
  hooks_.computes(this);
  for (next_ = std::move(work); next_;) {
    hooks_.forgetCancel();
    std::exchange(next_, {})();
  }
  hooks_.computes(nullptr);
  // The command goes on, whatever was stopped here.
  hooks_.forgetCancel();
  unsetCursor();
  isComputing_ = false;
}

QTreeWidgetItem* ListingDialog::currentFolder() const {
  return folders_->currentItem() ? folders_->currentItem() : folders_->topLevelItem(0);
}

/// Puts the folders inside a folder below its item.
void ListingDialog::readFolder(QTreeWidgetItem& item) {
  say(words("Reading ...").toStdString(), false);
  const ListedFolder& folder = tree_.folder(item.data(0, kKeyRole).toString().toStdString());
  say(folder.reason, !folder.reason.empty());
  if (!folder.reason.empty()) return item.setExpanded(false);
  // Nothing that waits may know a folder that goes.
  next_ = {};
  qDeleteAll(item.takeChildren());
  item.setData(0, kReadRole, true);
  for (const TarnListingEntry& entry : folder.entries) {
    if (!entry.isFolder) continue;
    auto* child = new QTreeWidgetItem(&item, {qt(entry.name)});  // the item's
    child->setData(0, kKeyRole, qt(entry.key));
    child->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  }
  if (item.childCount() == 0)
    item.setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
  if (&item == currentFolder()) showWanted();
}

/// The images of the folder, or what is looked for in it and below.
void ListingDialog::showWanted() {
  if (!images_ || !remark_) return;
  searchTimer_.stop();
  perform([this] {
    QTreeWidgetItem& item = *currentFolder();
    const std::string key = item.data(0, kKeyRole).toString().toStdString();
    const std::string text = search_->text().trimmed().toStdString();
    say(words("Reading ...").toStdString(), false);
    if (!text.empty()) {
      SearchResult result = tree_.find(text, key, [this] { return !hooks_.cancelWanted(); });
      std::string remark = result.reason;
      if (!result.isWhole)
        remark += std::string(remark.empty() ? "" : " ") +
                  words("Not every folder was searched.").toStdString();
      return showEntries(std::move(result.found), true, remark);
    }
    std::vector<FoundEntry> entries;
    const ListedFolder& folder = tree_.folder(key);
    for (const TarnListingEntry& entry : folder.entries)
      if (!entry.isFolder) entries.push_back({entry, entry.name});
    showEntries(std::move(entries), false, folder.reason);
    if (folder.reason.empty() && !item.data(0, kReadRole).toBool() && item.isExpanded())
      readFolder(item);
  });
}

void ListingDialog::showEntries(std::vector<FoundEntry> entries, bool withPath,
                                const std::string& remark) {
  shown_ = std::move(entries);
  images_->clear();
  QList<QTreeWidgetItem*> items;
  for (const auto& [entry, path] : shown_) {
    auto* item = new QTreeWidgetItem({qt(withPath ? path : entry.name), qt(sizeText(entry.bytes)),
                                      qt(entry.time)});  // the list's
    item->setTextAlignment(kSize, Qt::AlignRight | Qt::AlignVCenter);
    item->setToolTip(kName, qt(path));
    items << item;
  }
  images_->addTopLevelItems(items);
  for (const int column : {kSize, kTime}) images_->resizeColumnToContents(column);
  const std::string count = (shown_.size() == 1 ? words("%1 image") : words("%1 images"))
                                .arg(shown_.size())
                                .toStdString();
  say(remark.empty() ? count : remark, !remark.empty());
  chosenChanged();
}

std::vector<size_t> ListingDialog::chosenRows() const {
  std::vector<size_t> rows;
  for (int i = 0; i < images_->topLevelItemCount(); ++i)
    if (images_->topLevelItem(i)->isSelected()) rows.push_back(static_cast<size_t>(i));
  return rows;
}

void ListingDialog::chosenChanged() {
  std::vector<GroundBox> boxes(shown_.size());
  std::vector<bool> chosen(shown_.size());
  for (size_t i = 0; i < shown_.size(); ++i) {
    const TarnListingEntry& entry = shown_[i].entry;
    if (entry.hasFootprint) boxes[i] = {entry.left, entry.bottom, entry.right, entry.top};
  }
  for (const size_t row : chosenRows()) chosen[row] = true;
  accept_->setEnabled(!chosenRows().empty());
  map_->setFootprints(std::move(boxes), std::move(chosen));
}

void ListingDialog::showPreview() {
  const int row = images_->indexOfTopLevelItem(images_->currentItem());
  preview_->clear();
  if (row < 0 || static_cast<size_t>(row) >= shown_.size() || !tree_.listing().preview) return;
  const std::string key = shown_[static_cast<size_t>(row)].entry.key;
  if (isComputing_) return previewTimer_.start();
  perform([this, key] {
    const std::string bytes = tree_.listing().preview(key);
    const double ratio = devicePixelRatioF();
    QImage picture = decoded(bytes, preview_->size() * ratio);
    picture.setDevicePixelRatio(ratio);
    if (picture.isNull()) return preview_->setText(words("No preview"));
    preview_->setPixmap(QPixmap::fromImage(picture));
  });
}

void ListingDialog::say(const std::string& text, bool isFault) {
  remark_->setStyleSheet(isFault ? "color: " + warningOn(palette()).name() : QString());
  remark_->setText(qt(text));
}

void ListingDialog::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_F5) {
    tree_.forget(currentFolder()->data(0, kKeyRole).toString().toStdString());
    currentFolder()->setData(0, kReadRole, false);
    return perform([this] { readFolder(*currentFolder()); });
  }
  // From the search to what was found.
  if (search_->hasFocus() && (isEnter || event->key() == Qt::Key_Down)) {
    if (searchTimer_.isActive()) showWanted();
    if (images_->topLevelItemCount() > 0) {
      images_->setFocus();
      images_->setCurrentItem(images_->topLevelItem(0));
    }
    return;
  }
  QDialog::keyPressEvent(event);
}

void ListingDialog::accept() {
  const std::vector<size_t> rows = chosenRows();
  if (rows.empty()) return;
  for (const size_t row : rows) chosen_.push_back(shown_[row].entry.key);
  QDialog::accept();
}

void ListingDialog::done(int result) {
  if (isComputing_) hooks_.cancel();
  next_ = {};
  QDialog::done(result);
}

}  // namespace tarn::host
