#include "host/window/plotdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <cmath>

#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/viewnames.h"
#include "host/plot/paper.h"
#include "host/ui/uibackend.h"
#include "host/window/appearance.h"
#include "host/window/hostwords.h"
#include "host/window/labels.h"
#include "host/window/plotpreview.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kMillimetresPerMetre = 1000;

struct Choice {
  const char* text;
  int value;
};
constexpr Choice kAreas[] = {
    {toSay("Display"), AcDbPlotSettings::kDisplay}, {toSay("Extents"), AcDbPlotSettings::kExtents},
    {toSay("Limits"), AcDbPlotSettings::kLimits},   {toSay("Named view"), AcDbPlotSettings::kView},
    {toSay("Window"), AcDbPlotSettings::kWindow},   {toSay("Layout"), AcDbPlotSettings::kLayout},
};
constexpr const char* kScales[] = {"1=1",       "1000=100",  "1000=200", "1000=500",
                                   "1000=1000", "1000=2000", "1000=5000"};

QComboBox* comboOf(const std::vector<Choice>& choices, const char* name) {
  auto* combo = new QComboBox;
  combo->setObjectName(name);
  for (const Choice& choice : choices) combo->addItem(words(choice.text), choice.value);
  return combo;
}

QDoubleSpinBox* millimetres(double least, double most, const char* name) {
  auto* box = new QDoubleSpinBox;
  box->setObjectName(name);
  box->setRange(least, most);
  box->setDecimals(2);
  box->setSuffix(" mm");
  return box;
}

void select(QComboBox& combo, int value) {
  combo.setCurrentIndex(std::max(0, combo.findData(value)));
}

QWidget* row(std::initializer_list<QWidget*> widgets) {
  auto* whole = new QWidget;
  auto* layout = new QHBoxLayout(whole);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* widget : widgets) layout->addWidget(widget);
  return whole;
}

}  // namespace

PlotDialog::PlotDialog(QWidget* parent, HostApp& app, PlotJob& job)
    : QDialog(parent), app_(app), job_(job), edited_(job) {
  setObjectName("plotDialog");
  setWindowTitle(words("Plot"));
  layout_ = new QComboBox;
  layout_->setObjectName("layout");
  AcDbDatabase& database = *app_.documents().current().database();
  for (const LayoutEntry& entry : layoutsOf(database)) {
    layout_->addItem(QString::fromStdString(entry.name));
  }
  auto* fields = new QVBoxLayout;
  auto* top = new QFormLayout;
  top->addRow(words("&Layout"), layout_);
  fields->addLayout(top);
  for (QWidget* group : {areaGroup(), paperGroup(), scaleGroup(), outputGroup()}) {
    fields->addWidget(group);
  }
  preview_ = new PlotPreview(this);
  message_ = new QLabel;
  message_->setObjectName("message");
  message_->setWordWrap(true);
  message_->setMinimumHeight(4 * message_->fontMetrics().lineSpacing());
  message_->setAlignment(Qt::AlignTop);
  keeps_ = new QCheckBox(words("Sa&ve these settings with the layout"));
  keeps_->setObjectName("keeps");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  plot_ = buttons->addButton(words("&Plot"), QDialogButtonBox::AcceptRole);
  plot_->setObjectName("plot");
  plot_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { plot(); });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
  auto* right = new QVBoxLayout;
  right->addWidget(preview_);
  right->addWidget(message_);
  right->addStretch();
  right->addWidget(keeps_);
  right->addWidget(buttons);
  auto* halves = new QHBoxLayout(this);
  halves->addLayout(fields);
  halves->addLayout(right);
  width_->setAccessibleName(words("Width"));
  height_->setAccessibleName(words("Height"));
  offsetX_->setAccessibleName(words("Offset x"));
  offsetY_->setAccessibleName(words("Offset y"));
  tieLabels(*this);
  fillViews();
  showJob();
  connectAll();
}

