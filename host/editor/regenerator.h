// Draws entities into the display lists of their drawing, and counts what that took.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "adesk.h"
#include "dbid.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/viewstate.h"

class AcDbEntity;

namespace tarn::host {

class HostApp;
class HostDocument;

class ACADHOST_EXPORT Regenerator {
 public:
  explicit Regenerator(HostApp& app) : app_(app) {}

  /// Draws every visible entity of the shown tab anew, those of the model once for each viewport of
  /// a sheet. Does nothing inside another drawing.
  void regenerate(HostDocument& document);
  /// Draws one entity, which must be open, anew; an erased or invisible one is taken away.
  void redraw(AcDbEntity& entity);
  /// Draws the entities of one layer of the model space anew.
  void redrawLayer(HostDocument& document, AcDbObjectId layer);
  /// Brings what is drawn of a block into its order of drawing.
  void reorder(HostDocument& document, AcDbObjectId block);
  /// Takes an entity out of the picture.
  void forget(AcDbEntity& entity);

  /// Union of the extents of the visible entities of the current space.
  GroundBox extents(HostDocument& document) const;
  GroundBox extentsOf(AcDbObjectId block) const;

  /// Draws the block's visible entities into a scene for a plot; the screen's scenes stay as they
  /// are. `proceed` is asked before each entity and after the last; false stops and is returned.
  bool recordPlot(Scene& scene, AcDbObjectId block, const std::function<bool()>& proceed);
  /// How often anything was drawn for the screen since the start.
  long long screenDrawings() const { return screenDrawings_; }

  /// Adds to a counter of the current redraw. Safe from any thread.
  void count(const std::string& counter, long long amount);
  void setStatistics(bool on) { statistics_ = on; }
  bool hasStatistics() const { return statistics_; }
  bool isDrawing() const { return depth_ > 0; }

 private:
  void draw(Scene& scene, AcDbEntity& entity, bool plots = false) const;
  size_t drawBlock(Scene& scene, AcDbObjectId block) const;
  void drawWindows(HostDocument& document, const std::function<void(Scene&)>& drawInto) const;
  void printStatistics(double milliseconds, size_t entities);
  void beginCounting();

  HostApp& app_;
  int depth_ = 0;
  long long screenDrawings_ = 0;
  bool statistics_ = false;
  std::mutex mutex_;
  std::map<std::string, long long> counters_;
};

}  // namespace tarn::host
