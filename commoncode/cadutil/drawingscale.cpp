#include "commoncode/cadutil/drawingscale.h"

#include "acedads.h"

namespace tarn::cad {
namespace {

constexpr double kSmallestScale = 3.0;
constexpr double kUsualScale = 500.0;

}  // namespace

void drawingScale(double& scale) {
  resbuf value{};
  const bool isRead = acedGetVar(L"userr1", &value) == RTNORM && value.restype == RTREAL;
  const bool isSet = isRead && value.resval.rreal >= kSmallestScale;
  scale = isSet ? value.resval.rreal : kUsualScale;
}

}  // namespace tarn::cad
