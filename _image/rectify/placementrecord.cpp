#include "_image/rectify/placementrecord.h"

#include <algorithm>
#include <cstdint>

#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "acdocman.h"
#include "base/path.h"
#include "base/text.h"
#include "commoncode/cadutil/dictrecord.h"
#include "commoncode/cadutil/message.h"
#include "inc/irectifydialog.h"

namespace tarn::image {
namespace {

constexpr const ACHAR* kDictionary = L"TARNPLACEMENT";

/// Names of entries may not hold every character of a path, so they are made from a hash of it
/// (FNV-1a); the path itself is the record's first text.
std::wstring keyOf(const std::wstring& path) {
  uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : toUtf8(path)) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  constexpr const wchar_t* kDigits = L"0123456789ABCDEF";
  std::wstring key = L"P";
  for (int shift = 60; shift >= 0; shift -= 4) key += kDigits[hash >> shift & 15U];
  return key;
}

/// The record of exactly this path.
bool readPlacement(AcDbDatabase* database, const std::wstring& path, std::vector<double>& numbers) {
  std::vector<std::wstring> texts;
  const std::wstring key = keyOf(path);
  if (!cad::readTexts({kDictionary, key.c_str(), database}, texts) || texts.empty() ||
      texts.front() != path) {
    return false;
  }
  std::vector<double> found;
  for (size_t i = 1; i < texts.size(); ++i) {
    double number = 0;
    if (!parseDouble(toUtf8(texts[i]), number)) return false;
    found.push_back(number);
  }
  numbers = std::move(found);
  return true;
}

bool erasePlacement(AcDbDatabase* database, const std::wstring& path) {
  const std::wstring key = keyOf(path);
  return cad::eraseRecord({kDictionary, key.c_str(), database});
}

bool holds(const std::vector<std::wstring>& paths, const std::wstring& path) {
  return std::find(paths.begin(), paths.end(), path) != paths.end();
}

/// A source that the component drives, or an empty handle.
kel::Object<IRectifyDialog> rectificationOf(IImageDivision* division) {
  void* found = nullptr;
  if (!division || !division->queryInterface(IRectifyDialog::interfaceId(), &found)) return {};
  return kel::Object<IRectifyDialog>::adopt(static_cast<IRectifyDialog*>(found));
}

/// Opens a component for an image as its file has it.
kel::Object<IRectifyDialog> openComponent(const std::wstring& path) {
  auto component = makeObject<IRectifyDialog>(kRectifySite);
  if (component.isNull()) return {};
  component->prepare(0);
  if (!component->openImage(toUtf8(path), nullptr)) return {};
  return component;
}

/// Makes one image draw itself with these numbers. True when it drew itself otherwise before.
bool followPlacement(CDocData& record, const std::wstring& path,
                     const std::vector<double>& numbers) {
  kel::Object<IRectifyDialog> component;
  {
    const OpenedImage image(record, AcDb::kForRead);
    IImageDivision* source = image ? image->sourceOf(path) : nullptr;
    component = rectificationOf(source);
    if (!source || (component.isNull() && numbers.empty())) return false;
  }
  if (component.isNull()) component = openComponent(path);
  if (component.isNull() || component->storedState() == numbers) return false;
  if (!component->restoreState(numbers)) {
    cad::printMessage(L"\n%1：图形中保存的影像位置无法读取，按文件原位显示。", path);
    component->restoreState({});
  }
  const OpenedImage image(record, AcDb::kForWrite);
  if (!image) return false;
  image->SetImageInfo(path, kel::Object<IImageDivision>::adopt(component->imageSource()));
  return true;
}

}  // namespace

std::vector<double> storedPlacement(AcDbDatabase* database, const std::wstring& path) {
  std::vector<double> numbers;
  readPlacement(database, path, numbers);
  return numbers;
}

bool storePlacement(AcDbDatabase* database, const std::wstring& path,
                    const std::vector<double>& numbers) {
  if (numbers.empty()) return erasePlacement(database, path);
  std::vector<std::wstring> texts = {path};
  for (const double number : numbers) texts.push_back(toWide(formatDouble(number)));
  const std::wstring key = keyOf(path);
  return cad::writeTexts({kDictionary, key.c_str(), database}, texts);
}

bool followPlacements(AcApDocument* document, CDocData& record,
                      const std::vector<std::wstring>& stored) {
  bool isChanged = false;
  for (const CDocData::Image& image : record.images()) {
    std::vector<double> numbers;
    if (!readPlacement(document->database(), image.path, numbers)) {
      const auto moved = std::find_if(stored.begin(), stored.end(), [&](const std::wstring& path) {
        return path != image.path && nameOf(path) == nameOf(image.path);
      });
      if (moved != stored.end()) numbers = storedPlacement(document->database(), *moved);
    }
    if (followPlacement(record, image.path, numbers)) isChanged = true;
  }
  return isChanged;
}

void followPaths(AcDbDatabase* database, const std::vector<std::wstring>& before,
                 const std::vector<std::wstring>& now) {
  for (const std::wstring& path : before) {
    std::vector<double> numbers;
    if (holds(now, path) || !readPlacement(database, path, numbers)) continue;
    for (const std::wstring& moved : now) {
      if (!holds(before, moved) && nameOf(moved) == nameOf(path)) {
        storePlacement(database, moved, numbers);
      }
    }
    erasePlacement(database, path);
  }
}

}  // namespace tarn::image
