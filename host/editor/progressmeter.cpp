#include "host/editor/progressmeter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace tarn::host {

namespace {

double seconds(ProgressMeter::Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

ProgressMeter::Call::Call(ProgressMeter& meter) : meter_(meter), start_(Clock::now()) {}

ProgressMeter::Call::~Call() {
  meter_.inCalls_ += Clock::now() - start_;
}

void ProgressMeter::begin(const std::string& label, int minimum, int maximum) {
  *this = ProgressMeter();
  running_ = true;
  label_ = label;
  minimum_ = position_ = minimum;
  maximum_ = maximum;
  begun_ = moved_ = Clock::now();
}

void ProgressMeter::move(int position) {
  const Clock::time_point now = Clock::now();
  longestGap_ = std::max(longestGap_, now - moved_);
  moved_ = now;
  position_ = position;
  ++moves_;
}

std::string ProgressMeter::end() {
  if (!running_) return {};
  move(position_);
  running_ = false;
  const double whole = seconds(moved_ - begun_);
  const double calls = seconds(inCalls_);
  const double range = std::max(1.0, static_cast<double>(maximum_) - minimum_);
  const QJsonObject line{{"progress", QString::fromStdString(label_)},
                         {"s", whole},
                         {"own_s", calls},
                         {"share", whole > 0 ? calls / whole : 0},
                         {"moves", static_cast<double>(moves_ - 1)},
                         {"longest_gap_s", seconds(longestGap_)},
                         {"reached", (static_cast<double>(position_) - minimum_) / range}};
  return QJsonDocument(line).toJson(QJsonDocument::Compact).toStdString();
}

}  // namespace tarn::host
