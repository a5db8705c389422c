// Commands run by programs.
#include <cstdarg>
#include <string>
#include <vector>

#include "acedads.h"
#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/hostapp.h"

using tarn::host::CommandOutcome;
using tarn::host::HostApp;

namespace {

std::string pointText(const double* point, bool flat) {
  std::string text = tarn::host::formatPoint(point[0], point[1]);
  if (!flat) text += "," + tarn::formatDouble(point[2]);
  return text;
}

std::string textOrEmpty(const ACHAR* text) {
  return text != nullptr ? tarn::toUtf8(text) : "";
}

int run(std::vector<std::string> inputs) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || inputs.empty()) return RTERROR;
  switch (app->commands().runComplete(std::move(inputs))) {
    case CommandOutcome::kEnded:
      return RTNORM;
    case CommandOutcome::kCancelled:
      return RTCAN;
    default:
      return RTERROR;
  }
}

// The analyser does not see that the callers have started the list.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
/// The inputs of a list of types and values; false when a type is not known.
bool readInputs(int type, va_list arguments, std::vector<std::string>& inputs) {
  for (; type != RTNONE && type != 0; type = va_arg(arguments, int)) {
    switch (type) {
      case RTSTR:
        inputs.push_back(textOrEmpty(va_arg(arguments, const ACHAR*)));
        break;
      case RTSHORT:
      case RTLONG:
        inputs.push_back(std::to_string(va_arg(arguments, int)));
        break;
      case RTREAL:
      case RTANG:
      case RTORINT:
        inputs.push_back(tarn::formatDouble(va_arg(arguments, double)));
        break;
      case RTPOINT:
      case RT3DPOINT:
        inputs.push_back(pointText(va_arg(arguments, const double*), type == RTPOINT));
        break;
      default:
        return false;
    }
  }
  return true;
}
// NOLINTEND(clang-analyzer-valist.Uninitialized)

}  // namespace

int acedCommandS(int type, ...) {
  std::vector<std::string> inputs;
  va_list arguments;
  va_start(arguments, type);
  const bool known = readInputs(type, arguments, inputs);
  va_end(arguments);
  return known ? run(std::move(inputs)) : RTERROR;
}

int acedCommand(int type, ...) {
  std::vector<std::string> inputs;
  va_list arguments;
  va_start(arguments, type);
  const bool known = readInputs(type, arguments, inputs);
  va_end(arguments);
  return known ? run(std::move(inputs)) : RTERROR;
}

int acedCmdS(const resbuf* chain) {
  std::vector<std::string> inputs;
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    switch (item->restype) {
      case RTSTR:
        inputs.push_back(textOrEmpty(item->resval.rstring));
        break;
      case RTSHORT:
        inputs.push_back(std::to_string(item->resval.rint));
        break;
      case RTLONG:
        inputs.push_back(std::to_string(item->resval.rlong));
        break;
      case RTREAL:
      case RTANG:
      case RTORINT:
        inputs.push_back(tarn::formatDouble(item->resval.rreal));
        break;
      case RTPOINT:
      case RT3DPOINT:
        inputs.push_back(pointText(item->resval.rpoint, item->restype == RTPOINT));
        break;
      default:
        return RTERROR;
    }
  }
  return run(std::move(inputs));
}

int acedCmd(const resbuf* inputs) {
  return acedCmdS(inputs);
}
