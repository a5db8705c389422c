// The per-document registry: one record a document, made when the document is and gone with it.
#pragma once

#include <map>
#include <memory>

#include "acdocman.h"

/// T is made from the document (AcApDocument*).
template <class T>
class AsdkDataManager : public AcApDocManagerReactor {
 public:
  /// Called when a document has become the current one and has a record.
  using ReadyHandler = void (*)(AcApDocument* document);

  explicit AsdkDataManager(ReadyHandler handler = nullptr) : m_ready(handler) { attach(); }
  ~AsdkDataManager() override {
    if (acDocManager) acDocManager->removeReactor(this);
  }

  /// Makes sure that the document manager that is there now tells this about its documents.
  void attach() {
    if (!acDocManager) return;
    acDocManager->removeReactor(this);
    acDocManager->addReactor(this);
  }

  /// The record of a document, or null.
  T* find(const AcApDocument* document) const {
    const auto found = m_records.find(document);
    return found == m_records.end() ? nullptr : found->second.get();
  }

  /// The record of the current document, or null.
  T* current() const { return acDocManager ? find(acDocManager->curDocument()) : nullptr; }

  /// The record of the document that owns the database, or null.
  T* ofDatabase(const AcDbDatabase* database) const {
    return acDocManager && database ? find(acDocManager->document(database)) : nullptr;
  }

  T& getOrCreate(AcApDocument* document) {
    std::unique_ptr<T>& record = m_records[document];
    if (!record) record = std::make_unique<T>(document);
    return *record;
  }

  void documentCreated(AcApDocument* document) override {
    if (document) getOrCreate(document);
  }
  void documentActivated(AcApDocument* document) override { ready(document); }
  void documentBecameCurrent(AcApDocument* document) override { ready(document); }
  void documentToBeDestroyed(AcApDocument* document) override { m_records.erase(document); }

 private:
  void ready(AcApDocument* document) {
    if (document && m_ready && find(document)) m_ready(document);
  }

  std::map<const AcApDocument*, std::unique_ptr<T>> m_records;
  ReadyHandler m_ready;
};
