// Which tab of a drawing is shown, which of its spaces is current, and the views of them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "dbid.h"
#include "host/database/layouts.h"
#include "host/graphics/paperwindow.h"
#include "host/graphics/viewstate.h"

class AcDbDatabase;

namespace tarn::host {

constexpr short kPaperViewport = 1;
constexpr short kModelViewport = 2;

/// A viewport of the shown sheet that is switched on.
struct SheetWindow {
  AcDbObjectId id;
  short number = 0;
  PaperWindow place;
  QRectF onDevice;    ///< device pixels of the screen
  ViewState through;  ///< the model over the whole screen as the window shows it
};

/// The model fills the screen (tiled), or a sheet does; on a sheet the sheet itself is current or
/// the model seen through one of its viewports. Objects that were erased meanwhile are passed over.
class ACADHOST_EXPORT Space {
 public:
  explicit Space(AcDbDatabase& database) : database_(&database) {}

  bool isTiled() const { return tiled_; }
  /// The layout that is shown; on the model's tab that of the model.
  LayoutEntry tab() const;
  /// The sheet shown last, or the first one.
  LayoutEntry sheet() const;
  void showModel();
  void showSheet(const LayoutEntry& sheet);

  /// The block whose entities are shown as they stand: the model's, or the sheet's.
  AcDbObjectId shownBlock() const;
  AcDbObjectId modelBlock() const;
  /// The block that new entities go to.
  AcDbObjectId currentBlock() const;
  /// True when entities of this block can be seen.
  bool shows(AcDbObjectId block) const;

  /// CVPORT: 1 the sheet, 2 and up its viewports in their order; always 2 on the model's tab.
  short currentPort() const;
  /// Null when the sheet or the model's tab is current.
  AcDbObjectId currentViewport() const;
  /// False when there is no such viewport, or it is off, or the model's tab is shown.
  bool setCurrentPort(short number);
  /// Makes the model current: inside a drawing the viewport that is being drawn, else the one that
  /// was current last, else the first. False when there is none.
  bool enterModel();
  void leaveModel() { current_.setNull(); }

  /// What the LIMITS of the current space are: the printable part of a sheet.
  GroundBox limits() const;

  /// The view of the model's tab, also while a sheet is shown.
  const ViewState& modelView() const { return modelView_; }
  /// The view that fills the screen: of the model's tab or of the sheet.
  ViewState& screenView();
  const ViewState& screenView() const;
  /// The view of what is current; inside a drawing through a viewport, the pixels that are drawn.
  ViewState view() const;
  /// The view that entities are being drawn for, whatever is current; else view().
  ViewState drawnView() const { return drawn_ ? drawn_->view : view(); }
  /// Changes the view of what is current; pixels of the screen stay.
  void setView(const ViewState& view);
  /// The view that mouse positions belong to: of what is current, over the whole screen.
  ViewState mouseView() const;
  void setMouseView(const ViewState& view);
  /// Which view an earlier one must belong to, to be taken back.
  AcDbObjectId viewKey() const;

  /// Viewports that are on, in the order of their numbers; none on the model's tab.
  std::vector<SheetWindow> windows() const;

 private:
  friend class DrawnViewport;
  struct Drawn {
    AcDbObjectId id;
    ViewState view;
  };
  std::optional<SheetWindow> currentWindow() const;

  AcDbDatabase* database_;
  bool tiled_ = true;
  AcDbObjectId sheet_;
  AcDbObjectId current_;
  AcDbObjectId last_;  ///< the viewport that was current last
  std::optional<Drawn> drawn_;
  ViewState modelView_;
  std::map<AcDbObjectId, ViewState> sheetViews_;
};

/// While it lives, what is drawn is drawn for one viewport. When a viewport was current this one is
/// current instead; when the sheet was, it stays so until somebody enters the model.
class ACADHOST_EXPORT DrawnViewport {
 public:
  /// `view` is what is drawn of the viewport, with its pixels. A null `viewport` is what is shown
  /// itself: the model, or the sheet.
  DrawnViewport(Space& space, AcDbObjectId viewport, const ViewState& view);
  ~DrawnViewport();
  DrawnViewport(const DrawnViewport&) = delete;
  DrawnViewport& operator=(const DrawnViewport&) = delete;

 private:
  Space& space_;
  AcDbObjectId before_;
};

}  // namespace tarn::host
