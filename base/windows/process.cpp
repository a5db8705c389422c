#include "base/process.h"

#include <windows.h>

#include "base/file.h"

namespace tarn {

int processNumber() {
  return static_cast<int>(::GetCurrentProcessId());
}

bool processLives(int process) {
  const HANDLE handle = ::OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(process));
  // Those of other users cannot be opened but are there.
  if (handle == nullptr) return ::GetLastError() == ERROR_ACCESS_DENIED;
  const bool lives = ::WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
  ::CloseHandle(handle);
  return lives;
}

std::tm localTime(std::time_t moment) {
  std::tm parts{};
  ::localtime_s(&parts, &moment);
  return parts;
}

void makeWriteFailuresErrors() {}

}  // namespace tarn
