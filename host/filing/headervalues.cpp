// Variables of a drawing in the header of its file.
#include <cmath>
#include <vector>

#include "base/text.h"
#include "host/database/headervariables.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

namespace {

constexpr int kRealCode = 40;
constexpr int kPointCode = 10;

/// The numbers of a variable; `values` stays as it is when one is missing or none.
void readNumbers(const TagDocument& document, const char* name, std::vector<double>& values) {
  const TagRange range = document.headerVariable(name);
  if (range.end - range.begin < values.size()) return;
  std::vector<double> found(values.size());
  for (std::uint32_t i = 0; i < found.size(); ++i) {
    const bool isNumber = parseDouble(document.word(document.tag(range.begin + i)), found[i]);
    if (!isNumber || !std::isfinite(found[i])) return;
  }
  values = found;
}

double numberOf(const TagDocument& document, const char* name, double standard) {
  std::vector<double> value = {standard};
  readNumbers(document, name, value);
  return value[0];
}

AcGePoint2d pointOf(const TagDocument& document, const char* name, const AcGePoint2d& standard) {
  std::vector<double> values = {standard.x, standard.y};
  readNumbers(document, name, values);
  return {values[0], values[1]};
}

/// Puts numbers into the header, the first at `code`, the next ten codes higher; each that is what
/// was read keeps its text.
void put(const TagDocument& document, TagEditor& header, const char* name, int code,
         const std::vector<double>& before, const std::vector<double>& now) {
  if (before == now) return;
  const bool isReal = code < 60;
  const auto textOf = [&](double value) {
    return isReal ? formatReal(value) : std::to_string(static_cast<int>(value));
  };
  const TagRange range = document.headerVariable(name);
  if (range.end - range.begin >= now.size()) {
    const std::uint32_t begin = document.tagsOf(document.section("HEADER")->firstObject).begin;
    for (std::uint32_t i = 0; i < now.size(); ++i) {
      if (before[i] != now[i]) header.replaceAt(range.begin + i - begin, textOf(now[i]));
    }
    return;
  }
  header.toEnd();
  header.addWord(9, name);
  for (const double value : now) {
    header.addWord(code, textOf(value));
    code += 10;
  }
}

}  // namespace

HeaderVariables headerVariablesOf(const TagDocument& document) {
  HeaderVariables found;
  const double scale = numberOf(document, "$LTSCALE", found.linetypeScale);
  if (scale > 0) found.linetypeScale = scale;
  const double mode = numberOf(document, "$PDMODE", found.pointMode);
  const bool isMode = std::abs(mode) < 1000 && isPointMode(static_cast<int>(mode));
  if (isMode) found.pointMode = static_cast<Adesk::Int16>(mode);
  found.pointSize = numberOf(document, "$PDSIZE", found.pointSize);
  found.showsLineWeights = numberOf(document, "$LWDISPLAY", 0) == 1;
  found.lowerLimit = pointOf(document, "$LIMMIN", found.lowerLimit);
  found.upperLimit = pointOf(document, "$LIMMAX", found.upperLimit);
  return found;
}

void writeHeaderVariables(const AcDbDatabase& database, const TagDocument& document,
                          TagEditor& header) {
  const HeaderVariables was = headerVariablesOf(document);
  const auto number = [&](const char* name, int code, double before, double now) {
    put(document, header, name, code, {before}, {now});
  };
  const auto point = [&](const char* name, const AcGePoint2d& before, const AcGePoint2d& now) {
    put(document, header, name, kPointCode, {before.x, before.y}, {now.x, now.y});
  };
  point("$LIMMIN", was.lowerLimit, database.limmin());
  point("$LIMMAX", was.upperLimit, database.limmax());
  number("$LTSCALE", kRealCode, was.linetypeScale, database.ltscale());
  number("$PDMODE", 70, was.pointMode, database.pdmode());
  number("$PDSIZE", kRealCode, was.pointSize, database.pdsize());
  // R14 and before know no line weights.
  if (document.version() < "AC1015") return;
  number("$LWDISPLAY", 290, was.showsLineWeights ? 1 : 0, database.lineWeightDisplay() ? 1 : 0);
}

void writeFrameMode(const AcDbDatabase& database, std::string_view kind, TagEditor& object) {
  const bool ofImages = kind == "RASTERVARIABLES";
  if (!ofImages && kind != "WIPEOUTVARIABLES") return;
  object.enter(ofImages ? "AcDbRasterVariables" : "AcDbWipeoutVariables");
  object.setInteger(70, ofImages ? database.imageFrame() : database.wipeoutFrame(), 1);
}

}  // namespace tarn::host
