// The sentences of one language, and what they need of a fit.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include "commoncode/fitreport/fittext.h"
#include "inc/rectification.h"

namespace tarn::fitreport {

/// Numbers of rows as the table counts them.
class Rows {
 public:
  Rows(const std::vector<size_t>& places, const char* comma, const char* more)
      : places_(places), comma_(comma), more_(more) {}

  QString number(int point) const;
  /// A dozen at most.
  QString numbers(const kel::List<int>& points) const;

 private:
  const std::vector<size_t>& places_;
  const char* comma_;
  const char* more_;
};

/// The same change of several rows.
struct ChangedRows {
  kel::RectifyChange change;
  kel::List<int> rows;
};
std::vector<ChangedRows> groupsOf(const kel::RectifyRepair& repair);
/// The number of whole millions of a change, which is a zone's; 0 for none.
int zoneOf(const kel::RectifyChange& change);

/// "(east, north)" of up to three places.
QStringList suggestedPlaces(const kel::PointList& suggested);

QStringList chineseSentences(const kel::RectifyQuality& quality, const std::vector<size_t>& places);
QStringList englishSentences(const kel::RectifyQuality& quality, const std::vector<size_t>& places);

}  // namespace tarn::fitreport
