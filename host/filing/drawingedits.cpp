#include "host/filing/drawingedits.h"

#include <algorithm>
#include <utility>

namespace tarn::host {

void DrawingEdits::replace(std::uint32_t first, std::uint32_t count, std::string bytes) {
  edits_.push_back({first, count, static_cast<std::uint32_t>(bytes_.size()), false});
  bytes_.push_back(std::move(bytes));
}

void DrawingEdits::replaceLater(std::uint32_t first, std::uint32_t count, std::uint32_t number) {
  edits_.push_back({first, count, number, true});
}

Status DrawingEdits::give(const TagDocument& document, const PieceTaker& take,
                          const Maker& make) const {
  std::vector<Edit> sorted = edits_;
  // What is inserted comes before what stands there.
  std::stable_sort(sorted.begin(), sorted.end(), [](const Edit& a, const Edit& b) {
    return a.first != b.first ? a.first < b.first : a.count == 0 && b.count != 0;
  });
  const std::string_view bytes = document.bytes();
  const auto allTags = static_cast<std::uint32_t>(document.tags().size());
  const auto startOf = [&](std::uint32_t object) {
    return document.startOf(object < document.objectCount() ? document.tagsOf(object).begin
                                                            : allTags);
  };
  size_t at = 0;
  for (const Edit& edit : sorted) {
    const size_t start = startOf(edit.first);
    if (start > at) {
      if (Status status = take(bytes.substr(at, start - at)); !status) return status;
    }
    const std::string made = edit.isLater ? make(edit.number) : std::string();
    if (Status status = take(edit.isLater ? made : bytes_[edit.number]); !status) return status;
    at = std::max(at, std::max(start, startOf(edit.first + edit.count)));
  }
  // Behind the last whole tag of a file that was cut off stand only the rests of one.
  const size_t end = document.isComplete() ? bytes.size() : startOf(document.objectCount());
  return end > at ? take(bytes.substr(at, end - at)) : Status();
}

}  // namespace tarn::host
