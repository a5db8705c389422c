// The rectification component: IRectifyDialog over one open image.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "components/interaction/interaction.h"
#include "components/rectify/picture.h"
#include "components/rectify/session.h"
#include "inc/irectifydialog.h"
#include "inc/kplugin.h"

namespace tarn::rectify {

class Rectification final : public kel::Implements<Rectification, IRectifyDialog> {
 public:
  static constexpr const char* kName = "rectify";

  bool hasImage() override;
  kel::DString imagePath() override;
  void prepare(int flags) override;
  bool openImage(const kel::DString& path, CallBackRectifyOperator* callback) override;
  void setModal(int modal) override;
  void show() override;

  int imageQueryA() override;
  int imageQueryB() override;
  kel::RectifyPlacement* imageQueryC() override;
  void setRectifyMethod(int method) override;
  void setControlPoints(const kel::PointList& sources, const kel::PointList& targets) override;
  void computeTransform() override;
  int minimumPointCount(int method) override;
  kel::PointList getResiduals() override;
  void getImageGeometry(int& width, int& height, double& left, double& top, double& scaleX,
                        double& scaleY) override;
  bool transformQuery(kel::PointList& sources, kel::PointList& targets) override;
  bool exportPrepare(const kel::DString& path, const kel::DString& format) override;
  bool exportImage(const kel::DString& path, const kel::DString& format) override;
  int rectifyStatus() override;
  void applyPlacement() override;

  IImageDivision* imageSource() override;
  int rectifyMethod() override;
  void acceptTransform() override;
  kel::RectifyQuality quality() override;
  bool transformPoint(double x, double y, double& outX, double& outY) override;
  bool drawingOfPixel(double column, double row, double& x, double& y) override;
  bool pixelOfDrawing(double x, double y, double& column, double& row) override;
  kel::List<double> storedState() override;
  bool restoreState(const kel::List<double>& numbers) override;
  void setExportResampling(int mode) override;
  bool sourceOfFit(double x, double y, double& outX, double& outY) override;

  /// For the image source. What is drawn now; null without an image. From any thread.
  std::shared_ptr<const Picture> picture() const;
  /// Six numbers in world-file order, of the outer upper left corner.
  double* geoTransform() { return numbers_; }
  /// Opens the file again, so that a fresh pyramid is found. The state stays.
  bool reopen();
  const interaction::Interaction& user() const { return user_; }

 private:
  bool load(const std::string& path);
  void takeOver(CallBackRectifyOperator* callback);
  void stateChanged();

  interaction::Interaction user_;
  std::string path_;
  std::shared_ptr<const raster::RasterImage> image_;
  Session session_;
  kel::RectifyPlacement record_;
  bool isModal_ = false;
  int exportResampling_ = 1;
  double numbers_[6] = {1, 0, 0, -1, 0, 0};
  mutable std::mutex mutex_;
  std::shared_ptr<const Picture> picture_;
};

}  // namespace tarn::rectify
