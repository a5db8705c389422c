#include "components/raster/imgentries.h"

#include <cstring>
#include <unordered_set>
#include <vector>

namespace tarn::raster {
namespace {

constexpr char kMagic[] = "EHFA_HEADER_TAG";
constexpr uint64_t kHeaderPlace = 16, kRootPlace = 8;
// Six numbers stand before an entry's names.
constexpr uint64_t kNext = 0, kChild = 12, kDataSize = 20, kNumbers = 24;
// A thousand bands have some ten thousand entries.
constexpr size_t kMostEntries = 100000;

uint32_t wordAt(const uint8_t* bytes) {
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

/// The number at a place of the file; 0, which leads nowhere, behind its end.
uint32_t readWord(const RandomBytes& file, uint64_t place) {
  uint8_t bytes[4] = {};
  return file.readAt(place, bytes, sizeof bytes) ? wordAt(bytes) : 0;
}

}  // namespace

bool hasEntryLargerThanFile(const RandomBytes& file, uint64_t fileSize) {
  char magic[sizeof kMagic] = {};
  if (!file.readAt(0, magic, sizeof magic) || std::memcmp(magic, kMagic, sizeof magic) != 0)
    return false;
  const uint64_t header = readWord(file, kHeaderPlace);
  std::vector<uint32_t> waiting{readWord(file, header + kRootPlace)};
  std::unordered_set<uint32_t> seen;
  while (!waiting.empty() && seen.size() < kMostEntries) {
    const uint32_t place = waiting.back();
    waiting.pop_back();
    uint8_t numbers[kNumbers];
    if (place == 0 || !seen.insert(place).second || !file.readAt(place, numbers, sizeof numbers))
      continue;
    if (wordAt(numbers + kDataSize) > fileSize) return true;
    waiting.push_back(wordAt(numbers + kNext));
    waiting.push_back(wordAt(numbers + kChild));
  }
  return false;
}

}  // namespace tarn::raster
