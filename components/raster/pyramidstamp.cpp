#include "components/raster/pyramidstamp.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "base/file.h"
#include "base/text.h"

namespace tarn::raster {
namespace {

constexpr const char *kStamp = "TARN_STAMP", *kForm = "TARN_FORM", *kScale = "TARN_SCALE";
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

std::string item(const char* name, const std::string& value) {
  return std::string("<Item name=\"") + name + "\">" + value + "</Item>";
}

std::optional<std::string> itemIn(const std::string& xml, const char* name) {
  const std::string start = std::string("<Item name=\"") + name + "\">";
  const size_t at = xml.find(start);
  if (at == std::string::npos) return std::nullopt;
  const size_t from = at + start.size(), to = xml.find("</Item>", from);
  return to == std::string::npos ? std::nullopt : std::optional(xml.substr(from, to - from));
}

std::optional<Scale> parseScale(const std::string& text) {
  const std::vector<std::string> parts = split(text, ' ');
  Scale scale;
  const bool whole = parts.size() == 2 && parseDouble(parts[0], scale.low) &&
                     parseDouble(parts[1], scale.high) && std::isfinite(scale.low) &&
                     std::isfinite(scale.high);
  return whole ? std::optional(scale) : std::nullopt;
}

}  // namespace

uint64_t hashBytes(const void* bytes, size_t count, uint64_t hash) {
  const auto* p = static_cast<const uint8_t*>(bytes);
  for (size_t i = 0; i < count; ++i) hash = (hash ^ p[i]) * 0x100000001B3ULL;
  return hash;
}

std::string hashName(const std::string& text) {
  static const char* kDigits = "0123456789abcdef";
  uint64_t hash = hashBytes(text.data(), text.size());
  std::string name(16, '0');
  for (char& c : name) {
    c = kDigits[hash & 15];
    hash >>= 4;
  }
  return name;
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

std::string markMetadata(const PyramidMark& mark) {
  std::string items = item(kStamp, formatStamp(mark.stamp));
  if (!mark.form.empty()) items += item(kForm, mark.form);
  if (mark.scale)
    items += item(kScale, formatDouble(mark.scale->low) + ' ' + formatDouble(mark.scale->high));
  return "<GDALMetadata>" + items + "</GDALMetadata>";
}

std::optional<PyramidMark> markInMetadata(const std::string& xml) {
  const std::optional<std::string> stampText = itemIn(xml, kStamp);
  const std::optional<ImageStamp> stamp = stampText ? parseStamp(*stampText) : std::nullopt;
  if (!stamp) return std::nullopt;
  PyramidMark mark;
  mark.stamp = *stamp;
  mark.form = itemIn(xml, kForm).value_or("");
  if (const std::optional<std::string> scale = itemIn(xml, kScale)) mark.scale = parseScale(*scale);
  return mark;
}

}  // namespace tarn::raster
