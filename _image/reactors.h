// When image entities are redrawn: editor and plot reactors. The message watcher stands in
// inputwatch.
#pragma once

#include <string>

#include "aced.h"
#include "acplplotreactor.h"
#include "dbid.h"

/// Watches commands. Attached to the host's editor while it lives.
class tarnEditorReactor : public AcEditorReactor {
 public:
  tarnEditorReactor();
  ~tarnEditorReactor() override;

  void commandWillStart(const ACHAR* command) override;
  void commandEnded(const ACHAR* command) override;
  // A watched command that does not end well owes its redraw just the same.
  void commandCancelled(const ACHAR* command) override;
  void commandFailed(const ACHAR* command) override;

  /// Draws the current document's image entity anew.
  void redrawImages();

 private:
  void commandOver(const ACHAR* command);

  /// Entities to redraw, and those that were open elsewhere at the last time.
  AcDbObjectIdArray m_redrawIds{0, 8};
  AcDbObjectIdArray m_missedIds{0, 8};
};

/// Watches plots. Attached to the host's plot reactor manager while it lives.
class tarnPlotReactor : public AcPlPlotReactor {
 public:
  tarnPlotReactor();
  ~tarnPlotReactor() override;

  void beginDocument(AcPlPlotInfo& plotInfo, const ACHAR* documentName, Adesk::Int32 copies,
                     bool plotToFile, const ACHAR* fileName) override;
  void endPlot() override;
  void plotCancelled() override;
};

namespace tarn::image {

/// Fills the set of watched command names: those of the configuration and the fixed ones.
void fillWatchedCommands();

/// True when refresh is suspended during the command; case does not matter.
bool isWatchedCommand(const std::wstring& command);

/// Redraws through the editor reactor, or not at all when there is none.
void redrawImages();

/// The same with the current document locked for writing.
void redrawImagesLocked();

}  // namespace tarn::image
