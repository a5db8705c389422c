#include "host/filing/tagvalues.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "acutmem.h"
#include "host/database/objectaccess.h"
#include "host/rx/resbuf_kind.h"

namespace tarn::host {

namespace {

constexpr int kFirstExtended = 1000;

void setBinary(resbuf& item, std::string_view digits) {
  const size_t count = std::min<size_t>(digits.size() / 2, 32767);
  item.resval.rbinary.buf = static_cast<char*>(std::malloc(count + 1));
  if (item.resval.rbinary.buf == nullptr) return;
  item.resval.rbinary.clen = static_cast<short>(count);
  for (size_t i = 0; i < count; ++i) {
    unsigned byte = 0;
    std::from_chars(digits.data() + 2 * i, digits.data() + 2 * i + 2, byte, 16);
    item.resval.rbinary.buf[i] = static_cast<char>(byte);
  }
}

long long wholeOf(std::string_view word) {
  long long value = 0;
  std::from_chars(word.data(), word.data() + word.size(), value);
  return value;
}

/// One value; the coordinates behind the first of a point are added by the caller.
resbuf* itemOf(const DrawingBinding& binding, const TagView& tags, const Tag& tag,
               ResbufKind kind) {
  resbuf* item = acutNewRb(tag.code);
  const std::string_view word = binding.document.word(tag);
  switch (kind) {
    case ResbufKind::kText:
      acutNewString(tags.textOf(tag).c_str(), item->resval.rstring);
      break;
    case ResbufKind::kPoint:
    case ResbufKind::kReal:
      item->resval.rreal = tags.realOf(tag);
      break;
    case ResbufKind::kInt16:
      item->resval.rint = static_cast<short>(wholeOf(word));
      break;
    case ResbufKind::kInt32:
      item->resval.rlong = static_cast<Adesk::Int32>(wholeOf(word));
      break;
    case ResbufKind::kInt64:
      item->resval.mnInt64 = wholeOf(word);
      break;
    case ResbufKind::kName:
      item->resval.rlname[0] = binding.find(parseHandle(word)).asOldId();
      break;
    case ResbufKind::kBinary:
      setBinary(*item, word);
      break;
    case ResbufKind::kUnknown:
    case ResbufKind::kNothing:
      break;
  }
  return item;
}

std::string hexOf(const ads_binary& binary) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (int i = 0; i < binary.clen; ++i) {
    const auto byte = static_cast<unsigned char>(binary.buf[i]);
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
  }
  return out;
}

}  // namespace

void putValue(const resbuf& item, TagEditor& editor) {
  const int code = item.restype;
  switch (resbufKindOf(code)) {
    case ResbufKind::kText:
      editor.putText(code, item.resval.rstring != nullptr ? item.resval.rstring : L"");
      break;
    case ResbufKind::kReal:
      editor.putReal(code, item.resval.rreal);
      break;
    case ResbufKind::kPoint:
      for (int i = 0; i < 3; ++i) editor.putReal(code + 10 * i, item.resval.rpoint[i]);
      break;
    case ResbufKind::kInt16:
      editor.putInteger(code, item.resval.rint);
      break;
    case ResbufKind::kInt32:
      editor.putInteger(code, item.resval.rlong);
      break;
    case ResbufKind::kInt64:
      editor.putInteger(code, item.resval.mnInt64);
      break;
    case ResbufKind::kName:
      editor.putHandle(code, AcDbObjectId().setFromOldId(item.resval.rlname[0]).handle().value());
      break;
    case ResbufKind::kBinary:
      editor.putWord(code, hexOf(item.resval.rbinary));
      break;
    case ResbufKind::kUnknown:
    case ResbufKind::kNothing:
      break;
  }
}

ResbufChain chainOf(const DrawingBinding& binding, const TagView& tags,
                    const std::function<bool(const Tag&)>& wanted) {
  ResbufChain chain;
  resbuf* last = nullptr;
  resbuf* point = nullptr;
  tags.forEach([&](const Tag& tag) {
    if (!wanted(tag)) return;
    if (point != nullptr && (tag.code == point->restype + 10 || tag.code == point->restype + 20)) {
      point->resval.rpoint[tag.code == point->restype + 10 ? 1 : 2] = tags.realOf(tag);
      return;
    }
    const ResbufKind kind = resbufKindOf(tag.code);
    if (kind == ResbufKind::kUnknown || tag.code < 1) return;
    resbuf* item = itemOf(binding, tags, tag, kind);
    point = kind == ResbufKind::kPoint ? item : nullptr;
    if (last == nullptr) {
      chain.reset(item);
    } else {
      last->rbnext = item;
    }
    last = item;
  });
  return chain;
}

std::optional<ResbufItems> extendedDataOf(const DrawingBinding& binding, const TagView& tags) {
  const TagRange range = tags.range();
  std::uint32_t first = range.end;
  while (first > range.begin && binding.document.tag(first - 1).code >= kFirstExtended) --first;
  ResbufItems items;
  if (first == range.end) return items;
  const TagView own(binding.document, binding.encoding, TagRange{first, range.end});
  bool good = true;
  own.forEach([&](const Tag& tag) {
    // The second and third coordinate of a point belong to the first.
    const bool isRest = tag.code >= 1020 && tag.code <= 1033;
    good = good && (isRest || resbufKindOf(tag.code) != ResbufKind::kUnknown);
  });
  if (!good) return std::nullopt;
  const ResbufChain chain = chainOf(binding, own, [](const Tag&) { return true; });
  if (chain == nullptr || !itemsFrom(*chain, items)) return std::nullopt;
  return items;
}

void readExtendedData(const DrawingBinding& binding, const TagView& tags, AcDbObject& object) {
  auto items = extendedDataOf(binding, tags);
  if (items && !items->empty()) ObjectAccess::setExtendedData(object, std::move(*items));
}

void writeExtendedData(const DrawingBinding& binding, const AcDbObject& object,
                       const BoundObject* old, TagEditor& editor) {
  writeExtension(binding, object, old, editor);
  const ResbufItems& now = ObjectAccess::extendedData(object);
  if (old != nullptr) {
    const auto before = extendedDataOf(binding, binding.view(old->first));
    // What could not be held stays as it is.
    if (before == now || (!before && now.empty())) return;
  }
  editor.removeExtended();
  const ResbufChain chain(chainFrom(now));
  for (const resbuf* item = chain.get(); item != nullptr; item = item->rbnext) {
    putValue(*item, editor);
  }
}

}  // namespace tarn::host
