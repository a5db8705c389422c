#include "_image/moduleglobals.h"

AsdkDataManager<CDocData>* g_dataMap = nullptr;
tarnEditorReactor* g_editorReactor = nullptr;
tarnPlotReactor* g_plotReactor = nullptr;
AsdkInputPointMonitor* g_inputPointMonitor = nullptr;
CCADCallBackRectifyOperator* g_rectifyOperator = nullptr;
CCommonDockControlBar* g_imageBar = nullptr;
ImageDialog* g_imageDialog = nullptr;
std::set<std::wstring>* g_watchedCommands = nullptr;

namespace tarn::image {

void (*g_imageListChanged)() = nullptr;
RefreshFlags g_refresh;
double g_viewTwistAtCommandStart = 0;
bool g_suppressPixels = false;
std::optional<short> g_heldRegenMode;
bool g_useScreenRectOld = false;
int g_screenSizeReads = 0;
double g_plotValues[6] = {};
std::map<AcDbObjectId, std::array<double, 6>> g_plotViewports;

}  // namespace tarn::image
