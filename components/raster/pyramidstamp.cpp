#include "components/raster/pyramidstamp.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "base/file.h"
#include "base/text.h"

namespace tarn::raster {
namespace {

constexpr const char* kItemStart = "<Item name=\"TARN_STAMP\">";
constexpr const char* kItemEnd = "</Item>";
constexpr const char* kVersion = "1";

std::string hex(uint64_t value) {
  char buffer[16];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
  return {buffer, end.ptr};
}

bool parseHex(const std::string& text, uint64_t& value) {
  const char* end = text.data() + text.size();
  const auto done = std::from_chars(text.data(), end, value, 16);
  return done.ec == std::errc() && done.ptr == end;
}

}  // namespace

uint64_t hashBytes(const void* bytes, size_t count, uint64_t hash) {
  const auto* p = static_cast<const uint8_t*>(bytes);
  for (size_t i = 0; i < count; ++i) hash = (hash ^ p[i]) * 0x100000001B3ULL;
  return hash;
}

Result<ImageStamp> stampOf(const std::string& path) {
  constexpr uint64_t kEnd = 65536;
  RandomFile file;
  if (Status opened = file.open(path); !opened) return opened;
  const FileTimes times = fileTimes(path);
  ImageStamp stamp{times.size, times.modifiedNs, kHashStart};
  std::vector<uint8_t> bytes(std::min(kEnd, times.size));
  for (const uint64_t offset : {uint64_t{0}, times.size - bytes.size()}) {
    if (!file.readAt(offset, bytes.data(), bytes.size()))
      return Status::error(path + ": cannot be read");
    stamp.endsHash = hashBytes(bytes.data(), bytes.size(), stamp.endsHash);
  }
  return stamp;
}

std::string formatStamp(const ImageStamp& stamp) {
  return std::string(kVersion) + ' ' + hex(stamp.size) + ' ' +
         hex(static_cast<uint64_t>(stamp.modifiedNs)) + ' ' + hex(stamp.endsHash);
}

std::optional<ImageStamp> parseStamp(const std::string& text) {
  const std::vector<std::string> parts = split(text, ' ');
  uint64_t modified = 0;
  ImageStamp stamp;
  if (parts.size() != 4 || parts[0] != kVersion || !parseHex(parts[1], stamp.size) ||
      !parseHex(parts[2], modified) || !parseHex(parts[3], stamp.endsHash))
    return std::nullopt;
  stamp.modifiedNs = static_cast<int64_t>(modified);
  return stamp;
}

std::string stampMetadata(const ImageStamp& stamp) {
  return std::string("<GDALMetadata>") + kItemStart + formatStamp(stamp) + kItemEnd +
         "</GDALMetadata>";
}

std::optional<ImageStamp> stampInMetadata(const std::string& xml) {
  const size_t at = xml.find(kItemStart);
  if (at == std::string::npos) return std::nullopt;
  const size_t from = at + std::string(kItemStart).size();
  const size_t to = xml.find(kItemEnd, from);
  return to == std::string::npos ? std::nullopt : parseStamp(xml.substr(from, to - from));
}

}  // namespace tarn::raster
