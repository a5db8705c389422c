// The sheet of a plot, small: paper, margins, what is plotted where.
#pragma once

#include <QImage>
#include <QWidget>
#include <optional>

#include "host/plot/plotplan.h"

namespace tarn::host {

class HostApp;
struct PlotJob;

class PlotPreview : public QWidget {
 public:
  explicit PlotPreview(QWidget* parent);

  /// Shows what the screen holds of the plotted area, or the area alone for a tab that is not
  /// shown.
  void show(HostApp& app, const PlotJob& job, const PlotPlan& plan);
  /// Shows an empty place: there is nothing that could be plotted.
  void clear();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage page_;  ///< as large as the picture on the screen, in device pixels
};

}  // namespace tarn::host
