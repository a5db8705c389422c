#include "host/window/progresswindow.h"

#include <QDialogButtonBox>
#include <QVBoxLayout>

#include "host/window/progresspart.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kWidth = 420;

}  // namespace

ProgressWindow::ProgressWindow(QWidget* parent, std::function<void()> cancel)
    : QDialog(parent), cancel_(std::move(cancel)), part_(new ProgressPart) {
  setObjectName("progressWindow");
  setWindowTitle(words("Working"));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(part_);
  layout->addWidget(buttons);
  setMinimumWidth(kWidth);
}

void ProgressWindow::prepare() {
  part_->begin("0123456789", 0, 1);
  adjustSize();
  winId();
  // Fonts and the style's pictures are read by painting.
  grab();
}

void ProgressWindow::reject() {
  // It stays until the operation has ended.
  cancel_();
}

}  // namespace tarn::host
