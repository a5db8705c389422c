// The editor as an object: command reactors, input point monitors, current view, commands.
#pragma once

#include "accmd.h"
#include "acedads.h"
#include "adesk.h"
#include "rxdict.h"
#include "rxevent.h"

class AcApDocument;
class AcDbDatabase;
class AcDbViewport;
class AcDbViewTableRecord;
class AcEdInputPointManager;

/// Name of the editor object in the system registry.
#define ACED_EDITOR_OBJ ACRX_T("AcEditor")

/// Told about commands and about the life of drawings. `command` is the global name.
class ACADHOST_EXPORT AcEditorReactor : public AcRxEventReactor {
 public:
  ACRX_DECLARE_MEMBERS(AcEditorReactor);

  virtual void commandWillStart(const ACHAR* command);
  virtual void commandEnded(const ACHAR* command);
  virtual void commandCancelled(const ACHAR* command);
  virtual void commandFailed(const ACHAR* command);
  /// Text that is no command. A returned list of inputs is not run.
  virtual resbuf* unknownCommand(const ACHAR* command, AcDbDatabase* database);
  virtual void beginQuit();
  virtual void sysVarWillChange(const ACHAR* name);
  virtual void sysVarChanged(const ACHAR* name, Adesk::Boolean success);
  virtual void viewChanged();
};

/// The editor; "AcEditor" in the system registry. Reactors are not owned.
class ACADHOST_EXPORT AcEditor : public AcRxEvent {
 public:
  ACRX_DECLARE_MEMBERS(AcEditor);
};

#define acedEditor AcEditor::cast(acrxSysRegistry()->at(ACED_EDITOR_OBJ))

class AcEdInputPoint {
 public:
  AcEdInputPoint(AcApDocument* document, double x, double y) : document_(document), x_(x), y_(y) {}
  AcApDocument* document() const { return document_; }
  double x() const { return x_; }
  double y() const { return y_; }

 private:
  AcApDocument* document_;
  double x_;
  double y_;
};

class AcEdInputPointMonitorResult {};

/// Sees the points under the cursor while the user picks.
class ACADHOST_EXPORT AcEdInputPointMonitor {
 public:
  virtual ~AcEdInputPointMonitor() = default;
  virtual Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input,
                                              AcEdInputPointMonitorResult& output);
};

/// Monitors of one document. They are not owned.
class ACADHOST_EXPORT AcEdInputPointManager {
 public:
  virtual ~AcEdInputPointManager() = default;
  virtual Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor) = 0;
  virtual Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor) = 0;
};

/// The viewport of the sheet through which the model is current; null when the sheet is, or the
/// model's tab.
ACADHOST_EXPORT AcDbObjectId acedGetCurViewportObjectId();

/// Shows the record's centre, size and twist in the current viewport. No regeneration. A view of a
/// sheet is refused while the model is current.
ACADHOST_EXPORT Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view,
                                                     AcDbViewport* viewport);
