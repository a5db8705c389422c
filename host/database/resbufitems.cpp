#include "host/database/resbufitems.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "acutmem.h"
#include "dbfiler.h"
#include "host/database/recordfiling.h"
#include "host/rx/resbuf_kind.h"

namespace tarn::host {

namespace {

using Point = ResbufItem::Point;
using Bytes = ResbufItem::Bytes;
using Value = ResbufItem::Value;

/// No result codes; 999 is a comment.
ResbufKind kindOf(int code) {
  return code >= 1 && code != 999 && code <= 1071 ? resbufKindOf(code) : ResbufKind::kUnknown;
}

bool itemFrom(const resbuf& buffer, ResbufItem& item) {
  item.code = buffer.restype;
  const ads_u_val& value = buffer.resval;
  switch (kindOf(item.code)) {
    case ResbufKind::kText:
      item.value = std::wstring(value.rstring != nullptr ? value.rstring : L"");
      return true;
    case ResbufKind::kPoint:
      item.value = Point{value.rpoint[0], value.rpoint[1], value.rpoint[2]};
      return true;
    case ResbufKind::kReal:
      item.value = value.rreal;
      return true;
    case ResbufKind::kInt16:
      item.value = static_cast<Adesk::Int16>(value.rint);
      return true;
    case ResbufKind::kInt32:
      item.value = value.rlong;
      return true;
    case ResbufKind::kInt64:
      item.value = value.mnInt64;
      return true;
    case ResbufKind::kBinary:
      item.value =
          Bytes(value.rbinary.buf, value.rbinary.buf + std::max<short>(0, value.rbinary.clen));
      return true;
    case ResbufKind::kName:
      item.value = AcDbObjectId().setFromOldId(value.rlname[0]);
      return true;
    case ResbufKind::kUnknown:
    case ResbufKind::kNothing:
      break;
  }
  return false;
}

void copyBytes(const Bytes& bytes, resbuf& buffer) {
  buffer.resval.rbinary.clen = static_cast<short>(bytes.size());
  buffer.resval.rbinary.buf = nullptr;
  if (bytes.empty()) return;
  // acutRelRb frees it.
  buffer.resval.rbinary.buf = static_cast<char*>(std::malloc(bytes.size()));
  if (buffer.resval.rbinary.buf == nullptr) return;
  std::memcpy(buffer.resval.rbinary.buf, bytes.data(), bytes.size());
}

resbuf* bufferFrom(const ResbufItem& item) {
  resbuf* buffer = acutNewRb(item.code);
  if (buffer == nullptr) return nullptr;
  if (const auto* text = std::get_if<std::wstring>(&item.value)) {
    acutNewString(text->c_str(), buffer->resval.rstring);
  } else if (const auto* point = std::get_if<Point>(&item.value)) {
    std::copy(point->begin(), point->end(), buffer->resval.rpoint);
  } else if (const auto* real = std::get_if<double>(&item.value)) {
    buffer->resval.rreal = *real;
  } else if (const auto* small = std::get_if<Adesk::Int16>(&item.value)) {
    buffer->resval.rint = *small;
  } else if (const auto* whole = std::get_if<Adesk::Int32>(&item.value)) {
    buffer->resval.rlong = *whole;
  } else if (const auto* large = std::get_if<Adesk::Int64>(&item.value)) {
    buffer->resval.mnInt64 = *large;
  } else if (const auto* bytes = std::get_if<Bytes>(&item.value)) {
    copyBytes(*bytes, *buffer);
  } else if (const auto* id = std::get_if<AcDbObjectId>(&item.value)) {
    buffer->resval.rlname[0] = id->asOldId();
  }
  return buffer;
}

struct ValueWriter {
  AcDbDwgFiler& filer;
  void operator()(const std::wstring& v) const { filer.writeString(v.c_str()); }
  void operator()(const Point& v) const { filer.writePoint3d(AcGePoint3d(v[0], v[1], v[2])); }
  void operator()(double v) const { filer.writeDouble(v); }
  void operator()(Adesk::Int16 v) const { filer.writeInt16(v); }
  void operator()(Adesk::Int32 v) const { filer.writeInt32(v); }
  void operator()(Adesk::Int64 v) const { filer.writeInt64(v); }
  void operator()(const Bytes& v) const {
    filer.writeInt32(static_cast<Adesk::Int32>(v.size()));
    filer.writeBytes(v.data(), v.size());
  }
  void operator()(AcDbObjectId v) const { filer.writeSoftPointerId(v); }
};

template <class T>
T readWith(AcDbDwgFiler& filer, Acad::ErrorStatus (AcDbDwgFiler::*read)(T*)) {
  T value{};
  (filer.*read)(&value);
  return value;
}

Value readValue(AcDbDwgFiler& filer, ResbufKind kind) {
  switch (kind) {
    case ResbufKind::kText: {
      std::wstring text;
      readText(filer, text);
      return text;
    }
    case ResbufKind::kPoint: {
      const auto point = readWith(filer, &AcDbDwgFiler::readPoint3d);
      return Point{point.x, point.y, point.z};
    }
    case ResbufKind::kReal:
      return readWith(filer, &AcDbDwgFiler::readDouble);
    case ResbufKind::kInt16:
      return readWith(filer, &AcDbDwgFiler::readInt16);
    case ResbufKind::kInt32:
      return readWith(filer, &AcDbDwgFiler::readInt32);
    case ResbufKind::kInt64:
      return readWith(filer, &AcDbDwgFiler::readInt64);
    case ResbufKind::kBinary: {
      const auto size = readWith(filer, &AcDbDwgFiler::readInt32);
      Bytes bytes(static_cast<size_t>(std::clamp(size, 0, 32767)));
      filer.readBytes(bytes.data(), bytes.size());
      return bytes;
    }
    case ResbufKind::kName:
      return readWith(filer, &AcDbDwgFiler::readSoftPointerId);
    case ResbufKind::kUnknown:
    case ResbufKind::kNothing:
      break;
  }
  if (filer.filerStatus() == Acad::eOk) filer.setFilerStatus(Acad::eInvalidDxfCode);
  return {};
}

}  // namespace

bool itemsFrom(const resbuf& chain, ResbufItems& items) {
  ResbufItems list;
  for (const resbuf* buffer = &chain; buffer != nullptr; buffer = buffer->rbnext) {
    ResbufItem item;
    if (!itemFrom(*buffer, item)) return false;
    list.push_back(std::move(item));
  }
  items = std::move(list);
  return true;
}

resbuf* chainFrom(const ResbufItems& items) {
  resbuf* chain = nullptr;
  resbuf** end = &chain;
  for (const ResbufItem& item : items) {
    *end = bufferFrom(item);
    if (*end == nullptr) break;
    end = &(*end)->rbnext;
  }
  return chain;
}

Acad::ErrorStatus writeItems(AcDbDwgFiler& filer, const ResbufItems& items) {
  filer.writeInt32(static_cast<Adesk::Int32>(items.size()));
  for (const ResbufItem& item : items) {
    filer.writeInt16(item.code);
    std::visit(ValueWriter{filer}, item.value);
  }
  return filer.filerStatus();
}

Acad::ErrorStatus readItems(AcDbDwgFiler& filer, ResbufItems& items) {
  const auto count = readWith(filer, &AcDbDwgFiler::readInt32);
  ResbufItems list;
  for (Adesk::Int32 i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
    ResbufItem item;
    item.code = readWith(filer, &AcDbDwgFiler::readInt16);
    item.value = readValue(filer, kindOf(item.code));
    list.push_back(std::move(item));
  }
  if (filer.filerStatus() == Acad::eOk) items = std::move(list);
  return filer.filerStatus();
}

}  // namespace tarn::host
