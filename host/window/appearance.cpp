#include "host/window/appearance.h"

#include <QApplication>
#include <QFont>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <cmath>

#include "host/window/icons.h"

namespace tarn::host {

namespace {

struct Shades {
  QRgb window, base, raised, text, faint, accent, link, rim;
};
constexpr Shades kDark = {0xff2b3037, 0xff1d2127, 0xff383e47, 0xffdde1e6,
                          0xff959da7, 0xff33709f, 0xff6cb2ea, 0xff5a636f};
/// What is wrong, in words on the window.
constexpr QRgb kWarningOnDark = 0xfff29a92;
constexpr QRgb kWarningOnLight = 0xffa32018;
constexpr Shades kLight = {0xfff1f2f4, 0xffffffff, 0xffe4e6ea, 0xff1c2127,
                           0xff5d6570, 0xff1f6aa5, 0xff1560a0, 0xffa3aab4};

/// Fusion takes the rim of menus from the window's colour; on a dark one it cannot be seen.
class RimmedStyle final : public QProxyStyle {
 public:
  RimmedStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}
  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    if (metric == PM_MenuPanelWidth) return 1;
    // Smaller than usual: all commands have a place without a second row.
    if (metric == PM_ToolBarIconSize) return 20;
    return QProxyStyle::pixelMetric(metric, option, widget);
  }
  /// The style's own buttons of docks and of bars without room are black on every window.
  QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                     const QWidget* widget) const override {
    const QColor ink = QApplication::palette().color(QPalette::WindowText);
    if (which == SP_TitleBarCloseButton) return makeIcon("cross", ink);
    if (which == SP_TitleBarNormalButton) return makeIcon("float", ink);
    if (which == SP_ToolBarHorizontalExtensionButton ||
        which == SP_ToolBarVerticalExtensionButton) {
      return makeIcon("more", ink);
    }
    return QProxyStyle::standardIcon(which, option, widget);
  }
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_FrameMenu && element != PE_PanelTipLabel) return;
    painter->save();
    painter->setPen(option->palette.color(QPalette::Mid));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
  }
};

/// What the platform gave the program before its first palette was set.
bool systemIsDark() {
  static const bool isDark = QApplication::palette().color(QPalette::Window).lightness() < 128;
  return isDark;
}

double luminance(const QColor& color) {
  const auto linear = [](double v) {
    return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

}  // namespace

double contrast(const QColor& a, const QColor& b) {
  const double first = luminance(a) + 0.05;
  const double second = luminance(b) + 0.05;
  return first > second ? first / second : second / first;
}

QColor warningOn(const QPalette& palette) {
  const bool isDark = palette.color(QPalette::Window).lightness() < 128;
  return QColor(isDark ? kWarningOnDark : kWarningOnLight);
}

QPalette paletteOf(Appearance appearance) {
  const Shades& shades = appearance == Appearance::kDark ? kDark : kLight;
  QPalette palette;
  const auto set = [&](QPalette::ColorRole role, QRgb color) { palette.setColor(role, color); };
  set(QPalette::Window, shades.window);
  set(QPalette::WindowText, shades.text);
  set(QPalette::Base, shades.base);
  set(QPalette::AlternateBase, shades.window);
  set(QPalette::Text, shades.text);
  set(QPalette::PlaceholderText, shades.faint);
  set(QPalette::Button, shades.raised);
  set(QPalette::ButtonText, shades.text);
  set(QPalette::BrightText, 0xffffffff);
  set(QPalette::ToolTipBase, shades.raised);
  set(QPalette::ToolTipText, shades.text);
  set(QPalette::Highlight, shades.accent);
  set(QPalette::HighlightedText, 0xffffffff);
  set(QPalette::Link, shades.link);
  set(QPalette::Mid, shades.rim);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, shades.faint);
  }
  return palette;
}

void applyAppearance(QApplication& application, Appearance appearance) {
  const bool systemDark = systemIsDark();
  const bool dark =
      appearance == Appearance::kDark || (appearance == Appearance::kSystem && systemDark);
  const QPalette palette = paletteOf(dark ? Appearance::kDark : Appearance::kLight);
  QApplication::setStyle(new RimmedStyle);
  QApplication::setPalette(palette);
  QFont font = QApplication::font();
  font.setFamilies({"DejaVu Sans", "WenQuanYi Micro Hei", font.family()});
  QApplication::setFont(font);
  application.setStyleSheet(
      QString("QSplitter::handle { background: %1; }"
              "QToolBar { border: 0; spacing: 2px; padding: 2px; }"
              "QStatusBar::item { border: 0; }"
              "#suggestions { border: 1px solid %1; }"
              "#prompt { color: %2; }")
          .arg(palette.color(QPalette::Mid).name(), palette.color(QPalette::Link).name()));
}

}  // namespace tarn::host
