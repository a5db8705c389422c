#include "_image/rectify/controlpoints.h"

#include <QLocale>
#include <QTextStream>

#include <cmath>
#include <map>

#include "base/path.h"
#include "base/text.h"

namespace tarn::image {
namespace {

constexpr size_t kFields = 4;
constexpr size_t kMostImported = 20;
/// A longer line holds no four numbers.
constexpr qint64 kLongestLine = 4096;
constexpr int kPickedDecimals = 6;
constexpr int kMethods = 5;

/// False at the end. A line that is too long comes back empty.
bool readLine(QTextStream& stream, QString& line) {
  if (stream.atEnd()) return false;
  line = stream.readLine(kLongestLine);
  bool isTooLong = line.size() >= kLongestLine;
  if (!isTooLong) return true;
  while (isTooLong && !stream.atEnd()) {
    isTooLong = stream.readLine(kLongestLine).size() >= kLongestLine;
  }
  line = QStringLiteral("-");
  return true;
}

/// Always with a point as the decimal separator, whatever the user's locale.
std::string recordLine(int index, char kind, double x, double y) {
  return QString::asprintf("%d,%c,%f,%f\n", index, kind, x, y).toStdString();
}

struct RecordLine {
  int index = 0;
  bool isOld = false;
  double x = 0;
  double y = 0;
};

std::optional<RecordLine> recordLineOf(const std::string& text) {
  const std::vector<std::string> fields = split(text, ',');
  RecordLine line;
  if (fields.size() != kFields || (fields[1] != "o" && fields[1] != "n") ||
      !parseInt(fields[0], line.index) || !parseDouble(fields[2], line.x) ||
      !parseDouble(fields[3], line.y) || !std::isfinite(line.x) || !std::isfinite(line.y)) {
    return std::nullopt;
  }
  line.isOld = fields[1] == "o";
  return line;
}

}  // namespace

bool operator==(const ControlPoint& a, const ControlPoint& b) {
  return a.sourceEast == b.sourceEast && a.sourceNorth == b.sourceNorth &&
         a.targetEast == b.targetEast && a.targetNorth == b.targetNorth;
}

bool isSamePair(const ControlPoint& a, const ControlPoint& b) {
  return std::fabs(a.sourceEast - b.sourceEast) < kSamePoint &&
         std::fabs(a.sourceNorth - b.sourceNorth) < kSamePoint &&
         std::fabs(a.targetEast - b.targetEast) < kSamePoint &&
         std::fabs(a.targetNorth - b.targetNorth) < kSamePoint;
}

QString coordinateText(double value) {
  return QString::number(value, 'f', QLocale::FloatingPointShortest);
}

QString pickedText(double value) {
  return QString::number(value, 'f', kPickedDecimals);
}

std::optional<double> coordinateOf(const QString& text) {
  bool isNumber = false;
  const double value = text.trimmed().toDouble(&isNumber);
  if (!isNumber || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<ControlPoint> pointOf(const QStringList& fields) {
  if (fields.size() != static_cast<int>(kFields)) return std::nullopt;
  std::optional<double> values[kFields];
  for (size_t i = 0; i < kFields; ++i) {
    values[i] = coordinateOf(fields[static_cast<int>(i)]);
    if (!values[i]) return std::nullopt;
  }
  return ControlPoint{*values[0], *values[1], *values[2], *values[3]};
}

std::optional<ControlPoint> pointOfLine(const QString& line) {
  QString blanks = line;
  blanks.replace('\t', ' ');
  QStringList fields = blanks.split(' ', Qt::SkipEmptyParts);
  if (fields.size() != static_cast<int>(kFields)) fields = line.split(',', Qt::SkipEmptyParts);
  return pointOf(fields);
}

ImportedPoints readControlPoints(QTextStream& stream) {
  ImportedPoints imported;
  QString line;
  while (imported.points.size() <= kMostImported && readLine(stream, line)) {
    if (line.trimmed().isEmpty()) continue;
    if (const auto point = pointOfLine(line)) {
      imported.points.push_back(*point);
    } else {
      ++imported.skippedLines;
    }
  }
  imported.hasMore = !stream.atEnd();
  return imported;
}

std::string recordFileText(const PointRecord& record) {
  std::string text = std::to_string(record.method) + "\n";
  int index = 0;
  for (const ControlPoint& point : record.points) {
    text += recordLine(index++, 'o', point.sourceEast, point.sourceNorth);
  }
  index = 0;
  for (const ControlPoint& point : record.points) {
    text += recordLine(index++, 'n', point.targetEast, point.targetNorth);
  }
  return text;
}

std::optional<PointRecord> recordOfFileText(const std::string& text) {
  const std::vector<std::string> lines = split(text, '\n');
  PointRecord record;
  if (!parseInt(lines.front(), record.method) || record.method < 0 || record.method >= kMethods) {
    return std::nullopt;
  }
  std::map<int, ControlPoint> points;
  std::map<int, int> parts;
  for (size_t i = 1; i < lines.size(); ++i) {
    if (trim(std::string_view(lines[i])).empty()) continue;
    const auto line = recordLineOf(lines[i]);
    if (!line) return std::nullopt;
    ControlPoint& point = points[line->index];
    (line->isOld ? point.sourceEast : point.targetEast) = line->x;
    (line->isOld ? point.sourceNorth : point.targetNorth) = line->y;
    parts[line->index] |= line->isOld ? 1 : 2;
  }
  for (const auto& [index, point] : points) {
    if (parts[index] != 3) return std::nullopt;
    record.points.push_back(point);
  }
  return record;
}

std::wstring recordFilePath(const std::wstring& imagePath) {
  const size_t dot = imagePath.find_last_of(L'.');
  const bool isOfName = dot != std::wstring::npos && dot > folderOf(imagePath).size();
  return imagePath.substr(0, isOfName ? dot : imagePath.size()) + L".FTWx";
}

}  // namespace tarn::image
