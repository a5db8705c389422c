#include <algorithm>
#include <string>

#include "base/file.h"
#include "base/text.h"
#include "dbapserv.h"

namespace {

struct Services {
  AcDbHostApplicationServices builtIn;
  AcDbHostApplicationServices* current = &builtIn;
};

Services& services() {
  static auto& instance = *new Services;  // globals of modules may still ask at the end
  return instance;
}

}  // namespace

AcDbHostApplicationServices::~AcDbHostApplicationServices() = default;

Acad::ErrorStatus AcDbHostApplicationServices::findFile(ACHAR* result, int capacity,
                                                        const ACHAR* name, AcDbDatabase*,
                                                        FindFileHint) {
  if (name == nullptr || result == nullptr) return Acad::eInvalidInput;
  const std::string given = tarn::toUtf8(name);
  if (tarn::fileKind(given) != tarn::FileKind::kRegular) return Acad::eFileNotFound;
  const std::wstring path = tarn::toWide(tarn::absolutePath(given));
  if (capacity < 0 || path.size() >= static_cast<size_t>(capacity)) return Acad::eBufferTooSmall;
  std::copy(path.c_str(), path.c_str() + path.size() + 1, result);
  return Acad::eOk;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
  return services().current;
}

void acdbSetHostApplicationServices(AcDbHostApplicationServices* replacement) {
  AcDbHostApplicationServices* next = replacement != nullptr ? replacement : &services().builtIn;
  next->setWorkingDatabase(services().current->workingDatabase());
  services().current = next;
}
