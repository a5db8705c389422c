#include "host/filing/tagview.h"

#include "base/text.h"

namespace tarn::host {

TagView TagView::behind(std::string_view mark) const {
  constexpr int kMark = 100;
  TagRange part{range_.end, range_.end};
  for (std::uint32_t i = range_.begin; i < range_.end; ++i) {
    const Tag& tag = document_->tag(i);
    const bool inside = part.begin < range_.end;
    if (inside && (tag.code == kMark || tag.code >= 1000)) {
      part.end = i;
      break;
    }
    if (!inside && tag.code == kMark && document_->word(tag) == mark) part.begin = i + 1;
  }
  return {*document_, *encoding_, part};
}

const Tag* TagView::find(int code) const {
  constexpr int kEmbedded = 101;
  for (std::uint32_t i = range_.begin; i < range_.end; ++i) {
    const Tag& tag = document_->tag(i);
    if (tag.code == code) return &tag;
    if (tag.code == kEmbedded) break;
  }
  return nullptr;
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
