#include "host/filing/drawingpieces.h"

#include <algorithm>
#include <string>

namespace tarn::host {

namespace {

constexpr size_t kPart = size_t{1} << 20;

/// Gathers pieces until they hold whole objects.
class PartMaker {
 public:
  PartMaker(std::string_view version, const std::function<Status(const TagDocument&)>& use)
      : version_(version), use_(use) {}

  Status take(std::string_view piece) {
    while (!piece.empty()) {
      const size_t count = std::min(piece.size(), wanted_ - std::min(wanted_, bytes_.size()));
      bytes_.append(piece.substr(0, count));
      piece.remove_prefix(count);
      if (bytes_.size() < wanted_) continue;
      if (Status status = cut(); !status) return status;
    }
    return {};
  }

  Status finish() {
    auto last = TagDocument::partOf(std::move(bytes_), version_, true);
    return last ? use_(last.value()) : last.status();
  }

 private:
  /// What follows the last whole object waits for the next piece.
  Status cut() {
    auto made = TagDocument::partOf(bytes_, version_, false);
    if (!made) return made.status();
    const TagDocument& part = made.value();
    const size_t used = part.bytes().size();
    if (used == 0 || part.isComplete()) {
      wanted_ *= 2;
      return {};
    }
    wanted_ = kPart;
    bytes_.erase(0, used);
    return use_(part);
  }

  std::string_view version_;
  const std::function<Status(const TagDocument&)>& use_;
  std::string bytes_;
  size_t wanted_ = kPart;
};

}  // namespace

Status forEachPart(const DrawingPieces& pieces, const Ground& ground,
                   const std::function<Status(const TagDocument&)>& use) {
  PartMaker maker(ground.document.version(), use);
  const Status status = pieces([&](std::string_view piece) { return maker.take(piece); });
  return status ? maker.finish() : status;
}

void SectionWatch::pass(const TagDocument& part, std::uint32_t object) {
  if (ends_) section_.clear();
  ends_ = false;
  const std::string_view type = part.typeOf(object);
  if (type == "SECTION") {
    const TagRange tags = part.tagsOf(object);
    section_.clear();
    for (std::uint32_t i = tags.begin + 1; i < tags.end && section_.empty(); ++i) {
      if (part.tag(i).code == 2) section_ = part.word(part.tag(i));
    }
  }
  ends_ = type == "ENDSEC";
}

}  // namespace tarn::host