QWidget* PlotDialog::areaGroup() {
  area_ = new QComboBox;
  area_->setObjectName("area");
  view_ = new QComboBox;
  view_->setObjectName("view");
  viewLabel_ = new QLabel(words("View &name"));
  viewLabel_->setBuddy(view_);
  pick_ = new QPushButton(words("P&ick window"));
  pick_->setObjectName("pick");
  pick_->setAutoDefault(false);
  auto* group = new QGroupBox(words("Area"));
  auto* form = new QFormLayout(group);
  form->addRow(words("Wh&at is plotted"), row({area_, pick_}));
  form->addRow(viewLabel_, view_);
  return group;
}

QWidget* PlotDialog::paperGroup() {
  paper_ = new QComboBox;
  paper_->setObjectName("paper");
  for (const std::string& name : paperNames()) paper_->addItem(QString::fromStdString(name));
  paper_->addItem(words("Custom"));
  width_ = millimetres(kLeastPaperSide, kMostPaperSide, "width");
  height_ = millimetres(kLeastPaperSide, kMostPaperSide, "height");
  orientation_ = comboOf({{toSay("Portrait"), 0}, {toSay("Landscape"), 1}}, "orientation");
  rotation_ = comboOf({{"0°", 0}, {"90°", 1}, {"180°", 2}, {"270°", 3}}, "rotation");
  auto* group = new QGroupBox(words("Paper"));
  auto* form = new QFormLayout(group);
  form->addRow(words("&Size"), row({paper_, orientation_}));
  form->addRow(words("&Width × height"), row({width_, height_}));
  form->addRow(words("&Rotation of the drawing"), rotation_);
  return group;
}

QWidget* PlotDialog::scaleGroup() {
  fit_ = new QCheckBox(words("&Fit to the paper"));
  fit_->setObjectName("fit");
  scale_ = new QComboBox;
  scale_->setObjectName("scale");
  scale_->setEditable(true);
  scale_->setInsertPolicy(QComboBox::NoInsert);
  scale_->setToolTip(
      words("Paper units = drawing units; for metres on millimetres 1000=500 is 1:500"));
  for (const char* scale : kScales) scale_->addItem(scale);
  units_ = comboOf(
      {{"mm", AcDbPlotSettings::kMillimeters}, {toSay("inches"), AcDbPlotSettings::kInches}},
      "units");
  centered_ = new QCheckBox(words("&Centre on the paper"));
  centered_->setObjectName("centered");
  offsetX_ = millimetres(-kMostPaperSide, kMostPaperSide, "offsetX");
  offsetY_ = millimetres(-kMostPaperSide, kMostPaperSide, "offsetY");
  auto* group = new QGroupBox(words("Scale and place"));
  auto* form = new QFormLayout(group);
  form->addRow(row({fit_, centered_}));
  form->addRow(words("Paper = &drawing units"), row({scale_, units_}));
  form->addRow(words("&Offset x, y"), row({offsetX_, offsetY_}));
  return group;
}

QWidget* PlotDialog::outputGroup() {
  device_ = comboOf({{toSay("PDF (lines stay lines)"), static_cast<int>(PlotDevice::kPdf)},
                     {toSay("PNG picture"), static_cast<int>(PlotDevice::kPng)}},
                    "device");
  dpi_ = new QSpinBox;
  dpi_->setObjectName("dpi");
  dpi_->setRange(kLowestDpi, kHighestDpi);
  dpi_->setSuffix(" dpi");
  file_ = new QLineEdit;
  file_->setObjectName("file");
  auto* browse = new QPushButton(words("&Browse..."));
  browse->setAutoDefault(false);
  connect(browse, &QPushButton::clicked, this, [this] { this->browse(); });
  auto* group = new QGroupBox(words("Output"));
  auto* form = new QFormLayout(group);
  form->addRow(words("For&mat"), row({device_, dpi_}));
  form->addRow(words("Fil&e"), row({file_, browse}));
  return group;
}

void PlotDialog::fillViews() {
  for (const std::wstring& name : viewNames(*app_.documents().current().database())) {
    view_->addItem(QString::fromStdWString(name));
  }
}

