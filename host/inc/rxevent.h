// The base of the editor's events.
#pragma once

#include "adesk.h"
#include "rxobject.h"

class ACADHOST_EXPORT AcRxEventReactor : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxEventReactor);
};

class ACADHOST_EXPORT AcRxEvent : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxEvent);
  virtual void addReactor(AcRxEventReactor* reactor) = 0;
  virtual void removeReactor(AcRxEventReactor* reactor) = 0;
};
