// Variables of a drawing that say how lines, points and frames look.
#include "base/text.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

namespace {

struct Variable {
  const char* name;
  int code;
};
constexpr int kRealCode = 40;
constexpr Variable kPointMode = {"$PDMODE", 70};
constexpr Variable kPointSize = {"$PDSIZE", kRealCode};
constexpr Variable kLineWeights = {"$LWDISPLAY", 290};

/// All of them are 0 where the drawing says nothing.
double numberOf(const TagDocument& document, const Variable& variable) {
  const TagRange range = document.headerVariable(variable.name);
  double value = 0;
  if (range.begin < range.end) parseDouble(document.word(document.tag(range.begin)), value);
  return value;
}

void writeNumber(const TagDocument& document, TagEditor& header, const Variable& variable,
                 double now) {
  if (numberOf(document, variable) == now) return;
  const bool isReal = variable.code == kRealCode;
  const TagRange range = document.headerVariable(variable.name);
  if (range.begin < range.end) {
    const std::uint32_t begin = document.tagsOf(document.section("HEADER")->firstObject).begin;
    header.replaceAt(range.begin - begin,
                     isReal ? formatReal(now) : std::to_string(static_cast<int>(now)));
    return;
  }
  header.toEnd();
  header.addWord(9, variable.name);
  if (isReal) return header.addReal(variable.code, now);
  header.addInteger(variable.code, static_cast<int>(now));
}

}  // namespace

void readDisplayVariables(const TagDocument& document, AcDbDatabase& database) {
  constexpr double kHighestMode = 127;
  const double mode = numberOf(document, kPointMode);
  if (mode >= 0 && mode <= kHighestMode) database.setPdmode(static_cast<Adesk::Int16>(mode));
  database.setPdsize(numberOf(document, kPointSize));
  database.setLineWeightDisplay(numberOf(document, kLineWeights) == 1);
}

void writeDisplayVariables(const AcDbDatabase& database, const TagDocument& document,
                           TagEditor& header) {
  writeNumber(document, header, kPointMode, database.pdmode());
  writeNumber(document, header, kPointSize, database.pdsize());
  // R14 and before know no line weights.
  if (document.version() < "AC1015") return;
  writeNumber(document, header, kLineWeights, database.lineWeightDisplay() ? 1 : 0);
}

void writeFrameMode(const AcDbDatabase& database, std::string_view kind, TagEditor& object) {
  const bool ofImages = kind == "RASTERVARIABLES";
  if (!ofImages && kind != "WIPEOUTVARIABLES") return;
  object.enter(ofImages ? "AcDbRasterVariables" : "AcDbWipeoutVariables");
  object.setInteger(70, ofImages ? database.imageFrame() : database.wipeoutFrame(), 1);
}

}  // namespace tarn::host
