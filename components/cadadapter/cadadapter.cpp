#include "components/cadadapter/cadadapter.h"

#include <map>
#include <string>

#include "acdocman.h"
#include "acedads.h"
#include "acutads.h"
#include "base/path.h"
#include "base/text.h"
#include "components/cadadapter/imagepixels.h"
#include "components/cadadapter/userinterface.h"
#include "inc/iappmanager.h"
#include "tarnhost.h"

namespace kel {
namespace {

constexpr const char* kSource = "components/cadadapter";
constexpr size_t kPathCharacters = 4096;

std::map<std::string, bool>& moduleStates() {
  static std::map<std::string, bool> states;
  return states;
}

/// A system variable with its text, when it has one, freed in the end.
class SystemVariable {
 public:
  explicit SystemVariable(const std::string& name)
      : isRead_(acedGetVar(tarn::toWide(name).c_str(), &value_) == RTNORM) {}
  ~SystemVariable() {
    if (isRead_ && value_.restype == RTSTR) acutDelString(value_.resval.rstring);
  }
  SystemVariable(const SystemVariable&) = delete;
  SystemVariable& operator=(const SystemVariable&) = delete;

  bool isRead() const { return isRead_; }
  const resbuf& value() const { return value_; }
  double real() const { return isRead_ && value_.restype == RTREAL ? value_.resval.rreal : 0; }

  Variant variant() const {
    if (!isRead_) return {};
    switch (value_.restype) {
      case RTSHORT:
        return static_cast<int>(value_.resval.rint);
      case RTLONG:
        return static_cast<int>(value_.resval.rlong);
      case RTREAL:
        return value_.resval.rreal;
      case RTSTR:
        return Variant(DString(tarn::toUtf8(value_.resval.rstring)));
      case RTPOINT:
      case RT3DPOINT: {
        std::string text = tarn::formatDouble(value_.resval.rpoint[0]) + "," +
                           tarn::formatDouble(value_.resval.rpoint[1]);
        if (value_.restype == RT3DPOINT) {
          text += "," + tarn::formatDouble(value_.resval.rpoint[2]);
        }
        return Variant(DString(text));
      }
      default:
        return {};
    }
  }

 private:
  resbuf value_{};
  bool isRead_;
};

ImagePixels& imagePixels() {
  static ImagePixels pixels;
  return pixels;
}

}  // namespace

void registerHostServices() {
  CadAdapter::registerSelf();
  UserInterface::registerSelf();
  Object<IAppManager> manager("N", kSource, __LINE__);
  if (!manager.isNull()) manager->loadPlugins("plugins", 0);
  tarnHostSetImagePixels(&imagePixels());
}

void unregisterHostServices() {
  tarnHostSetImagePixels(nullptr);
  imagePixels().closeAll();
  unregisterImplementation("N", ICadAdapter::interfaceId());
  unregisterImplementation("N", IUserInterface::interfaceId());
}

void CadAdapter::prepareAdapter() {
  registerHostServices();
}

DString CadAdapter::hostName() {
  return "cadhost";
}

DString CadAdapter::hostVersion() {
  return systemVariable("ACADVER").toString();
}

bool CadAdapter::hasDocument() {
  return acDocManager && acDocManager->curDocument();
}

DString CadAdapter::documentName() {
  return tarn::nameOf(documentPath().str());
}

DString CadAdapter::documentPath() {
  if (!hasDocument()) return {};
  const ACHAR* name = acDocManager->curDocument()->fileName();
  return tarn::toUtf8(name ? name : L"");
}

bool CadAdapter::isModelSpace() {
  return systemVariable("TILEMODE").toInt() == 1;
}

void CadAdapter::printMessage(const DString& text) {
  acutPrintf(L"%ls", tarn::toWide(text.str()).c_str());
}

void CadAdapter::sendCommand(const DString& text) {
  if (!hasDocument()) return;
  acDocManager->sendStringToExecute(acDocManager->curDocument(), tarn::toWide(text.str()).c_str());
}

bool CadAdapter::findFile(const DString& name, DString& path) {
  std::wstring found(kPathCharacters, L'\0');
  const std::wstring wanted = tarn::toWide(name.str());
  if (acedFindFile(wanted.c_str(), found.data(), found.size()) != RTNORM) return false;
  path = tarn::toUtf8(found.c_str());
  return !path.isEmpty();
}

Variant CadAdapter::systemVariable(const DString& name) {
  return SystemVariable(name.str()).variant();
}

bool CadAdapter::setSystemVariable(const DString& name, const Variant& value) {
  const SystemVariable old(name.str());
  if (!old.isRead()) return false;
  resbuf next{};
  next.restype = old.value().restype;
  std::wstring text = tarn::toWide(value.toString().str());
  switch (next.restype) {
    case RTSHORT:
      next.resval.rint = static_cast<short>(value.toInt());
      break;
    case RTLONG:
      next.resval.rlong = static_cast<Adesk::Int32>(value.toInt());
      break;
    case RTREAL:
      if (!tarn::parseDouble(value.toString().str(), next.resval.rreal)) return false;
      break;
    case RTSTR:
      next.resval.rstring = text.data();
      break;
    default:
      return false;
  }
  return acedSetVar(tarn::toWide(name.str()).c_str(), &next) == RTNORM;
}

void CadAdapter::viewCenter(double& x, double& y) {
  const SystemVariable center("VIEWCTR");
  x = center.isRead() ? center.value().resval.rpoint[0] : 0;
  y = center.isRead() ? center.value().resval.rpoint[1] : 0;
}

double CadAdapter::viewHeight() {
  return SystemVariable("VIEWSIZE").real();
}

double CadAdapter::viewTwist() {
  return SystemVariable("VIEWTWIST").real();
}

void CadAdapter::screenSize(int& width, int& height) {
  const SystemVariable size("SCREENSIZE");
  width = size.isRead() ? static_cast<int>(size.value().resval.rpoint[0]) : 0;
  height = size.isRead() ? static_cast<int>(size.value().resval.rpoint[1]) : 0;
}

void CadAdapter::regenerate() {
  tarnHostRegenerate();
}

void CadAdapter::beginProgress(const DString& label, int minimum, int maximum) {
  acedSetStatusBarProgressMeter(tarn::toWide(label.str()).c_str(), minimum, maximum);
}

void CadAdapter::moveProgress(int position) {
  acedSetStatusBarProgressMeterPos(position);
}

void CadAdapter::endProgress() {
  acedRestoreStatusBar();
}

bool CadAdapter::moduleState(const DString& module) {
  const auto found = moduleStates().find(module.str());
  return found != moduleStates().end() && found->second;
}

void CadAdapter::setModuleState(const DString& module, bool active) {
  moduleStates()[module.str()] = active;
}

}  // namespace kel
