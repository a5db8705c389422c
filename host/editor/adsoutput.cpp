// Output, status bar, system variables, support path and file dialog of the function interface.
#include <algorithm>
#include <cstdarg>
#include <cwchar>

#include "acedads.h"
#include "acutmem.h"
#include "base/text.h"
#include "host/editor/editorobject.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/sysvars.h"
#include "host/editor/textbuffer.h"
#include "host/ui/uibackend.h"
#include "host/ui/wideformat.h"

using tarn::host::HostApp;
using tarn::host::Point3;
using tarn::host::VariableError;
using tarn::host::VariableType;
using tarn::host::VariableValue;

int acutPrintf(const ACHAR* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::wstring text = tarn::host::formatWide(format, arguments);
  va_end(arguments);
  return acedPrompt(text.c_str());
}

int acedPrompt(const ACHAR* text) {
  if (HostApp::instance() == nullptr || text == nullptr) return RTERROR;
  HostApp::instance()->print(tarn::toUtf8(text));
  return RTNORM;
}

namespace {

void storeValue(const VariableValue& value, VariableType type, resbuf& out) {
  out.rbnext = nullptr;
  switch (type) {
    case VariableType::kShort:
      out.restype = RTSHORT;
      out.resval.rint = std::get<short>(value);
      return;
    case VariableType::kReal:
      out.restype = RTREAL;
      out.resval.rreal = std::get<double>(value);
      return;
    case VariableType::kString:
      out.restype = RTSTR;
      out.resval.rstring = nullptr;
      acutNewString(tarn::toWide(std::get<std::string>(value)).c_str(), out.resval.rstring);
      return;
    default: {
      const Point3& p = std::get<Point3>(value);
      out.restype = type == VariableType::kPoint2 ? RTPOINT : RT3DPOINT;
      out.resval.rpoint[0] = p.x;
      out.resval.rpoint[1] = p.y;
      out.resval.rpoint[2] = p.z;
    }
  }
}

/// False when the buffer's type is none that a variable can have.
bool readValue(const resbuf& in, VariableValue& value) {
  switch (in.restype) {
    case RTSHORT:
      value = in.resval.rint;
      return true;
    case RTREAL:
    case RTANG:
    case RTORINT:
      value = in.resval.rreal;
      return true;
    case RTSTR:
      value = in.resval.rstring != nullptr ? tarn::toUtf8(in.resval.rstring) : std::string();
      return true;
    case RTPOINT:
    case RT3DPOINT:
      value = Point3{in.resval.rpoint[0], in.resval.rpoint[1],
                     in.restype == RT3DPOINT ? in.resval.rpoint[2] : 0.0};
      return true;
    default:
      return false;
  }
}

}  // namespace

int acedGetVar(const ACHAR* name, resbuf* value) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || name == nullptr || value == nullptr) return RTERROR;
  const std::string key = tarn::toUtf8(name);
  const auto found = app->variables().get(key);
  if (!found) return RTERROR;
  storeValue(*found, *app->variables().typeOf(key), *value);
  return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
  HostApp* app = HostApp::instance();
  VariableValue wanted;
  if (app == nullptr || name == nullptr || value == nullptr || !readValue(*value, wanted)) {
    return RTERROR;
  }
  tarn::host::editorObject().notifyVariable(name, true, true);
  const bool done = app->variables().set(tarn::toUtf8(name), wanted) == VariableError::kNone;
  tarn::host::editorObject().notifyVariable(name, false, done);
  return done ? RTNORM : RTERROR;
}

int acedFindFile(const ACHAR* name, ACHAR* result) {
  return acedFindFile(name, result, 260);
}

int acedFindFile(const ACHAR* name, ACHAR* result, size_t capacity) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || name == nullptr || result == nullptr || capacity == 0) return RTERROR;
  const std::string path = app->profile().findFile(tarn::toUtf8(name));
  if (path.empty()) return RTERROR;
  return tarn::host::copyText(tarn::toWide(path), result, capacity) ? RTNORM : RTERROR;
}

int acedGetFileD(const ACHAR* title, const ACHAR* initial, const ACHAR* extension, int flags,
                 resbuf* result) {
  constexpr int kNewFile = 1;
  HostApp* app = HostApp::instance();
  if (app == nullptr || result == nullptr) return RTERROR;
  tarn::host::FileRequest request;
  request.open = (flags & kNewFile) == 0;
  request.mustExist = request.open;
  request.overwritePrompt = !request.open;
  if (title != nullptr) request.title = tarn::toUtf8(title);
  if (initial != nullptr) request.initialName = tarn::toUtf8(initial);
  if (extension != nullptr) request.defaultExtension = tarn::toUtf8(extension);
  const auto names = app->ui().fileNames(request);
  if (!names || names->empty()) return RTCAN;
  storeValue(names->front(), VariableType::kString, *result);
  return RTNORM;
}

int acedUsrBrk() {
  HostApp* app = HostApp::instance();
  return app != nullptr && app->frontEnd().cancelWanted() ? 1 : 0;
}

int acedSetStatusBarProgressMeter(const ACHAR* label, int minimum, int maximum) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || label == nullptr) return RTERROR;
  app->frontEnd().progressBegin(tarn::toUtf8(label), minimum, maximum);
  return 0;
}

int acedSetStatusBarProgressMeterPos(int position) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return RTERROR;
  app->frontEnd().progressMove(position);
  return 0;
}

void acedRestoreStatusBar() {
  if (HostApp* app = HostApp::instance()) app->frontEnd().progressEnd();
}
