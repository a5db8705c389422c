// The module's program-wide state, in one place: the owned singletons (raw pointers, null when
// absent, made and deleted where named) and the few values that the parts share. Main thread only.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "dbid.h"

template <class T>
class AsdkDataManager;
class AsdkInputPointMonitor;
class CCommonDockControlBar;
class ImageDialog;
class CCADCallBackRectifyOperator;
class CDocData;
class tarnEditorReactor;
class tarnPlotReactor;

/// The per-document registry. Made at the first full load and kept until the process ends: it
/// serves entities of open documents, also after the module was unloaded.
extern AsdkDataManager<CDocData>* g_dataMap;
/// Made at load, deleted at unload (acrxentrypoint).
extern tarnEditorReactor* g_editorReactor;
extern tarnPlotReactor* g_plotReactor;
extern AsdkInputPointMonitor* g_inputPointMonitor;
/// What rectification components call back; made at the first rectification (rectify), kept.
extern CCADCallBackRectifyOperator* g_rectifyOperator;
/// The panel and its bar; made by the panel's command, deleted at unload.
extern CCommonDockControlBar* g_imageBar;
extern ImageDialog* g_imageDialog;
/// Names of the commands during which refresh is suspended. Made at load (reactors), kept.
extern std::set<std::wstring>* g_watchedCommands;

namespace tarn::image {

/// Told when the current document has other images, or another document is current. Null while no
/// panel shows them.
extern void (*g_imageListChanged)();
inline void tellImageListChanged() {
  if (g_imageListChanged) g_imageListChanged();
}

/// What the reactors and the message watcher tell each other.
struct RefreshFlags {
  /// A watched command or a middle-button drag is under way; a redraw is owed when it ends.
  bool suspendRefresh = false;
  /// Command "plot" runs; the message watcher ignores everything.
  bool plotting = false;
  /// Command "VIEWCUBEACTION" runs.
  bool viewCube = false;
};
extern RefreshFlags g_refresh;

/// VIEWTWIST when the last command started, in radians.
extern double g_viewTwistAtCommandStart;

/// Only markers are drawn, no pixels: on between the start and the end of a watched command.
extern bool g_suppressPixels;

/// REGENMODE as it was before a watched command, during which the host is asked to let pictures
/// stand; empty otherwise.
extern std::optional<short> g_heldRegenMode;

/// GetScreenRect gives what GetScreenRectOld gives: on while the drawing pipeline draws a twisted
/// view.
extern bool g_useScreenRectOld;

/// How often the screen size was read for drawing.
extern int g_screenSizeReads;

/// The region that is being plotted, kept by the plot reactor; all 0 between plots. Of a sheet, in
/// its own units; see view/plotvalues.h for what each value is.
extern double g_plotValues[6];
/// The same for the model as each viewport of the plotted sheet shows it.
extern std::map<AcDbObjectId, std::array<double, 6>> g_plotViewports;

}  // namespace tarn::image
