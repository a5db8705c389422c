// One image of an image server: any HTTP server with byte ranges over cloud-optimised GeoTIFFs.
#pragma once

#include <memory>
#include <vector>

#include "imageclient/absimageclient.h"
#include "imageclient/clienttimes.h"

/// Opened by setIsServe(true), setServeIp, setPort, connectServe, setCurImg. Once it has an image
/// it finds its way back by itself: an image that could not be opened, or whose server was away, is
/// tried again by isReady() and updateImage() after ClientTimes::pause.
class TarnClientManager final : public AbsImageClient {
 public:
  TarnClientManager();
  ~TarnClientManager() override;

  void setIsServe(bool isServe) override;
  /// Host name or IPv4 address, and port from 1 to 65535 (empty: 80), as text.
  void setServeIp(const kel::DString& address);
  void setPort(const kel::DString& port);
  bool connectServe() override;
  /// Selects the image by its path on the server, "DIR/DIR/FILE.tif" (not percent-encoded), and
  /// opens it. False when the server has none, cannot be reached or it is no image that can be read
  /// in pieces; the path is kept for later tries all the same.
  bool setCurImg(const kel::DString& path);
  /// Only keeps the path: isReady() opens the image.
  void selectImg(const kel::DString& path);
  /// True when the image is open; tries to open it when it is not and its pause is over. Costs
  /// nothing else.
  bool isReady();
  /// isReady() of several, whose requests go out together.
  static void makeReady(const std::vector<TarnClientManager*>& clients);

  /// Called with the value of setAds_name() when the image on the server has changed: after the
  /// operation that noticed, on its thread. Its pixels kept here are gone by then, and its size and
  /// place may be others.
  void setUpdFunc(int (*callback)(void*));
  void setAds_name(void* name);

  int imgWei() override;
  int imgHei() override;
  double* getTfwData() override;
  /// Like IImageDivision::announceWindow: the exact window of the next updateImage, of `columns`
  /// and `rows` cells, which then goes by these numbers instead of its own x, y and reductions.
  void announceWindow(double x, double y, double cellX, double cellY, int columns, int rows);
  /// Sends the requests for what has been announced to several out together, as far as that is not
  /// too much at once. An updateImage of each has to follow: it finds the bytes, or fails for the
  /// reason for which they could not be had.
  static void fetchAnnounced(const std::vector<TarnClientManager*>& clients);
  bool updateImage(int x, int y, int w, int h, double reductionX, double reductionY,
                   unsigned char** buffer) override;
  /// The pixels of the last updateImage() that succeeded, until the next one or close(); else null.
  const unsigned char* getMaybeImgData();
  void close() override;
  kel::DString error() override;

  /// As the panel's menu asks for local images; off and -1 at the start.
  void setAntiAliasing(bool on);
  void setStretchMode(int mode);

  using AbsImageClient::close;

  /// The limits of managers and listings made from now on; for tests.
  static void setTimes(const ClientTimes& times);
  static const ClientTimes& times();

 private:
  struct State;
  std::unique_ptr<State> state_;
};
