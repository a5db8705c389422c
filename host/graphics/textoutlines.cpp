#include "host/graphics/textoutlines.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPainterPathStroker>
#include <QRawFont>
#include <QTransform>
#include <map>

#include "host/database/textmeasure.h"
#include "host/graphics/fonts.h"

namespace tarn::host {

namespace {

constexpr int kDesignSize = 64;         ///< pixels; outlines have no hinting at it
constexpr double kUsualCapital = 0.72;  ///< of the size, for a font that does not say
constexpr double kBolder = 0.08;        ///< of the size, how much thicker
constexpr int kMostWidths = 200000;
/// Of 24 bytes. No screen has room for more texts that can be read.
constexpr int kMostElements = 1500000;

class Outlines {
 public:
  explicit Outlines(const QFont& font) : font_(font) {
    font_.setPixelSize(kDesignSize);
    const double capital = QFontMetricsF(font_).capHeight();
    scale_ = 1 / (capital > 0 ? capital : kDesignSize * kUsualCapital);
    thickens_ = font_.bold() && QRawFont::fromFont(font_).weight() < QFont::DemiBold;
  }
  const TextOutline& of(const QString& text) {
    const auto found = kept_.constFind(text);
    if (found != kept_.constEnd()) return *found;
    if (elements_ >= kMostElements) {
      kept_.clear();
      elements_ = 0;
    }
    TextOutline outline;
    outline.path.addText(0, 0, font_, text);
    if (thickens_) thicken(outline.path);
    outline.path = QTransform::fromScale(scale_, scale_).map(outline.path);
    outline.width = widthOf(text);
    elements_ += outline.path.elementCount();
    return *kept_.insert(text, outline);
  }
  /// Without the outline, which takes a hundred times as much memory.
  double widthOf(const QString& text) {
    const auto found = widths_.constFind(text);
    if (found != widths_.constEnd()) return *found;
    if (widths_.size() >= kMostWidths) widths_.clear();
    return *widths_.insert(text, QFontMetricsF(font_).horizontalAdvance(text) * scale_);
  }

 private:
  /// Bold letters of a family that has none.
  static void thicken(QPainterPath& path) {
    QPainterPathStroker pen;
    pen.setWidth(kDesignSize * kBolder);
    const QPainterPath rim = pen.createStroke(path);
    path.setFillRule(Qt::WindingFill);
    path.addPath(rim);
  }

  QFont font_;
  double scale_ = 1;
  bool thickens_ = false;
  QHash<QString, TextOutline> kept_;
  QHash<QString, double> widths_;
  int elements_ = 0;
};

Outlines& outlinesOf(const QString& font, const QStringList& usual) {
  thread_local QStringList families;
  thread_local std::map<QString, Outlines> fonts;
  if (families != usual) fonts.clear();
  families = usual;
  auto found = fonts.find(font);
  if (found == fonts.end()) found = fonts.emplace(font, Outlines(fontNamed(font, usual))).first;
  return found->second;
}

}  // namespace

const TextOutline& textOutline(const QString& font, const QStringList& usual, const QString& text) {
  return outlinesOf(font, usual).of(text);
}

double measuredTextWidth(const std::wstring& text, const std::wstring& font) {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
    return estimatedTextWidth(text);
  }
  return outlinesOf(QString::fromStdWString(font), usualFamilies())
      .widthOf(QString::fromStdWString(text));
}

}  // namespace tarn::host
