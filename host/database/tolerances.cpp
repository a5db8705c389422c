#include <map>
#include <vector>

#include "acgi.h"
#include "dbfcf.h"
#include "host/database/textmeasure.h"
#include "host/database/valuedentity.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbFcf, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        TOLERANCE, ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbFcfValues& values, Filing& filing) {
  filing.all(values.location, values.normal, values.direction, values.text, values.style,
             values.textHeight);
}

template class AcDbValuedEntity<AcDbFcfValues>;

namespace {

constexpr double kRowHeight = 2;  ///< heights of a text
constexpr wchar_t kSignFont[] = L"{\\Fgdt;";

/// What is seen for the signs that stand at the letters of the font; where no usual font has the
/// sign, something that is read the same.
std::wstring signOf(wchar_t letter) {
  static const std::map<wchar_t, std::wstring> kSigns = {
      {L'a', L"\u2220"}, {L'b', L"\u22A5"},       {L'c', L"\u25B1"},   {L'd', L"\u2313"},
      {L'e', L"\u25CB"}, {L'f', L"\u2225"},       {L'g', L"/\u25CB/"}, {L'h', L"\u2197"},
      {L'i', L"="},      {L'j', L"\u2295"},       {L'k', L"\u2312"},   {L'l', L"(L)"},
      {L'm', L"(M)"},    {L'n', L"\u2300"},       {L'p', L"(P)"},      {L'r', L"\u25CE"},
      {L's', L"(S)"},    {L't', L"\u2197\u2197"}, {L'u', L"\u2014"}};
  const auto found = kSigns.find(letter);
  return found != kSigns.end() ? found->second : std::wstring(1, letter);
}

std::vector<std::wstring> split(const std::wstring& text, const std::wstring& mark) {
  std::vector<std::wstring> parts;
  size_t from = 0;
  for (size_t at = text.find(mark); at != std::wstring::npos; at = text.find(mark, from)) {
    parts.push_back(text.substr(from, at - from));
    from = at + mark.size();
  }
  parts.push_back(text.substr(from));
  return parts;
}

/// A field as it is read.
std::wstring plainField(std::wstring field) {
  const std::wstring sign = kSignFont;
  for (size_t at = field.find(sign); at != std::wstring::npos; at = field.find(sign)) {
    const size_t end = field.find(L'}', at);
    std::wstring signs;
    for (const wchar_t letter : field.substr(at + sign.size(), end - at - sign.size())) {
      signs += signOf(letter);
    }
    field.replace(at, end == std::wstring::npos ? end : end - at + 1, signs);
  }
  return field;
}

}  // namespace

Adesk::Boolean AcDbFcf::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const double size = values_.textHeight;
  const AcGeVector3d along = values_.direction.normal();
  const AcGeVector3d up = values_.normal.crossProduct(along).normal();
  double middle = 0;
  for (const std::wstring& row : split(values_.text, L"^J")) {
    double left = 0;
    for (const std::wstring& field : split(row, L"%%v")) {
      const std::wstring text = plainField(field);
      if (text.empty()) continue;
      const double width = (tarn::host::textWidth(text, {}) + 1) * size;
      const auto place = [&](double x, double y) {
        return values_.location + along * (left + x) + up * (middle + y);
      };
      const double half = kRowHeight * size / 2;
      const AcGePoint3d box[] = {place(0, -half), place(width, -half), place(width, half),
                                 place(0, half), place(0, -half)};
      draw->geometry().polyline(5, box);
      draw->geometry().text(place(size / 2, -size / 2), values_.normal, along, size, 1, 0,
                            text.c_str());
      left += width;
    }
    middle -= kRowHeight * size;
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbFcf::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                             const AcGePoint3d&, const AcGePoint3d&,
                                             const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray&) const {
  if (osnapMode == AcDb::kOsModeIns) snapPoints.append(values().location);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFcf::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                            AcDbIntArray&) const {
  gripPoints.append(values().location);
  return Acad::eOk;
}

/// The size of the text stays that of the style.
Acad::ErrorStatus AcDbFcf::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const AcGeVector3d up = transform * values_.normal.crossProduct(values_.direction);
  const AcGeVector3d along = transform * values_.direction;
  const AcGeVector3d normal = along.crossProduct(up);
  values_.location.transformBy(transform);
  if (along.length() > 0) values_.direction = along.normal();
  if (normal.length() > 0) values_.normal = normal.normal();
  recordGraphicsModified();
  return Acad::eOk;
}
