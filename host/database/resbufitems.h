// Values of a chain of result buffers, kept by an object and filed with it.
#pragma once

#include <array>
#include <string>
#include <variant>
#include <vector>

#include "acdb.h"
#include "acutads.h"
#include "dbid.h"

class AcDbDwgFiler;

namespace tarn::host {

struct ResbufItem {
  using Point = std::array<double, 3>;
  using Bytes = std::vector<char>;
  using Value = std::variant<std::wstring, Point, double, Adesk::Int16, Adesk::Int32, Adesk::Int64,
                             Bytes, AcDbObjectId>;
  short code = 0;
  Value value;
};
using ResbufItems = std::vector<ResbufItem>;

inline bool operator==(const ResbufItem& a, const ResbufItem& b) {
  return a.code == b.code && a.value == b.value;
}

/// False, with `items` as they were, when the chain holds a code that cannot be kept.
bool itemsFrom(const resbuf& chain, ResbufItems& items);
/// A chain for the caller, who releases it with acutRelRb; null for no items.
resbuf* chainFrom(const ResbufItems& items);

Acad::ErrorStatus writeItems(AcDbDwgFiler& filer, const ResbufItems& items);
/// `items` changes only when all of them could be read.
Acad::ErrorStatus readItems(AcDbDwgFiler& filer, ResbufItems& items);

}  // namespace tarn::host
