#include "host/graphics/textoutlines.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QTransform>
#include <map>

#include "host/database/textmeasure.h"
#include "host/graphics/fonts.h"

namespace tarn::host {

namespace {

constexpr int kDesignSize = 64;         ///< pixels; outlines have no hinting at it
constexpr double kUsualCapital = 0.72;  ///< of the size, for a font that does not say
constexpr int kMostKept = 20000;

class Outlines {
 public:
  explicit Outlines(const QFont& font) : font_(font) {
    font_.setPixelSize(kDesignSize);
    const double capital = QFontMetricsF(font_).capHeight();
    scale_ = 1 / (capital > 0 ? capital : kDesignSize * kUsualCapital);
  }
  const TextOutline& of(const QString& text) {
    const auto found = kept_.constFind(text);
    if (found != kept_.constEnd()) return *found;
    if (kept_.size() >= kMostKept) kept_.clear();
    TextOutline outline;
    outline.path.addText(0, 0, font_, text);
    outline.path = QTransform::fromScale(scale_, scale_).map(outline.path);
    outline.width = QFontMetricsF(font_).horizontalAdvance(text) * scale_;
    return *kept_.insert(text, outline);
  }

 private:
  QFont font_;
  double scale_ = 1;
  QHash<QString, TextOutline> kept_;
};

}  // namespace

const TextOutline& textOutline(const QString& font, const QStringList& usual, const QString& text) {
  thread_local QStringList families;
  thread_local std::map<QString, Outlines> fonts;
  if (families != usual) fonts.clear();
  families = usual;
  auto found = fonts.find(font);
  if (found == fonts.end()) found = fonts.emplace(font, Outlines(fontNamed(font, usual))).first;
  return found->second.of(text);
}

double measuredTextWidth(const std::wstring& text, const std::wstring& font) {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
    return estimatedTextWidth(text);
  }
  return textOutline(QString::fromStdWString(font), usualFamilies(), QString::fromStdWString(text))
      .width;
}

}  // namespace tarn::host
