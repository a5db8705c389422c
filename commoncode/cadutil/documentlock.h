#pragma once

class AcApDocument;

namespace tarn::cad {

/// A document locked for writing while the object lives. Locks nest.
class DocumentLock {
 public:
  explicit DocumentLock(AcApDocument* document);
  ~DocumentLock();
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;

  /// False when there is no document or the host refused; nothing may be changed then.
  bool isLocked() const { return document_ != nullptr; }

 private:
  AcApDocument* document_;
};

}  // namespace tarn::cad
