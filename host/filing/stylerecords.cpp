// Patterns of lines and styles of texts as they stand in drawing files.
#include "dbsymtb.h"
#include "host/filing/objectcodec.h"

namespace tarn::host {

namespace {

constexpr int kItalicFlag = 1 << 24;
constexpr int kBoldFlag = 1 << 25;

/// The family that stands in extended data counts before the file.
std::wstring fontOf(const TagView& tags) {
  const std::wstring family = tags.text(1000);
  if (family.empty()) return tags.text(3);
  const int flags = tags.integer(1071);
  return family + ((flags & kBoldFlag) != 0 ? L"|b1" : L"") +
         ((flags & kItalicFlag) != 0 ? L"|i1" : L"");
}

}  // namespace

AcDbSymbolTableRecord* readLinetypeRecord(const TagView& tags) {
  auto* linetype = new AcDbLinetypeTableRecord;
  std::vector<double> dashes;
  tags.forEach([&](const Tag& tag) {
    if (tag.code == 49) dashes.push_back(tags.realOf(tag));
  });
  linetype->setDashes(std::move(dashes));
  return linetype;
}

AcDbSymbolTableRecord* readStyleRecord(const TagView& tags) {
  auto* style = new AcDbTextStyleTableRecord;
  AcDbTextStyleTableRecord::Values values;
  values.font = fontOf(tags);
  values.textSize = tags.real(40);
  const double scale = tags.real(41, 1);
  if (scale > 0) values.xScale = scale;
  values.obliquingAngle = tags.angle(50);
  style->setValues(std::move(values));
  return style;
}

}  // namespace tarn::host
