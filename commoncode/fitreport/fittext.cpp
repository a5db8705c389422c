#include "commoncode/fitreport/fittext.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "commoncode/fitreport/fitwords.h"

namespace tarn::fitreport {
namespace {

bool isSame(const kel::RectifyChange& a, const kel::RectifyChange& b) {
  return std::tie(a.isTarget, a.swaps, a.addEast, a.addNorth) ==
         std::tie(b.isTarget, b.swaps, b.addEast, b.addNorth);
}

}  // namespace

QString Rows::number(int point) const {
  if (places_.empty()) return QString::number(point + 1);
  const bool isRow = point >= 0 && static_cast<size_t>(point) < places_.size();
  return isRow ? QString::number(places_[static_cast<size_t>(point)] + 1) : QString("?");
}

QString Rows::numbers(const kel::List<int>& points) const {
  constexpr int kMostNamed = 12;
  QStringList texts;
  for (const int point : points) {
    if (texts.size() == kMostNamed) return texts.join(comma_) + more_;
    texts << number(point);
  }
  return texts.join(comma_);
}

std::vector<ChangedRows> groupsOf(const kel::RectifyRepair& repair) {
  std::vector<ChangedRows> groups;
  for (const kel::RectifyChange& change : repair.changes) {
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const ChangedRows& group) {
      return isSame(group.change, change);
    });
    if (found == groups.end()) {
      groups.push_back({change, {change.row}});
    } else {
      found->rows.push_back(change.row);
    }
  }
  return groups;
}

int zoneOf(const kel::RectifyChange& change) {
  constexpr double kUnit = 1e6;
  return static_cast<int>(std::lround(std::fabs(change.addEast + change.addNorth) / kUnit));
}

QStringList suggestedPlaces(const kel::PointList& suggested) {
  constexpr int kMostSuggested = 3;
  QStringList places;
  for (const auto& place : suggested) {
    if (place.size() < 2 || places.size() >= kMostSuggested) continue;
    places << QString("(%1, %2)")
                  .arg(QString::number(place[0], 'f', 2), QString::number(place[1], 'f', 2));
  }
  return places;
}

QString roundedText(double value) {
  return QString::number(value, 'g', 6);
}

QString fitText(const kel::RectifyQuality& quality, const std::vector<size_t>& places,
                Language language) {
  QStringList texts = language == Language::kChinese ? chineseSentences(quality, places)
                                                     : englishSentences(quality, places);
  texts.removeAll(QString());
  return texts.join(" ");
}

}  // namespace tarn::fitreport
