// Calls an entry once for every file of the folders that are named to it; without a fuzzer.
#include <cstdio>

#include "base/file.h"
#include "base/path.h"
#include "fuzz/entry.h"

int main(int argc, char** argv) {
  int played = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::string& name : tarn::listFolder(argv[i])) {
      const auto bytes = tarn::readFile(tarn::joinPath(argv[i], name), 1 << 24);
      if (!bytes) return 1;
      std::printf("%s\n", name.c_str());
      std::fflush(stdout);
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.value().data()),
                             bytes.value().size());
      ++played;
    }
  }
  return played > 0 ? 0 : 1;
}
