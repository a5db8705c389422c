#include "_image/displaysettings.h"

#include "dbapserv.h"

namespace tarn::image {
namespace {

constexpr const ACHAR* kDictionary = L"TARNIMAGEDICT";

AcDbDatabase* workingDatabase() {
  return acdbHostApplicationServices()->workingDatabase();
}

}  // namespace

cad::RecordPlace clarityRatioPlace() {
  return {kDictionary, L"ClarityRatio", workingDatabase()};
}

cad::RecordPlace offsetRatioPlace() {
  return {kDictionary, L"OffsetRatio", workingDatabase()};
}

int clarityRatio() {
  int ratio = 1;
  return cad::readInt(clarityRatioPlace(), ratio) && ratio >= 1 ? ratio : 1;
}

double offsetRatio() {
  double ratio = 1.0;
  return cad::readReal(offsetRatioPlace(), ratio) && ratio >= 1.0 ? ratio : 1.0;
}

}  // namespace tarn::image
