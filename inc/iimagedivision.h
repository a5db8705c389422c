// A source of an image's pixels: any rectangle at any reduction, from the file or its pyramid.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class IImageDivision : public kel::IObject {
 public:
  KEL_INTERFACE(IImageDivision)

  /// 1. Opens the image and, when there is one, its pyramid. Paths are UTF-8. On failure the reason
  /// has been printed through IUserInterface.
  virtual bool init(const char* imagePath, const char* pyramidFolder, bool flag) = 0;
  /// 2. Builds the pyramid of the open image, with progress through kel::Core's callback from
  /// position `firstPosition` to `lastPosition`. Levels are averaged (mode 3), tiles are of the
  /// given size in pixels.
  virtual bool buildPyramid(const char* pyramidFolder, int firstLevel, int mode, double tileWidth,
                            double tileHeight, int firstPosition, int lastPosition) = 0;
  /// 3. Fills `out` (width * height pixels of R, G, B, rows without gaps, row 0 on top). Cell (c,
  /// r) covers reductionX * reductionY image pixels whose upper-left corner is (x + c * reductionX,
  /// y + r * reductionY); a window announced before takes the place of (x, y) and the reductions
  /// for this one read. Cells outside the image are (0, 0, 0). False, with `out` untouched or black
  /// where nothing could be read, on a read error.
  virtual bool readRegion(int x, int y, int width, int height, double reductionX, double reductionY,
                          unsigned char* out) = 0;
  /// 4. The same for large reductions, where the coarsest pyramid level may answer.
  virtual bool readRegionOverview(double x, double y, int width, int height, double reduction,
                                  unsigned char* out) = 0;
  /// 5. True when a usable pyramid is there.
  virtual bool hasPyramid(const char* pyramidFolder) = 0;
  /// 6. Releases the image. The object can be opened again.
  virtual void close() = 0;
  /// 7, 8. Size in pixels, as presented (north up).
  virtual int width() = 0;
  virtual int height() = 0;
  /// 9. Always 0.
  virtual void setOutputMode(int mode) = 0;
  /// 10. Six numbers in world-file order, of the outer upper-left corner: pixel width, 0, 0, pixel
  /// height (negative), left, top. Valid while the object lives.
  virtual double* geoTransform() = 0;
  /// 11. The same with the size, for images that carry their own coordinate system.
  virtual void getGeoInfo(int& width, int& height, double& x0, double& y0, double& a,
                          double& e) = 0;
  /// 12. True: read the image file itself, look for no pyramid and make none. Before init() it lets
  /// PNG, BMP and GIF pictures in too.
  virtual void setNoPyramid(bool noPyramid) = 0;
  /// 13. Below 0 when the image carries no coordinate system; else its EPSG number, or 0 when it
  /// has no number.
  virtual void coordinateSystem(int& code) = 0;
  /// 14. readRegion into *destination; may be called from several threads at once.
  virtual bool readBlock(int column, int row, int width, int height, double resolutionX,
                         double resolutionY, unsigned char** destination) = 0;
  /// 15. Off: area average when reducing, nearest when enlarging. On: exact fractional weights when
  /// reducing, bilinear when enlarging.
  virtual void setAntiAliasing(bool on) = 0;
  /// 16. 1 equalises, 2 stretches mean ± 2 standard deviations, -1 none.
  virtual void setStretchMode(int mode) = 0;
  /// 17. The exact window of the next readRegion or readRegionOverview: upper-left corner and cell
  /// size, in image pixels.
  virtual void announceWindow(double x, double y, double cellX, double cellY) = 0;
  /// 18. Number of bands of the file; 0 when unknown.
  virtual int bandCount() { return 0; }
  /// 19. Sentences for the user about what was found odd, without the image's name.
  virtual kel::StringList notes() { return {}; }

 protected:
  ~IImageDivision() = default;
};
