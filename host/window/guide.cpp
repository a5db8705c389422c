#include "host/window/guide.h"

#include <QCheckBox>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kWidth = 300;

}  // namespace

Guide::Guide(QWidget* parent, bool isNever, std::function<void(bool)> chosen)
    : QDockWidget(parent), text_(new QLabel), scroll_(new QScrollArea), never_(new QCheckBox) {
  setObjectName("guide");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  text_->setWordWrap(true);
  text_->setTextFormat(Qt::RichText);
  text_->setAlignment(Qt::AlignTop);
  text_->setMargin(10);
  scroll_->setWidget(text_);
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 8);
  column->addWidget(scroll_, 1);
  auto* foot = new QHBoxLayout;
  foot->setContentsMargins(10, 0, 10, 0);
  never_->setChecked(isNever);
  connect(never_, &QCheckBox::toggled, this, std::move(chosen));
  foot->addWidget(never_);
  column->addLayout(foot);
  content->setMinimumWidth(kWidth);
  setWidget(content);
  speakAgain();
}

void Guide::speakAgain() {
  setWindowTitle(words("First steps"));
  scroll_->setAccessibleName(windowTitle());
  never_->setText(words("Do not show this again"));
  const auto item = [](const char* text) {
    return "<li style='margin-bottom:8px'>" + words(text) + "</li>";
  };
  text_->setText(
      "<p>" +
      words("<b>What you see:</b> an orthophoto in a drawing. The photo stays in its file; "
            "only the pixels that this view needs are read.") +
      "</p><p><b>" + words("Five things to try:") + "</b></p><ol>" +
      item(toSay("Turn the wheel over the photo to zoom in on that place; drag with the middle "
                 "button to move. A double click of it shows everything.")) +
      item(toSay("Press <b>Ctrl+L</b>: the list of images. A check mark shows and hides an image, "
                 "a double click zooms to it, the right button does the rest.")) +
      item(toSay("Type <b>L</b> and Enter, click two points, press Enter: a line. With <b>F3</b> "
                 "ends and middles of lines are taken exactly.")) +
      item(toSay("Click the line and drag one of its blue squares. <b>Ctrl+Z</b> takes it back.")) +
      item(toSay("Drop an image of your own on the window, or press <b>Ctrl+I</b>; "
                 "<b>Ctrl+S</b> saves the drawing.")) +
      "</ol><p>" + words("Escape leaves anything. F1 lists all commands.") + "</p>");
}

}  // namespace tarn::host
