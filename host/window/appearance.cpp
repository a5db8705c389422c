#include "host/window/appearance.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

namespace tarn::host {

namespace {

QPalette darkPalette() {
  const QColor window(0x2b, 0x30, 0x37);
  const QColor base(0x1d, 0x21, 0x27);
  const QColor raised(0x38, 0x3e, 0x47);
  const QColor text(0xdd, 0xe1, 0xe6);
  const QColor faint(0x80, 0x88, 0x92);
  const QColor accent(0x3f, 0x7f, 0xb8);
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::Button, raised);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::BrightText, Qt::white);
  palette.setColor(QPalette::ToolTipBase, raised);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x6c, 0xb2, 0xea));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faint);
  }
  return palette;
}

}  // namespace

void applyAppearance(QApplication& application) {
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setPalette(darkPalette());
  QFont font = QApplication::font();
  font.setFamilies({"DejaVu Sans", "WenQuanYi Micro Hei", font.family()});
  QApplication::setFont(font);
  application.setStyleSheet(
      "QSplitter::handle { background: #3a414b; }"
      "QToolBar { border: 0; spacing: 2px; padding: 2px; }"
      "QStatusBar::item { border: 0; }"
      "#prompt { color: #8fb8de; }");
}

}  // namespace tarn::host
