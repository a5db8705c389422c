// The image entity: it stands for the images of a drawing, holds one source an image, and at every
// redraw fetches just the pixels that the view needs. No pixels and no paths are filed with it; the
// document's record binds it again when a drawing is opened.
#pragma once

#include <QPolygonF>
#include <QRect>
#include <QTransform>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "_image/view/pixelwindow.h"
#include "afxstr.h"
#include "dbents.h"
#include "gept3dar.h"
#include "inc/iimagedivision.h"

class CDocData;
class AcGiDrawableTraits;
class AcGiViewportDraw;
class AcGiWorldDraw;
class TarnClientManager;

namespace tarn::image {
class ImageFade;
}

/// Paths are full paths of image files, or names of images on servers, and the keys of every map.
/// Local sources are counted; the entity keeps a count of its own for each. Clients of servers
/// belong to the document's record.
class CCadImage : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(CCadImage);

  using Division = kel::Object<IImageDivision>;
  /// Upper left, upper right, lower right, lower left.
  using Corners = std::array<AcGePoint3d, 4>;

  static Adesk::UInt32 kCurrentVersionNumber;
  static const Adesk::UInt32 kImagePixelDataByteCount;
  static const Adesk::UInt32 kImagePixelDataMaxWidth;
  static const Adesk::UInt32 kImagePixelDataMaxHeight;

  CCadImage();
  ~CCadImage() override;

  // ---- Data and filing ----------------------------------------------------------------------
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  /// A new entity bound to the same file, with a footprint of its own; unbound when the file can no
  /// longer be opened.
  AcRxObject* clone() const override;
  Acad::ErrorStatus erase(bool erasing = true);

  /// Binds the entity to an image whose source is open.
  // Deliberate: the footprint follows the drawing scale, not the image's pixel size.
  void SetImageInfo(const std::wstring& path, const Division& division);
  /// The same for an image of a server; the client must live until releaseImage().
  void SetServerImageInfo(const std::wstring& path, TarnClientManager* client);
  /// The image that pAnalyser speaks of.
  void SetCurrentImage(const std::wstring& path);
  const std::wstring& currentImage() const { return m_strCurImage; }
  const std::wstring& imagePath() const { return m_strImagePath; }
  /// The source of the current image: IImageDivision when local, TarnClientManager else; null when
  /// there is none.
  void* pAnalyser(bool isLocal) const;
  // Deliberate: which map holds an image tells whether it is local.
  void setIsLocal(bool isLocal);
  /// The host's current viewport number.
  int GetCVPort() const;
  void SetCVPort(int port) const;

  /// True when a source for the path is held.
  bool holds(const std::wstring& path) const;
  bool holdsNoImage() const { return m_mapImageDivision.empty() && m_mapImageClient.empty(); }
  /// The source of a local image, which stays the entity's; null when there is none.
  IImageDivision* sourceOf(const std::wstring& path) const;
  /// The local sources by path.
  const std::map<std::wstring, Division>& localSources() const { return m_mapImageDivision; }
  /// The client of an image of a server, or null; all of them by path.
  TarnClientManager* clientOf(const std::wstring& path) const;
  const std::map<std::wstring, TarnClientManager*>& serverSources() const {
    return m_mapImageClient;
  }
  /// Closes the source of one image and forgets it; false when there was none.
  bool releaseImage(const std::wstring& path);

  // ---- Fading (cadimage_fade.cpp) ------------------------------------------------------------
  /// From the next drawing on the screen shows one image with this opacity (0 to 1), until
  /// endFade(). None of these draws.
  void startFade(const std::wstring& path, double opacity);
  /// The next drawing of the same view shows the pixels already there; sources are not asked.
  void changeFade(double opacity);
  void endFade();

  // ---- View (cadimage_view.cpp) --------------------------------------------------------------
  void getScreenPixelNumXY(int& width, int& height);
  void GetViewSize(double& width, double& height, double& centreX, double& centreY) const;
  QTransform GetTransform(int& width, int& height);
  void GetScreenRect(double& maxY, double& minY, double& minX, double& maxX);
  void GetScreenRectOld(double& maxY, double& minY, double& minX, double& maxX) const;
  QPolygonF mapToScene(const QTransform& transform, const QRect& rect) const;
  double GetRotateAngle() const;
  bool IsInModelSpace() const;
  void GetViewDirect(AcGeVector3d& direction) const;
  /// True when the image is switched on for display in its document.
  bool isShowThisImage(const std::wstring& path) const;
  // Deliberate: true, and nothing changes.
  bool imageCoordinate2pixelCoordinate(int& left, int& top, int& right, int& bottom, double& x,
                                       double& y) const;
  // Deliberate: nothing.
  void getViewportImagePixelCoord(int& left, int& top, int& right, int& bottom) const;

  // ---- Sources (cadimage_source.cpp) ---------------------------------------------------------
  /// Opens the source of a local image into `division`, which the caller made; builds the pyramid
  /// first unless the configuration says no. False after a message on the command line.
  bool GetimageDivision(Division& division, const std::wstring& path) const;
  /// The same for a file that the user chooses, which becomes the current image.
  bool GetImageDataFile(Division& division);
  /// True when the source holds an image.
  bool GetImageData(const Division& division) const;
  bool GetImageData(const Division& division, const double* georef, int& width, int& height,
                    double& a, double& e, double& y0, double& x0, double& right,
                    double& bottom) const;
  // Deliberate: paints the chunk's place red and copies nothing; no bounds are checked.
  void MergeImageChunkData(unsigned char* dest, int destWidth, int destHeight,
                           const unsigned char* chunk, int x, int y, int chunkWidth,
                           int chunkHeight) const;
  // Deliberate: nothing.
  void GetImageFillBlankPixels(double x, double y) const;

  // ---- Images of servers (cadimage_server.cpp) -----------------------------------------------
  /// Lets the user choose a local file or an image of a server, as the configuration says; the
  /// image becomes the current one. `isNetwork` says which way was taken: then `client` is set and
  /// the caller's, else `division` is open.
  bool GetImageDataFile(TarnClientManager*& client, Division& division, bool& isNetwork);
  /// Opens an image of a server by its name ("HOST:PORT/DIR:FILE.tif"). The client is the
  /// caller's. False, after a message, when it is loaded already or cannot be reached.
  bool GetImageDataFile(const std::wstring& imageName, TarnClientManager*& client,
                        bool isServer) const;
  /// A client for an image, which nobody has asked for yet; null when the name is none.
  static std::unique_ptr<TarnClientManager> clientFor(const std::wstring& imageName, bool isServer);
  bool GetImageData(TarnClientManager* client, int& width, int& height, double& a, double& e,
                    double& y0, double& x0, double& right, double& bottom) const;

  // ---- Editing (cadimage_edit.cpp) -----------------------------------------------------------
  /// Erases every image entity of the current drawing that holds no image; returns how many.
  static int EraseInvalidImage();
  // Deliberate: a null id, and nothing is added.
  static AcDbObjectId PostToModelSpace(AcDbEntity* entity);
  /// Paths of the local or of the server images, in key order.
  void GetImageFileList(std::vector<CString>& files, bool isLocal) const;
  /// In spite of its name the two opposite corners of the image.
  void GetImageCenterPt(const Division& division, double upperLeft[2], double lowerRight[2]) const;
  void GetImageCenterPt(TarnClientManager* client, double upperLeft[2], double lowerRight[2]) const;
  /// The two corners of an image of either kind; false when it is not held, or is of a server that
  /// could not be reached yet.
  bool cornersOf(const std::wstring& path, double upperLeft[2], double lowerRight[2]) const;
  /// The middle of an image; false as for cornersOf().
  bool GetImageCenterPt(const std::wstring& path, double& x, double& y) const;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* worldDraw) override;
  void subViewportDraw(AcGiViewportDraw* viewportDraw) override;
  Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subErase(Adesk::Boolean erasing) override;

  bool subWorldDrawPlot(AcGiWorldDraw* worldDraw);
  void DrawImageWrapPoints(AcGiWorldDraw* worldDraw, double top, double left, double right,
                           double bottom) const;
  /// Converts and draws one buffer whose lower left corner is `origin`; `u` and `v` are its whole
  /// width and height in drawing units.
  void DrawImage(int width, int height, int limitWidth, int limitHeight, double u, double v,
                 const AcGePoint3d& origin, AcGiWorldDraw* worldDraw,
                 const unsigned char* pixels) const;

  void setImageFileNameMapIO(const std::wstring& path, const Division& division, double* georef);
  void setImgInfoMap(const std::wstring& path, TarnClientManager* client);

 private:
  static Corners footprintOf(double width, double height, const double* georef);
  std::vector<Corners> serverFootprints() const;
  /// The whole extent of an image, or false.
  bool extentOf(const std::wstring& path, tarn::image::ImageExtent& extent) const;
  tarn::image::ViewState currentView();
  /// What the plot shows of the model, through the current viewport when a sheet is plotted.
  std::optional<tarn::image::ViewState> plottedView() const;
  void drawShownImages(AcGiWorldDraw* worldDraw, const tarn::image::ViewState& view) const;
  /// A local image that is shown: where it is and who reads it. The path is the list's.
  struct ShownImage {
    const std::wstring* path;
    IImageDivision* source;
    tarn::image::ImageExtent extent;
  };
  const std::vector<ShownImage>& shownImages(const CDocData& record) const;
  void drawLocalImage(const ShownImage& shown, AcGiWorldDraw* worldDraw,
                      const tarn::image::ViewState& view) const;
  void drawKept(AcGiWorldDraw* worldDraw) const;
  /// The fading that a drawing is subject to; null for none.
  tarn::image::ImageFade* fadeFor(AcGiWorldDraw* worldDraw) const;
  void keepShown(const std::wstring& path, const tarn::image::ImageExtent& extent,
                 const std::optional<tarn::image::PixelRequest>& request, AcGiWorldDraw* worldDraw,
                 const unsigned char* pixels) const;
  /// Draws what was asked for, as opaque as the image is to be.
  void drawPixels(const std::wstring& path, const tarn::image::PixelRequest& request,
                  AcGiWorldDraw* worldDraw, const unsigned char* pixels) const;
  /// An image of a server that is shown: where it is, and what is asked for, if anything.
  struct ServerView {
    std::wstring path;
    TarnClientManager* client;
    tarn::image::ImageExtent extent;
    std::optional<tarn::image::PixelRequest> request;
    bool isTooLarge;
  };
  std::vector<ServerView> planServerImages(const CDocData& record, bool isPlot,
                                           const tarn::image::ViewState& view) const;
  void drawServerImages(const CDocData& record, AcGiWorldDraw* worldDraw,
                        const tarn::image::ViewState& view) const;

  std::wstring m_strImagePath;
  std::map<std::wstring, Division> m_mapImageDivision;
  std::map<std::wstring, double*> m_mapImageGeoref;
  /// Both maps' entries of an image by hash: paths of one drawing begin alike, which makes looking
  /// through a sorted map slow, and drawing asks for every image.
  struct LocalImage {
    const Division* source;
    const double* georef;
  };
  std::unordered_map<std::wstring, LocalImage> m_localImages;
  /// What the list said last, so that a redraw need not ask every image where it lies.
  mutable std::vector<ShownImage> m_shownImages;
  /// Of the list; 0 when the sources have changed since.
  mutable uint64_t m_shownRevision = 0;
  std::map<std::wstring, Corners> m_mapImageCorners;
  std::map<std::wstring, TarnClientManager*> m_mapImageClient;
  std::wstring m_strCurImage;
  std::unique_ptr<tarn::image::ImageFade> m_fade;  ///< null while none is wanted
  /// Footprint of the image bound last.
  Corners m_footprint;
  int m_screenPixelWidth = 0;
  int m_screenPixelHeight = 0;
  QTransform m_transform;
};
