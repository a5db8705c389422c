#include "host/graphics/fonts.h"

#include <QFontDatabase>
#include <QHash>

namespace tarn::host {

namespace {

struct Substitute {
  const char* beginning;  ///< of the name, without blanks, in lower case
  const char* families;   ///< tried in order
};
constexpr Substitute kSubstitutes[] = {
    {"arialnarrow", "Liberation Sans Narrow,Nimbus Sans Narrow"},
    {"arial", "Liberation Sans,Nimbus Sans"},
    {"helvetica", "Liberation Sans,Nimbus Sans"},
    {"timesnewroman", "Liberation Serif,Nimbus Roman"},
    {"times", "Liberation Serif,Nimbus Roman"},
    {"couriernew", "Liberation Mono,Nimbus Mono PS"},
    {"cour", "Liberation Mono,Nimbus Mono PS"},
    {"calibri", "Carlito,Liberation Sans,Nimbus Sans"},
    {"verdana", "DejaVu Sans"},
    {"tahoma", "DejaVu Sans Condensed,DejaVu Sans"},
};

QString plain(QString name) {
  return name.toLower().remove(' ').remove('-').remove('_');
}

/// Installed families by their plain names.
const QHash<QString, QString>& installed() {
  static const QHash<QString, QString> families = [] {
    QHash<QString, QString> found;
    for (const QString& family : QFontDatabase().families()) found.insert(plain(family), family);
    return found;
  }();
  return families;
}

QStringList familiesFor(const QString& wanted) {
  const auto exact = installed().constFind(wanted);
  if (exact != installed().constEnd()) return {*exact};
  for (const Substitute& substitute : kSubstitutes) {
    if (!wanted.startsWith(substitute.beginning)) continue;
    for (const QString& family : QString(substitute.families).split(',')) {
      if (installed().contains(plain(family))) return {family};
    }
  }
  return {};
}

}  // namespace

const QStringList& usualFamilies() {
  static const QStringList families = {
      "WenQuanYi Micro Hei", "WenQuanYi Zen Hei", "Noto Sans CJK SC", "Microsoft YaHei", "SimSun",
      "Droid Sans Fallback", "DejaVu Sans"};
  return families;
}

QFont fontNamed(const QString& name, const QStringList& usual) {
  const QStringList parts = name.split('|');
  QString family = plain(parts.front());
  const bool isStrokes = family.endsWith(".shx");
  for (const char* end : {".ttf", ".ttc", ".otf"}) {
    if (family.endsWith(end)) family.chop(4);
  }
  QFont font;
  font.setFamilies((isStrokes || family.isEmpty() ? QStringList() : familiesFor(family)) + usual);
  font.setBold(parts.contains("b1"));
  font.setItalic(parts.contains("i1"));
  return font;
}

}  // namespace tarn::host
