// Run-time classes and empty notifications of the reactor bases.
#include "acdocman.h"
#include "aced.h"
#include "rxevent.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxEventReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcRxEvent, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditorReactor, AcRxEventReactor)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditor, AcRxEvent)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocument, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManager, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManagerReactor, AcRxObject)

void AcEditorReactor::commandWillStart(const ACHAR*) {}
void AcEditorReactor::commandEnded(const ACHAR*) {}
void AcEditorReactor::commandCancelled(const ACHAR*) {}
void AcEditorReactor::commandFailed(const ACHAR*) {}
resbuf* AcEditorReactor::unknownCommand(const ACHAR*, AcDbDatabase*) {
  return nullptr;
}
void AcEditorReactor::beginQuit() {}
void AcEditorReactor::sysVarWillChange(const ACHAR*) {}
void AcEditorReactor::sysVarChanged(const ACHAR*, Adesk::Boolean) {}
void AcEditorReactor::viewChanged() {}

Acad::ErrorStatus AcEdInputPointMonitor::monitorInputPoint(const AcEdInputPoint&,
                                                           AcEdInputPointMonitorResult&) {
  return Acad::eOk;
}

void AcApDocManagerReactor::documentCreateStarted(AcApDocument*) {}
void AcApDocManagerReactor::documentCreated(AcApDocument*) {}
void AcApDocManagerReactor::documentToBeDestroyed(AcApDocument*) {}
void AcApDocManagerReactor::documentDestroyed(const ACHAR*) {}
void AcApDocManagerReactor::documentToBeActivated(AcApDocument*) {}
void AcApDocManagerReactor::documentActivated(AcApDocument*) {}
void AcApDocManagerReactor::documentToBeDeactivated(AcApDocument*) {}
void AcApDocManagerReactor::documentBecameCurrent(AcApDocument*) {}
void AcApDocManagerReactor::documentLockModeChanged(AcApDocument*, AcAp::DocLockMode,
                                                    AcAp::DocLockMode, AcAp::DocLockMode,
                                                    const ACHAR*) {}
