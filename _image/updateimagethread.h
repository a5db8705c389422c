// Workers that read the pixels of one redraw in four strips. Nothing starts them: the drawing reads
// its region itself.
#pragma once

#include <QThread>
#include <cstdint>

#include "inc/iimagedivision.h"
#include "inc/kobject.h"

/// One strip's reader. The four of the pool live as long as the module; a worker's place among them
/// is the number of its strip.
class UpdateImageThread : public QThread {
 public:
  /// What the drawing is about to read. Filled before workers start, left alone until all have
  /// ended; no lock protects it.
  struct Request {
    int32_t originColumn = 0;  ///< image pixels
    int32_t originRow = 0;
    int32_t width = 0;  ///< cells
    int32_t height = 0;
    unsigned char* buffer = nullptr;  ///< of the whole region; null once the drawing has freed it
    double resolution = 0;            ///< image pixels to a cell; its sign does not matter
    kel::Object<IImageDivision> source;
  };
  static Request request;
  static UpdateImageThread pool[4];

  UpdateImageThread() = default;
  ~UpdateImageThread() override;

  /// From now on run() does nothing; there is no way back.
  void stop() { m_stopped = true; }

 protected:
  void run() override;

 private:
  bool m_stopped = false;
};
