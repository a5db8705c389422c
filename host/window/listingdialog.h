// A listing as a dialog: folders, images with a search, footprints over the drawing, a preview.
#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "host/editor/listingtree.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
class QVBoxLayout;

namespace tarn::host {

class ListingMap;

class ListingDialog : public QDialog {
 public:
  struct Hooks {
    std::function<void(QWidget*)> computes;  ///< the dialog takes input meanwhile; null: over
    std::function<void()> cancel;            ///< what computes is to stop
    std::function<void()> forgetCancel;      ///< what computes next is not to stop
    std::function<bool()> cancelWanted;
  };
  /// `listing` must outlive the dialog.
  ListingDialog(QWidget* parent, const TarnListing& listing, Hooks hooks);

  ListingMap& map() { return *map_; }
  /// Keys of the images that were chosen.
  const std::vector<std::string>& chosen() const { return chosen_; }

  void accept() override;
  void done(int result) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* makeFolders();
  QWidget* makeImages();
  QWidget* makeMap();
  void addButtons(QVBoxLayout& column);

  /// Runs what may take long, unless something runs: then that is stopped, and this follows.
  void perform(std::function<void()> work);
  void readFolder(QTreeWidgetItem& item);
  void showWanted();
  void showEntries(std::vector<FoundEntry> entries, bool withPath, const std::string& remark);
  void chosenChanged();
  void showPreview();
  void say(const std::string& text, bool isFault);
  std::vector<size_t> chosenRows() const;
  QTreeWidgetItem* currentFolder() const;

  ListingTree tree_;
  Hooks hooks_;
  QTreeWidget* folders_ = nullptr;  ///< the widgets belong to the dialog
  QTreeWidget* images_ = nullptr;
  QLineEdit* search_ = nullptr;
  ListingMap* map_ = nullptr;
  QLabel* preview_ = nullptr;
  QLabel* remark_ = nullptr;
  QPushButton* accept_ = nullptr;
  QTimer searchTimer_;
  QTimer previewTimer_;
  std::vector<FoundEntry> shown_;
  std::vector<std::string> chosen_;
  std::function<void()> next_;  ///< follows what computes
  bool isComputing_ = false;
};

}  // namespace tarn::host
