// Entry and lifecycle of the module.
#include <string>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/commands.h"
#include "_image/docdata.h"
#include "_image/imagedockbar.h"
#include "_image/imageedit.h"
#include "_image/imagerestore.h"
#include "_image/inputwatch.h"
#include "_image/moduleglobals.h"
#include "_image/reactors.h"
#include "_image/rectify/dialogmaker.h"
#include "acdocman.h"
#include "afxwin.h"
#include "arxEntryPoint.h"
#include "base/path.h"
#include "base/text.h"
#include "commoncode/cadutil/message.h"
#include "inc/icadadapter.h"
#include "inc/kcore.h"
#include "rxmfcapi.h"

namespace {

constexpr size_t kDatabasePathCharacters = 200;

/// Path of the configuration database on the host's support paths; empty when there is none.
std::wstring findConfigurationDatabase() {
  ACHAR path[kDatabasePathCharacters] = {};
  acedFindFile(L"tarnconfig.db", path, kDatabasePathCharacters);
  path[kDatabasePathCharacters - 1] = 0;
  return path;
}

/// The database stands in a folder "system"; the log folder is that folder's sibling.
void startDiagnosticLog(const std::wstring& database) {
  const std::wstring folder =
      tarn::replacePathPiece(database, L"system", L"tarnconfig.db", L"tarn_log/");
  kel::Core::startLog(tarn::toUtf8(folder).c_str());
}

void setUpCurrentDocument() {
  if (!g_dataMap) {
    g_dataMap = new AsdkDataManager<CDocData>(&tarn::image::restoreImages);
  } else {
    g_dataMap->attach();
  }
  tarn::image::setImageReleaser();
  if (acDocManager) tarn::image::restoreImages(acDocManager->curDocument());
}

void createReactors() {
  if (!g_editorReactor) g_editorReactor = new tarnEditorReactor();
  if (!g_plotReactor) g_plotReactor = new tarnPlotReactor();
  if (!g_inputPointMonitor) g_inputPointMonitor = new AsdkInputPointMonitor();
}

template <typename T>
void destroy(T*& object) {
  delete object;
  object = nullptr;
}

/// What needs the framework's adapter; each missing piece ends it at a level that stands.
void setUpModule() {
  const auto adapter = tarn::image::makeObject<ICadAdapter>(tarn::image::kLoadAdapterSite);
  if (adapter.isNull()) {
    AfxMessageBox(L"没有加载 adapter_autocad.arx！");
    return;
  }
  adapter->prepareAdapter();
  tarn::image::registerFirstCommand();
  const std::wstring database = findConfigurationDatabase();
  if (database.empty()) {
    tarn::cad::printMessage(L"\n找不到tarnconfig.db");
    return;
  }
  startDiagnosticLog(database);
  tarn::image::registerFurtherCommands();
  tarn::image::fillWatchedCommands();
  tarn::image::registerDialogMaker();
  setUpCurrentDocument();
  createReactors();
}

}  // namespace

class C_imageApp : public AcRxArxApp {
 public:
  AcRx::AppRetCode On_kInitAppMsg(void* packet) override {
    CCadImage::rxInit();
    const AcRx::AppRetCode status = AcRxArxApp::On_kInitAppMsg(packet);
    acedRegisterWatchWinMsg(&tarn::image::watchMessage);
    setUpModule();
    return status;
  }

  // Deliberate: group "TARNIMAGE", the message watcher and the document registry outlive this.
  AcRx::AppRetCode On_kUnloadAppMsg(void* packet) override {
    const AcRx::AppRetCode status = AcRxArxApp::On_kUnloadAppMsg(packet);
    tarn::image::removeDialogMaker();
    destroy(g_editorReactor);
    destroy(g_plotReactor);
    destroy(g_inputPointMonitor);
    tarn::image::destroyImagePanel();
    return status;
  }

  void RegisterServerComponents() override {}

  static void _image_DrawImage() { tarn::image::commandDrawImage(); }
  static void _image_List() { tarn::image::commandList(); }
  static void _image_RectifyImage() { tarn::image::commandRectifyTestImage(); }
  static void _image_IOTEST() { tarn::image::commandNothing(); }
  static void _image_ShowImage() { tarn::image::commandShowImage(); }
  static void _image_AddImage() { tarn::image::commandNothing(); }
  static void _image_DelImage() { tarn::image::commandNothing(); }
};

IMPLEMENT_ARX_ENTRYPOINT(C_imageApp)

ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _DrawImage, DrawImage, ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _List, _image_List, ACRX_CMD_TRANSPARENT, nullptr)
// Deliberate: the local name of "_RectifyImage" reads like that of another command.
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _RectifyImage, _image_ShowImage,
                           ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _IOTEST, IOTEST, ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _ShowImage, ShowImage, ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _AddImage, AddImage, ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(C_imageApp, _image, _DelImage, DelImage, ACRX_CMD_TRANSPARENT, nullptr)
