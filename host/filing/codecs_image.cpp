// Images that the drawing names itself.
#include "dbwipe.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kShow = 1;
constexpr double kCorner = 0.5;  ///< rims count from the middle of the first pixel

/// The files of the drawing's image definitions, by handle.
const std::map<std::uint64_t, std::wstring>& imageFiles(DrawingBinding& binding) {
  if (binding.imageFiles) return *binding.imageFiles;
  binding.imageFiles.emplace();
  const DrawingSection* objects = binding.document.section("OBJECTS");
  for (std::uint32_t i = objects != nullptr ? objects->firstObject + 1 : 0;
       objects != nullptr && i < objects->endObject; ++i) {
    if (binding.document.typeOf(i) != "IMAGEDEF") continue;
    (*binding.imageFiles)[binding.document.handleOf(i)] =
        binding.view(i).behind("AcDbRasterImageDef").text(1);
  }
  return *binding.imageFiles;
}

std::vector<AcGePoint3d> clipOf(const TagView& tags) {
  std::vector<AcGePoint3d> clip;
  if (tags.integer(280) == 0) return clip;
  tags.forEach([&](const Tag& tag) {
    const double value = tags.realOf(tag) + kCorner;
    if (tag.code == 14) clip.push_back({value, 0, 0});
    if (tag.code == 24 && !clip.empty()) clip.back().y = value;
  });
  if (clip.size() > 3 && (clip.back() - clip.front()).length() == 0) clip.pop_back();
  return clip;
}

/// Null for one without a size.
template <class Image>
AcDbEntity* readPlaced(const EntityTags& tags) {
  const TagView& own = tags.head;
  AcDbRasterImage::Values values;
  const auto& files = imageFiles(tags.binding);
  const auto file = files.find(own.reference(340));
  if (file != files.end()) values.fileName = file->second;
  values.origin = own.point(10);
  values.u = own.point(11).asVector();
  values.v = own.point(12).asVector();
  values.width = own.real(13);
  values.height = own.real(23);
  values.shown = (own.integer(70, kShow) & kShow) != 0;
  values.clip = clipOf(own);
  values.brightness = static_cast<short>(own.integer(281, values.brightness));
  values.contrast = static_cast<short>(own.integer(282, values.contrast));
  values.fade = static_cast<short>(own.integer(283, values.fade));
  if (!(values.width > 0) || !(values.height > 0)) return nullptr;
  auto* image = new Image;
  image->setValues(std::move(values));
  return image;
}

/// A copy has none of the object that watches the definition for the other.
void writeImage(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbRasterImage::Values& values = static_cast<const AcDbRasterImage&>(entity).values();
  TagEditor& head = output.head;
  head.setPoint(10, values.origin);
  head.setPoint(11, {values.u.x, values.u.y, values.u.z});
  head.setPoint(12, {values.v.x, values.v.y, values.v.z});
  head.setInteger(281, values.brightness, AcDbRasterImage::Values().brightness);
  head.setInteger(282, values.contrast, AcDbRasterImage::Values().contrast);
  head.setInteger(283, values.fade, AcDbRasterImage::Values().fade);
  if (output.isCopy) head.remove({360});
}

}  // namespace

const std::vector<EntityCodec>& imageCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"IMAGE", "AcDbRasterImage", &AcDbRasterImage::desc, readPlaced<AcDbRasterImage>, writeImage,
       false, false},
      {"WIPEOUT", "AcDbWipeout", &AcDbWipeout::desc, readPlaced<AcDbWipeout>, writeImage, false,
       false},
  };
  return codecs;
}

}  // namespace tarn::host