void PlotDialog::connectAll() {
  const auto onChange = [this] { changed(); };
  for (QComboBox* combo : {paper_, orientation_, rotation_, area_, view_, units_}) {
    connect(combo, QOverload<int>::of(&QComboBox::activated), this, onChange);
  }
  for (QDoubleSpinBox* box : {width_, height_, offsetX_, offsetY_}) {
    connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, onChange);
  }
  for (QCheckBox* box : {fit_, centered_}) connect(box, &QCheckBox::toggled, this, onChange);
  connect(scale_, &QComboBox::editTextChanged, this, onChange);
  connect(dpi_, QOverload<int>::of(&QSpinBox::valueChanged), this, onChange);
  // The preview does not show the name.
  connect(file_, &QLineEdit::textChanged, this, [this] {
    if (!showing_) tell(readFields(), false);
  });
  connect(layout_, QOverload<int>::of(&QComboBox::activated), this, [this] { chooseLayout(); });
  connect(device_, QOverload<int>::of(&QComboBox::activated), this, [this] { chooseDevice(); });
  connect(pick_, &QPushButton::clicked, this, [this] { pick(); });
}

void PlotDialog::showJob() {
  showing_ = true;
  const PlotData& s = edited_.settings;
  layout_->setCurrentText(QString::fromStdString(edited_.layout.name));
  area_->clear();
  for (const Choice& area : kAreas) {
    const bool sheetOnly = area.value == AcDbPlotSettings::kLayout;
    const bool needsView = area.value == AcDbPlotSettings::kView;
    if (!(sheetOnly && edited_.layout.isModel) && !(needsView && view_->count() == 0)) {
      area_->addItem(words(area.text), area.value);
    }
  }
  select(*area_, s.type);
  view_->setCurrentText(QString::fromStdWString(s.view));
  const int named = paper_->findText(QString::fromStdWString(s.paper), Qt::MatchFixedString);
  paper_->setCurrentIndex(named >= 0 ? named : paper_->count() - 1);
  width_->setValue(s.width);
  height_->setValue(s.height);
  select(*orientation_, s.width > s.height ? 1 : 0);
  select(*rotation_, s.rotation);
  fit_->setChecked(s.fit);
  scale_->setEditText(
      QString::fromStdString(formatDouble(s.numerator) + "=" + formatDouble(s.denominator)));
  select(*units_, s.units);
  centered_->setChecked(s.centered);
  offsetX_->setValue(s.originX);
  offsetY_->setValue(s.originY);
  select(*device_, static_cast<int>(edited_.target.device));
  dpi_->setValue(edited_.dpi);
  file_->setText(QString::fromStdString(edited_.target.path));
  keeps_->setChecked(edited_.keepsSettings);
  showing_ = false;
  changed();
}

/// The last entry.
bool PlotDialog::isCustomPaper() const {
  return paper_->currentIndex() == paper_->count() - 1;
}

void PlotDialog::readPaper() {
  PlotData& s = edited_.settings;
  if (isCustomPaper()) {
    setPaper(s, formatDouble(width_->value()) + "x" + formatDouble(height_->value()));
  } else {
    setPaper(s, paper_->currentText().toStdString());
    setLandscape(s, orientation_->currentData().toInt() == 1);
  }
}

std::string PlotDialog::readFields() {
  PlotData& s = edited_.settings;
  s.type = static_cast<AcDbPlotSettings::PlotType>(area_->currentData().toInt());
  s.view = view_->currentText().toStdWString();
  readPaper();
  s.rotation = static_cast<AcDbPlotSettings::PlotRotation>(rotation_->currentData().toInt());
  s.units = static_cast<AcDbPlotSettings::PlotPaperUnits>(units_->currentData().toInt());
  s.centered = centered_->isChecked();
  s.originX = offsetX_->value();
  s.originY = offsetY_->value();
  edited_.dpi = dpi_->value();
  edited_.keepsSettings = keeps_->isChecked();
  const std::string name = file_->text().trimmed().toStdString();
  edited_.target.path = name.empty() ? name : absolutePath(name);
  std::string fault;
  if (!fit_->isChecked()) fault = setScale(s, scale_->currentText().trimmed().toStdString());
  s.fit = fit_->isChecked();
  if (!fault.empty()) return fault;
  return checkPlotTarget(edited_.target.path).message();
}

