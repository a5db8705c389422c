#include "host/filing/tagview.h"

#include "base/text.h"

namespace tarn::host {

namespace {

constexpr int kMark = 100;

/// Behind the first mark of this name, up to the next; nothing when there is none.
std::optional<TagRange> partBehind(const TagDocument& document, TagRange object,
                                   std::string_view mark) {
  std::optional<TagRange> part;
  std::uint32_t i = object.begin;
  for (; i < object.end; ++i) {
    const Tag& tag = document.tag(i);
    if (endsOwnTags(tag.code) || (part && tag.code == kMark)) break;
    if (!part && tag.code == kMark && document.word(tag) == mark) part = TagRange{i + 1, i + 1};
  }
  if (part) part->end = i;
  return part;
}

const Tag* findIn(const TagDocument& document, TagRange range, int code) {
  GroupWatch groups;
  for (std::uint32_t i = range.begin; i < range.end; ++i) {
    const Tag& tag = document.tag(i);
    if (endsOwnTags(tag.code) && !endsOwnTags(code)) break;
    const bool inGroup = groups.pass(tag.code, [&] { return document.word(tag); });
    if (tag.code == code && !inGroup) return &tag;
  }
  return nullptr;
}

}  // namespace

TagView TagView::behind(std::string_view mark) const {
  const auto part = partBehind(*document_, whole_, mark);
  return {*document_, *encoding_, part.value_or(TagRange{whole_.end, whole_.end})};
}

TagView TagView::own(const char* mark) const {
  TagView view = whole();
  const auto part = mark != nullptr ? partBehind(*document_, whole_, mark) : std::nullopt;
  if (part) {
    view.range_ = *part;
    return view;
  }
  std::uint32_t end = whole_.begin;
  while (end < whole_.end && !endsOwnTags(document_->tag(end).code)) ++end;
  view.range_.end = end;
  return view;
}

TagView TagView::embedded() const {
  constexpr int kEmbedded = 101;
  const auto code = [&](std::uint32_t i) { return document_->tag(i).code; };
  TagRange part{whole_.begin, whole_.end};
  while (part.begin < whole_.end && code(part.begin++) != kEmbedded) {
  }
  for (part.end = part.begin; part.end < whole_.end && !endsOwnTags(code(part.end));) ++part.end;
  return {*document_, *encoding_, part};
}

const Tag* TagView::find(int code) const {
  const Tag* found = findIn(*document_, range_, code);
  const bool isPart = range_.begin != whole_.begin || range_.end != whole_.end;
  return found == nullptr && isPart ? findIn(*document_, whole_, code) : found;
}

double TagView::realOf(const Tag& tag, double standard) const {
  double value = standard;
  parseDouble(document_->word(tag), value);
  return value;
}

int TagView::integerOf(const Tag& tag, int standard) const {
  int value = standard;
  double real = 0;
  const std::string_view word = document_->word(tag);
  // Some programs write whole numbers as "1.0".
  if (!parseInt(word, value) && parseDouble(word, real) && real > -2e9 && real < 2e9) {
    value = static_cast<int>(real);
  }
  return value;
}

double TagView::real(int code, double standard) const {
  const Tag* tag = find(code);
  return tag != nullptr ? realOf(*tag, standard) : standard;
}

double TagView::angle(int code, double standard) const {
  const Tag* tag = find(code);
  return tag != nullptr ? realOf(*tag) * kDegree : standard;
}

int TagView::integer(int code, int standard) const {
  const Tag* tag = find(code);
  return tag != nullptr ? integerOf(*tag, standard) : standard;
}

std::uint64_t TagView::reference(int code) const {
  const Tag* tag = find(code);
  return tag != nullptr ? parseHandle(document_->word(*tag)) : 0;
}

std::wstring TagView::text(int code) const {
  const Tag* tag = find(code);
  return tag != nullptr ? textOf(*tag) : std::wstring();
}

AcGePoint3d TagView::point(int code) const {
  return {real(code), real(code + 10), real(code + 20)};
}

AcGeVector3d TagView::normal() const {
  const AcGeVector3d normal(real(210), real(220), real(230, 1));
  return normal.length() > 1e-9 ? normal.normal() : AcGeVector3d::kZAxis;
}

}  // namespace tarn::host
