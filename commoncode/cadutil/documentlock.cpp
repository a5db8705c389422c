#include "commoncode/cadutil/documentlock.h"

#include "acdocman.h"

namespace tarn::cad {

DocumentLock::DocumentLock(AcApDocument* document) : document_(document) {
  if (document_ && acDocManager->lockDocument(document_, AcAp::kWrite) != Acad::eOk) {
    document_ = nullptr;
  }
}

DocumentLock::~DocumentLock() {
  if (document_) acDocManager->unlockDocument(document_);
}

}  // namespace tarn::cad
