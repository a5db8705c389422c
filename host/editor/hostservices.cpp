#include "host/editor/hostservices.h"

#include "base/text.h"
#include "host/editor/profile.h"
#include "host/editor/textbuffer.h"

namespace tarn::host {

Acad::ErrorStatus HostServices::findFile(ACHAR* result, int capacity, const ACHAR* name,
                                         AcDbDatabase*, FindFileHint) {
  if (result == nullptr || name == nullptr || capacity <= 0) return Acad::eInvalidInput;
  const std::string path = profile_.findFile(toUtf8(name));
  if (path.empty()) return Acad::eFileNotFound;
  const bool fits = copyText(toWide(path), result, static_cast<size_t>(capacity));
  return fits ? Acad::eOk : Acad::eBufferTooSmall;
}

}  // namespace tarn::host
