#include "_image/settarnprogress.h"

#include "_image/binding/usesite.h"
#include "acedads.h"
#include "base/text.h"

using tarn::image::kProgressSite;

setTarnProgress::setTarnProgress() = default;
setTarnProgress::~setTarnProgress() = default;

void setTarnProgress::start(const char* label, int minimum, int maximum) {
  m_progress = tarn::image::makeObject<IProgressBar>(kProgressSite);
  if (!m_progress.isNull()) m_progress->start(label, minimum, maximum, 0);
}

void setTarnProgress::end() {
  if (!m_progress.isNull()) m_progress->end();
}

void setTarnProgress::setPosition(int position) {
  if (!m_progress.isNull()) m_progress->setPosition(position);
}

CCADImageConversionProBar::~CCADImageConversionProBar() = default;

void CCADImageConversionProBar::end() {
  acedRestoreStatusBar();
}

void CCADImageConversionProBar::setPosition(int position) {
  acedSetStatusBarProgressMeterPos(position);
}

void CCADImageConversionProBar::startMeter(const char* label, int minimum, int maximum) {
  acedSetStatusBarProgressMeter(tarn::toWide(label ? label : "").c_str(), minimum, maximum);
}

void CCADImageConversionProBar::setMeterData(void* /*data*/) {}
