// An image that a client reads for the drawing: what the entity asks of it.
//
// All operations belong to one thread, the one that draws. None of them throws; those that may talk
// to a server come back within ClientTimes::operation, and within a fifth of a second once the user
// has asked to stop (IUserInterface::cancelWanted).
#pragma once

#include <functional>

#include "inc/kvalues.h"

class AbsImageClient {
 public:
  virtual ~AbsImageClient() = default;
  AbsImageClient(const AbsImageClient&) = delete;
  AbsImageClient& operator=(const AbsImageClient&) = delete;

  /// Marks the client as talking to a server. One that does not never connects.
  virtual void setIsServe(bool isServe) = 0;
  /// False when the server does not answer, or its address is not usable; error() says why.
  virtual bool connectServe() = 0;
  /// Size in pixels, as presented (north up); 0 while no image is open.
  virtual int imgWei() = 0;
  virtual int imgHei() = 0;
  /// Six doubles in world-file order (pixel width, 0, 0, pixel height, x and y of the outer
  /// upper-left corner), valid while the client lives.
  virtual double* getTfwData() = 0;
  /// Fetches `w * h` cells of `reductionX * reductionY` image pixels, the first with its upper left
  /// corner at image pixel (x, y): R, G, B, rows without gaps, row 0 on top. Cells outside the
  /// image are (0, 0, 0). Sets `*buffer` to memory of w * h * 3 bytes that the caller gives back to
  /// freeBuffer(); `buffer` may be null, the pixels are then only in getMaybeImgData(). False,
  /// after one message a fault, when some pixels cannot be had; `*buffer` is then null.
  virtual bool updateImage(int x, int y, int w, int h, double reductionX, double reductionY,
                           unsigned char** buffer) = 0;
  /// Ends the connection; the image is not open afterwards.
  virtual void close() = 0;
  /// Why the last operation failed: one sentence, or empty.
  virtual kel::DString error() = 0;

  /// Frees what updateImage() has allocated; null is fine.
  static void freeBuffer(unsigned char* buffer);

  /// Who holds sources by path: closes the source of an image, local or of a server, lets go of it,
  /// and says whether there was one.
  using Releaser = std::function<bool(const kel::DString& path)>;
  /// Sets the one releaser of the process; an empty one takes it out.
  static void setReleaser(Releaser releaser);
  /// Releases an image by its path or name on a server; false when nobody holds it.
  static bool close(const kel::DString& path);

 protected:
  AbsImageClient() = default;
};
