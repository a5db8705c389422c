#include "host/filing/drawingadditions.h"

#include <utility>

#include "host/filing/tagview.h"

namespace tarn::host {

std::string DrawingAdditions::tag(int code, std::string_view value) const {
  const std::string lineEnd(document_.lineEnd());
  std::string digits = std::to_string(code);
  digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, ' ');
  return digits + lineEnd + std::string(value) + lineEnd;
}

void DrawingAdditions::insertBefore(std::uint32_t object, std::string bytes) {
  isEmpty_ = false;
  edits_.insertBefore(object, std::move(bytes));
}

void DrawingAdditions::insertRecords(const char* table, const std::string& bytes) {
  const DrawingSection* tables = document_.section("TABLES");
  bool inTable = false;
  for (std::uint32_t i = tables != nullptr ? tables->firstObject + 1 : 0;
       tables != nullptr && i < tables->endObject; ++i) {
    if (document_.typeOf(i) == "TABLE") {
      const Tag* name = TagView(document_, encoding_, i).find(2);
      inTable = name != nullptr && document_.word(*name) == table;
    }
    if (inTable && document_.typeOf(i) == "ENDTAB") return insertBefore(i, bytes);
  }
  insertSection("TABLES",
                tag(0, "TABLE") + tag(2, table) + tag(70, "1") + bytes + tag(0, "ENDTAB"));
}

void DrawingAdditions::insertSection(std::string_view name, const std::string& bytes) {
  if (const DrawingSection* section = document_.section(name)) {
    return insertBefore(section->endObject, bytes);
  }
  const std::string whole = tag(0, "SECTION") + tag(2, name) + bytes + tag(0, "ENDSEC");
  insertBefore(placeOf(name), whole);
}

/// Before the first section that comes after one of this name; else before the end mark.
std::uint32_t DrawingAdditions::placeOf(std::string_view name) const {
  static constexpr std::string_view kOrder[] = {"HEADER", "CLASSES",  "TABLES",
                                                "BLOCKS", "ENTITIES", "OBJECTS"};
  bool behind = false;
  for (const std::string_view other : kOrder) {
    const DrawingSection* section = document_.section(other);
    if (behind && section != nullptr) return section->firstObject;
    behind = behind || other == name;
  }
  const std::uint32_t count = document_.objectCount();
  return document_.isComplete() ? count - 1 : count;
}

void DrawingAdditions::closeCutOff() {
  if (document_.isComplete()) return;
  const std::uint32_t count = document_.objectCount();
  const DrawingSection& last = document_.sections().back();
  std::string bytes;
  if (last.endObject == count) {
    const std::string_view open = last.name == "TABLES"   ? "TABLE"
                                  : last.name == "BLOCKS" ? "BLOCK"
                                                          : "";
    bool isOpen = false;
    for (std::uint32_t i = last.firstObject; !open.empty() && i < count; ++i) {
      const std::string_view type = document_.typeOf(i);
      if (type == open) isOpen = true;
      if (type == "ENDTAB" || type == "ENDBLK") isOpen = false;
    }
    if (isOpen) bytes += tag(0, open == "TABLE" ? "ENDTAB" : "ENDBLK");
    bytes += tag(0, "ENDSEC");
  }
  edits_.insertBefore(count, bytes + tag(0, "EOF"));
}

}  // namespace tarn::host
