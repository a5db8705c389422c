// Point clouds.
#include "base/text.h"
#include "host/filing/entitycodec.h"
#include "host/pointcloud/pointcloudentity.h"

namespace tarn::host {

namespace {

constexpr int kVersion = 1;

/// One of a later version stays as it is in the file.
AcDbEntity* readCloud(const EntityTags& tags) {
  const TagView& head = tags.head;
  if (head.integer(90, kVersion) > kVersion) return nullptr;
  const AcGePoint3d low = head.point(13);
  const AcGePoint3d high = head.point(14);
  auto cloud = std::make_unique<TarnPointCloud>();
  cloud->setPath(toUtf8(head.text(1)));
  const bool isPlaced = cloud->setPlacement(head.point(10), head.point(11).asVector(),
                                            head.point(12).asVector()) == Acad::eOk &&
                        cloud->setFrame({low.x, low.y, high.x, high.y}) == Acad::eOk;
  return isPlaced ? cloud.release() : nullptr;
}

void writeCloud(const AcDbEntity& entity, EntityOutput& output) {
  const auto& cloud = static_cast<const TarnPointCloud&>(entity);
  const TarnPointCloud::Frame frame = cloud.frame();
  output.head.setInteger(90, kVersion);
  output.head.setText(1, toWide(cloud.path()));
  output.head.setPoint(10, cloud.position());
  output.head.setPoint(11, AcGePoint3d::kOrigin + cloud.xAxis());
  output.head.setPoint(12, AcGePoint3d::kOrigin + cloud.yAxis());
  output.head.setPoint(13, {frame.minX, frame.minY, 0});
  output.head.setPoint(14, {frame.maxX, frame.maxY, 0});
}

}  // namespace

const std::vector<EntityCodec>& cloudCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"TARNPOINTCLOUD", "TarnPointCloud", &TarnPointCloud::desc, readCloud, writeCloud, false,
       true, true},
  };
  return codecs;
}

}  // namespace tarn::host
