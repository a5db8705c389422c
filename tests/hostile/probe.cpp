// Looks at each file of a list (names that end in a zero byte) in a process of its own, and prints
// a line for each: number, "shown" or "refused", mean, message. A file that is asked for by the
// name "case:NUMBER" before marks in a trace of system calls which case follows.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/text.h"
#include "components/raster/gdalaccess.h"
#include "tests/hostile/apart.h"

int main(int argc, char** argv) {
  const auto list = tarn::readFile(argc > 1 ? argv[1] : "", 1 << 24);
  const std::vector<std::string> names = tarn::split(list ? list.value() : "", '\0');
  tarn::raster::prepareGdal();
  const int count = static_cast<int>(names.size()) - 1;
  const auto faults = tarn::hostile::runApart(count, 1, [&](int i) {
    const int marker = open(("case:" + std::to_string(i)).c_str(), O_RDONLY);
    if (marker >= 0) close(marker);
    const tarn::hostile::Seen seen = tarn::hostile::look(names[i].substr(1), names[i][0] == '+');
    std::printf("%d\t%s\t%.1f\t%s\n", i, seen.shown ? "shown" : "refused", seen.mean,
                seen.message.c_str());
  });
  for (const auto& fault : faults)
    std::printf("%d\tfault\t0\t%s\n", fault.index, fault.how.c_str());
  return 0;
}
