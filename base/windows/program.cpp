#include <fcntl.h>
#include <io.h>
// The system's own order.
#include <windows.h>
//
#include <shellapi.h>

#include <cstdio>
#include <memory>

#include "base/program.h"
#include "base/text.h"

namespace tarn {

std::vector<std::string> programArguments(int, char**) {
  // What main() gets went through the code page, in which not every file name can be written.
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> words(
      ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; words && i < count; ++i) arguments.push_back(toUtf8(words.get()[i]));
  return arguments;
}

std::string environmentValue(const char* name) {
  const std::wstring wide = toWide(name);
  std::wstring value;
  DWORD needed = ::GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
  // It may grow between asking and reading.
  while (needed > value.size()) {
    value.resize(needed);
    needed = ::GetEnvironmentVariableW(wide.c_str(), value.data(), needed);
  }
  value.resize(needed);
  return toUtf8(value);
}

void prepareStandardStreams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  if (standardOutputIsTerminal()) {
    ::SetConsoleOutputCP(CP_UTF8);
    ::SetConsoleCP(CP_UTF8);
  }
}

bool standardOutputIsTerminal() {
  return ::_isatty(::_fileno(stdout)) != 0;
}

std::string systemFontFolder() {
  wchar_t folder[MAX_PATH] = {};
  const UINT length = ::GetWindowsDirectoryW(folder, MAX_PATH);
  return length > 0 && length < MAX_PATH ? toUtf8(folder) + "\\Fonts" : std::string();
}

bool hasDisplay() {
  return true;
}

void closeOwnConsole() {
  DWORD processes[2] = {};
  if (::GetConsoleProcessList(processes, 2) == 1) ::FreeConsole();
}

}  // namespace tarn
