// Documents: the open drawings, which of them is current, and their locks. Main thread only.
#pragma once

#include "acdb.h"
#include "adesk.h"
#include "rxobject.h"

class AcApDocManager;
class AcDbDatabase;
class AcEdInputPointManager;

namespace AcAp {
enum DocLockMode {
  kNone = 0x00,
  kAutoWrite = 0x01,
  kNotLocked = 0x02,
  kWrite = 0x04,
  kProtectedAutoWrite = 0x14,
  kRead = 0x20,
  kXWrite = 0x40
};
}  // namespace AcAp

/// One open drawing. Owned by the document manager.
class ACADHOST_EXPORT AcApDocument : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcApDocument);

  /// Full path, or the drawing's title when it was never saved.
  virtual const ACHAR* fileName() const = 0;
  virtual const ACHAR* docTitle() const = 0;
  virtual AcDbDatabase* database() const = 0;
  /// The strongest lock in force.
  virtual AcAp::DocLockMode lockMode(bool includeMyLocks = false) const = 0;
  virtual AcAp::DocLockMode myLockMode() const = 0;
  /// True while no command runs in it.
  virtual bool isQuiescent() const = 0;
  virtual AcEdInputPointManager* inputPointManager() const = 0;
};

class ACADHOST_EXPORT AcApDocManagerReactor : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcApDocManagerReactor);

  virtual void documentCreateStarted(AcApDocument* document);
  virtual void documentCreated(AcApDocument* document);
  virtual void documentToBeDestroyed(AcApDocument* document);
  virtual void documentDestroyed(const ACHAR* fileName);
  virtual void documentToBeActivated(AcApDocument* document);
  virtual void documentActivated(AcApDocument* document);
  virtual void documentToBeDeactivated(AcApDocument* document);
  virtual void documentBecameCurrent(AcApDocument* document);
  virtual void documentLockModeChanged(AcApDocument* document, AcAp::DocLockMode previous,
                                       AcAp::DocLockMode mine, AcAp::DocLockMode strongest,
                                       const ACHAR* globalCommandName);
};

class ACADHOST_EXPORT AcApDocManager : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcApDocManager);

  virtual AcApDocument* curDocument() const = 0;
  virtual AcApDocument* mdiActiveDocument() const = 0;
  virtual AcApDocument* document(const AcDbDatabase* database) const = 0;
  virtual int documentCount() const = 0;
  /// Locks nest; each needs its unlock. A lock other than kRead is refused with eLockViolation
  /// while the document is locked exclusively by a command of another document.
  virtual Acad::ErrorStatus lockDocument(AcApDocument* document,
                                         AcAp::DocLockMode mode = AcAp::kWrite,
                                         const ACHAR* globalName = nullptr,
                                         const ACHAR* localName = nullptr, bool prompt = true) = 0;
  virtual Acad::ErrorStatus unlockDocument(AcApDocument* document) = 0;
  virtual Acad::ErrorStatus setCurDocument(AcApDocument* document,
                                           AcAp::DocLockMode mode = AcAp::kNone,
                                           bool activate = false) = 0;
  /// Queues text for the command line; it runs once the running command has ended. A blank or a
  /// line end in it is Enter.
  virtual Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const ACHAR* text,
                                                bool activate = true, bool wrapUpInactive = false,
                                                bool echo = true) = 0;
  virtual void addReactor(AcApDocManagerReactor* reactor) = 0;
  virtual void removeReactor(AcApDocManagerReactor* reactor) = 0;
};

ACADHOST_EXPORT AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