void PlotDialog::changed() {
  if (showing_) return;
  const std::string fault = readFields();
  const PlotData& s = edited_.settings;
  showing_ = true;
  const bool custom = isCustomPaper();
  if (!custom) {
    width_->setValue(s.width);
    height_->setValue(s.height);
  }
  select(*orientation_, s.width > s.height ? 1 : 0);
  showing_ = false;
  orientation_->setEnabled(!custom);
  width_->setEnabled(custom);
  height_->setEnabled(custom);
  scale_->setEnabled(!fit_->isChecked());
  units_->setEnabled(!fit_->isChecked());
  offsetX_->setEnabled(!centered_->isChecked());
  offsetY_->setEnabled(!centered_->isChecked());
  view_->setVisible(s.type == AcDbPlotSettings::kView);
  viewLabel_->setVisible(s.type == AcDbPlotSettings::kView);
  const bool shown =
      app_.documents().current().space().tab().id == edited_.layout.id && !app_.inViewport();
  pick_->setVisible(s.type == AcDbPlotSettings::kWindow);
  pick_->setEnabled(shown);
  pick_->setToolTip(shown ? words("Two corners in the drawing")
                          : words("Only in the tab that is shown, outside its viewports"));
  tell(fault, true);
}

void PlotDialog::tell(std::string fault, bool redraw) {
  const Result<PlotPlan> plan = planJob(app_, edited_);
  if (fault.empty() && !plan) fault = plan.message();
  if (redraw) plan ? preview_->show(app_, edited_, plan.value()) : preview_->clear();
  message_->setText(fault.empty() ? summary(plan.value()) : hostWords(fault));
  message_->setStyleSheet(fault.empty() ? QString() : "color: " + warningOn(palette()).name());
  plot_->setEnabled(fault.empty());
}

QString PlotDialog::summary(const PlotPlan& plan) const {
  const double millimetre = edited_.dpi / kMillimetresPerInch;
  return words(
             "%1 × %2 mm are plotted at %3 drawing units a millimetre (1 : %6 where they are "
             "metres).\nThe page has %4 × %5 pixels.")
      .arg(std::round(plan.clip.width() / millimetre * 10) / 10)
      .arg(std::round(plan.clip.height() / millimetre * 10) / 10)
      .arg(plan.page.unitsPerPixel() * millimetre)
      .arg(plan.page.pixelWidth)
      .arg(plan.page.pixelHeight)
      .arg(std::round(plan.page.unitsPerPixel() * millimetre * kMillimetresPerMetre), 0, 'f', 0);
}

void PlotDialog::chooseLayout() {
  const PlotTarget target = edited_.target;
  AcDbDatabase& database = *app_.documents().current().database();
  edited_ = defaultJob(app_, layoutNamed(database, layout_->currentText().toStdString()));
  edited_.target.device = target.device;
  nameAfterDevice(edited_.target);
  showJob();
}

void PlotDialog::chooseDevice() {
  edited_.target.device = static_cast<PlotDevice>(device_->currentData().toInt());
  nameAfterDevice(edited_.target);
  file_->setText(QString::fromStdString(edited_.target.path));
}

void PlotDialog::browse() {
  const bool pdf = edited_.target.device == PlotDevice::kPdf;
  FileRequest request;
  request.open = false;
  request.overwritePrompt = true;
  request.title = "Plot to";
  request.initialName = edited_.target.path;
  request.defaultExtension = pdf ? "pdf" : "png";
  request.filter = pdf ? "PDF|*.pdf||" : "PNG picture|*.png||";
  const auto names = app_.ui().fileNames(request);
  if (!names || names->empty()) return;
  agreedTarget_ = absolutePath(names->front());
  file_->setText(QString::fromStdString(agreedTarget_));
}

void PlotDialog::pick() {
  choice_ = PlotChoice::kPickWindow;
  accept();
}

void PlotDialog::plot() {
  const std::string& path = edited_.target.path;
  if (path != agreedTarget_ && fileKind(path) != FileKind::kMissing &&
      app_.ui().messageBox(path + " exists. Replace it?", "Plot", MB_YESNO | MB_ICONQUESTION) !=
          IDYES) {
    return;
  }
  choice_ = PlotChoice::kPlot;
  accept();
}

PlotChoice PlotDialog::choose() {
  if (exec() != QDialog::Accepted) return PlotChoice::kCancel;
  readFields();
  job_ = edited_;
  return choice_;
}

}  // namespace tarn::host
