// Commands about files and programs: scripts, modules, pictures.
#include <algorithm>

#include "acedads.h"
#include "acutmem.h"
#include "base/file.h"
#include "base/text.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/modules.h"
#include "rxdlinkr.h"

namespace tarn::host {

namespace {

constexpr std::uint64_t kLargestScript = 64u << 20;

HostApp& app() {
  return *HostApp::instance();
}

/// A file name by dialog or from the command line; empty when cancelled.
std::string askFile(const ACHAR* title, const ACHAR* extension, bool isNew) {
  resbuf answer = {};
  if (acedGetFileD(title, nullptr, extension, isNew ? 1 : 0, &answer) != RTNORM) return {};
  std::string path = toUtf8(answer.resval.rstring);
  acutDelString(answer.resval.rstring);
  return path;
}

/// The lines of a script as text for the command line: remarks left out, every line ended.
std::string scriptText(const std::string& content) {
  std::string text;
  size_t at = content.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  while (at < content.size()) {
    const size_t end = std::min(content.find('\n', at), content.size());
    const std::string line = content.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.front() == ';') continue;
    text += line + "\n";
  }
  return text;
}

void load(const std::string& path) {
  if (path.empty()) return;
  const Status done = loadModule(path);
  if (!done) return failCommand(app(), done.message());
  app().print("\n" + path + " loaded.\n");
}

void unload() {
  ACHAR typed[513] = {0};
  if (acedGetString(1, ACRX_T("\nModule to unload: "), typed) != RTNORM || typed[0] == 0) return;
  const std::string name = toUtf8(typed);
  if (!acrxDynamicLinker->isModuleLoaded(typed)) {
    return failCommand(app(), name + ": there is no such module loaded.");
  }
  if (!acrxDynamicLinker->unloadModule(typed)) {
    return failCommand(app(), toUtf8(acrxDynamicLinker->lastMessage()));
  }
  app().print("\n" + name + " unloaded.\n");
}

}  // namespace

void scriptCommand() {
  const std::string path = askFile(ACRX_T("Script"), ACRX_T("scr"), false);
  if (path.empty()) return;
  const auto content = readFile(path, kLargestScript);
  if (!content) return failCommand(app(), content.message());
  app().queueInput(scriptText(content.value()));
}

void apploadCommand() {
  load(askFile(ACRX_T("Load a module"), ACRX_T("arx"), false));
}

void arxCommand() {
  acedInitGet(0, ACRX_T("? Load Unload"));
  ACHAR word[513] = {0};
  if (acedGetKword(ACRX_T("\nModules [?/Load/Unload]: "), word) != RTNORM) return;
  if (word[0] == 'L') return apploadCommand();
  if (word[0] == 'U') return unload();
  const std::vector<std::wstring> names = acrxDynamicLinker->loadedModules();
  if (names.empty()) app().print("\nNo module is loaded; APPLOAD loads one.\n");
  for (const std::wstring& name : names) app().print("\n" + toUtf8(name) + "\n");
}

void pngoutCommand() {
  const std::string path = askFile(ACRX_T("Save picture"), ACRX_T("png"), true);
  if (path.empty()) return;
  const std::string fault = app().savePicture(path);
  if (!fault.empty()) return failCommand(app(), fault);
  app().print("\n" + path + " written.\n");
}

}  // namespace tarn::host
