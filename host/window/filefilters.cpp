#include "host/window/filefilters.h"

#include <algorithm>
#include <array>

#include "base/path.h"
#include "base/text.h"

namespace tarn::host {

namespace {

/// A text often ends in its patterns already: "jpg (*.jpg)". They are added anew.
QString withoutPatterns(QString text) {
  const int open = text.lastIndexOf('(');
  if (open >= 0 && text.endsWith(')') && text.indexOf('*', open) > open) text.truncate(open);
  return text.trimmed();
}

QStringList bothCases(const QString& patterns) {
  QStringList result;
  for (const QString& piece : patterns.split(';')) {
    const QString pattern = piece.trimmed();
    if (pattern.isEmpty()) continue;
    if (pattern == "*.*") {
      result << "*";
    } else {
      result << pattern.toLower() << pattern.toUpper();
    }
  }
  result.removeDuplicates();
  return result;
}

}  // namespace

QStringList dialogFilters(const std::string& filter) {
  QStringList result;
  const QStringList pieces = QString::fromStdString(filter).split('|');
  for (int i = 0; i + 1 < pieces.size(); i += 2) {
    const QStringList patterns = bothCases(pieces[i + 1]);
    if (patterns.isEmpty()) continue;
    result << withoutPatterns(pieces[i]) + " (" + patterns.join(' ') + ")";
  }
  return result;
}

QString plainExtension(const std::string& extension) {
  QString text = QString::fromStdString(extension).trimmed();
  text.remove(0, text.lastIndexOf('.') + 1);
  return text == "*" ? QString() : text;
}

DroppedFiles sortDropped(const std::vector<std::string>& paths) {
  static constexpr std::array kImageEndings = {".tif", ".tiff", ".img", ".jpg", ".jpeg"};
  DroppedFiles sorted;
  for (const std::string& path : paths) {
    const std::string ending = toLower(extensionOf(path));
    const bool image =
        std::find(kImageEndings.begin(), kImageEndings.end(), ending) != kImageEndings.end();
    // DWG is tried, too: opening it says what to do.
    const bool drawing = ending == ".dxf" || ending == ".dwg";
    std::vector<std::string>& kind = image     ? sorted.images
                                     : drawing ? sorted.drawings
                                               : sorted.others;
    kind.push_back(path);
  }
  return sorted;
}

}  // namespace tarn::host
