#include "host/editor/progressmeter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <ctime>

namespace tarn::host {

namespace {

double seconds(ProgressMeter::Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

/// Processor seconds of the process or of the calling thread.
double worked(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double shareOf(double part, double whole) {
  return whole > 0 ? part / whole : 0;
}

}  // namespace

ProgressMeter::Call::Call(ProgressMeter& meter)
    : meter_(meter), start_(Clock::now()), worked_(worked(CLOCK_THREAD_CPUTIME_ID)) {}

ProgressMeter::Call::~Call() {
  meter_.inCalls_ += Clock::now() - start_;
  meter_.workedInCalls_ += worked(CLOCK_THREAD_CPUTIME_ID) - worked_;
}

void ProgressMeter::begin(const std::string& label, int minimum, int maximum) {
  *this = ProgressMeter();
  running_ = true;
  label_ = label;
  minimum_ = position_ = minimum;
  maximum_ = maximum;
  begun_ = moved_ = Clock::now();
  worked_ = worked(CLOCK_PROCESS_CPUTIME_ID);
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
  const double wholeWorked = worked(CLOCK_PROCESS_CPUTIME_ID) - worked_;
  const double range = std::max(1.0, static_cast<double>(maximum_) - minimum_);
  const QJsonObject line{{"progress", QString::fromStdString(label_)},
                         {"s", whole},
                         {"own_s", calls},
                         {"share", shareOf(calls, whole)},
                         {"processor_s", wholeWorked},
                         {"own_processor_s", workedInCalls_},
                         {"processor_share", shareOf(workedInCalls_, wholeWorked)},
                         {"moves", static_cast<double>(moves_ - 1)},
                         {"longest_gap_s", seconds(longestGap_)},
                         {"reached", (static_cast<double>(position_) - minimum_) / range}};
  return QJsonDocument(line).toJson(QJsonDocument::Compact).toStdString();
}

}  // namespace tarn::host
