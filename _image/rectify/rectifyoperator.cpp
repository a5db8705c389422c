#include "_image/rectify/rectifyoperator.h"

#include "_image/cadimage.h"
#include "_image/hostcommand.h"
#include "acedads.h"

void CCADCallBackRectifyOperator::redraw(int /*x*/, int /*y*/, int /*width*/, int /*height*/,
                                         double /*left*/, double /*top*/, double /*scaleX*/,
                                         double /*scaleY*/, const unsigned char* /*pixels*/) {
  tarn::image::sendCommandToHost(L"regen");
}

int CCADCallBackRectifyOperator::pickPoint(kel::List<double>& point) {
  point.clear();
  ads_point picked = {0, 0, 0};
  if (acedGetPoint(nullptr, L"", picked) != RTNORM) return -1;
  point = {picked[0], picked[1], 0.0};
  return 0;
}

void* CCADCallBackRectifyOperator::imageAnalyser() {
  return m_image ? m_image->pAnalyser(true) : nullptr;
}
