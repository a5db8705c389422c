#include "tests/hostile/tiffbytes.h"

#include <cstring>
#include <map>

namespace tarn::hostile {

std::string littleEndian(uint64_t value, int bytes) {
  std::string out;
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i));
  return out;
}

Field shortField(uint16_t tag, uint32_t value) {
  return {tag, kShort, 1, value, {}};
}

Field longField(uint16_t tag, uint32_t value) {
  return {tag, kLong, 1, value, {}};
}

Field textField(uint16_t tag, const std::string& text) {
  return {tag, kText, static_cast<uint32_t>(text.size() + 1), 0, text + '\0'};
}

Field doubleField(uint16_t tag, const std::vector<double>& values) {
  std::string bytes(values.size() * 8, '\0');
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return {tag, kDouble, static_cast<uint32_t>(values.size()), 0, bytes};
}

std::string tiffOf(const std::vector<Field>& changes, uint32_t next) {
  return tiffOf(changes, std::string(4096, 120), next);
}

std::string tiffOf(const std::vector<Field>& changes, const std::string& pixels, uint32_t next) {
  std::map<uint16_t, Field> fields;
  for (const Field& field :
       {longField(256, 64), longField(257, 64), shortField(258, 8), shortField(259, 1),
        shortField(262, 1), longField(273, kPixelsAt), shortField(277, 1), longField(278, 64),
        longField(279, static_cast<uint32_t>(pixels.size()))})
    fields[field.tag] = field;
  for (const Field& field : changes) fields[field.tag] = field;
  std::string out = "II*" + std::string(1, '\0');
  const auto place = static_cast<uint32_t>(kPixelsAt + (pixels.size() + 1) / 2 * 2);
  out += littleEndian(place, 4) + pixels;
  out.resize(place);
  out += littleEndian(fields.size(), 2);
  std::string outside;
  for (const auto& [tag, field] : fields) {
    const size_t after = place + 2 + fields.size() * 12 + 4;
    out += littleEndian(tag, 2) + littleEndian(field.type, 2) + littleEndian(field.count, 4);
    out += littleEndian(field.bytes.empty() ? field.value : after + outside.size(), 4);
    outside += field.bytes;
  }
  return out + littleEndian(next == kOwnPlace ? place : next, 4) + outside;
}

}  // namespace tarn::hostile
