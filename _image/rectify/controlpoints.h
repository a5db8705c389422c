// Control points: one row of the dialog's table, the texts of files that hold them. Pure.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

class QTextStream;

namespace tarn::image {

/// A point of the image as it is placed now, and the ground where that point belongs.
struct ControlPoint {
  double sourceEast = 0;
  double sourceNorth = 0;
  double targetEast = 0;
  double targetNorth = 0;
};
bool operator==(const ControlPoint& a, const ControlPoint& b);

/// Two pairs are the same when all four coordinates differ by less than this.
constexpr double kSamePoint = 0.00001;
bool isSamePair(const ControlPoint& a, const ControlPoint& b);

/// Decimal text of a coordinate, without an exponent and with every digit that its number has.
QString coordinateText(double value);
/// With 6 decimals, as picked points are written.
QString pickedText(double value);
/// A whole text as a finite number, with a point as the decimal separator.
std::optional<double> coordinateOf(const QString& text);
/// Four texts in the order of the fields, or nothing when one is no number.
std::optional<ControlPoint> pointOf(const QStringList& fields);

/// One line of a point file: four numbers separated by blanks, or else by commas.
// Deliberate: commas followed by blanks are no separators, since the blanks already give four
// fields.
std::optional<ControlPoint> pointOfLine(const QString& line);

/// What an import takes.
struct ImportedPoints {
  std::vector<ControlPoint> points;
  int skippedLines = 0;  ///< of those read, not empty and without a point
  bool hasMore = false;  ///< the file goes on behind the last point taken
};
/// Reads lines until the end, or until more than 20 points were taken.
// Deliberate: so 21 points at most, later lines are not read.
ImportedPoints readControlPoints(QTextStream& stream);

/// The record file of a rectification.
struct PointRecord {
  int method = -1;
  std::vector<ControlPoint> points;
};
/// Lines with their ends: the method, the old points ("%d,o,%f,%f"), the new ones ("%d,n,%f,%f").
std::string recordFileText(const PointRecord& record);
/// The reverse; nothing when the text is none of these files, or the two lists do not match.
std::optional<PointRecord> recordOfFileText(const std::string& text);
/// The image's path with "FTWx" in place of what stands behind the last ".".
std::wstring recordFilePath(const std::wstring& imagePath);

}  // namespace tarn::image
