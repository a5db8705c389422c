#include "components/convert/batch.h"

#include <chrono>

#include "components/convert/converter.h"

namespace tarn::convert {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

void count(State state, Summary& summary) {
  switch (state) {
    case State::kConverted:
      ++summary.converted;
      break;
    case State::kCurrent:
      ++summary.current;
      break;
    case State::kSkipped:
      ++summary.skipped;
      break;
    case State::kStopped:
      ++summary.stopped;
      break;
    default:
      ++summary.failed;
  }
}

ItemResult convertItem(const Item& item, const Options& options, const raster::Progress& progress) {
  ItemResult result;
  if (!item.problem.empty()) {
    result.state = State::kFailed;
    result.message = item.input + ": " + item.problem;
    return result;
  }
  Result<Converted> done = convertImage(item.input, item.output, options, progress);
  if (!done) {
    result.state = State::kFailed;
    result.message = done.message();
    return result;
  }
  const Converted& converted = done.value();
  result.output = converted.path;
  result.bytes = converted.bytes;
  result.notes = converted.notes;
  result.state = converted.outcome == Outcome::kConverted ? State::kConverted
                 : converted.outcome == Outcome::kCurrent ? State::kCurrent
                                                          : State::kSkipped;
  if (result.state == State::kSkipped && !result.notes.empty()) {
    result.message = item.input + ": " + result.notes.front();
    result.notes.clear();
  }
  return result;
}

}  // namespace

const char* wordOf(State state) {
  constexpr const char* kWords[] = {"waiting", "running", "converted", "current",
                                    "skipped", "failed",  "stopped"};
  return kWords[static_cast<size_t>(state)];
}

std::string Summary::text() const {
  std::string out;
  const auto add = [&](size_t number, State state) {
    if (number > 0 || (state == State::kConverted && converted + failed + current == 0))
      out += (out.empty() ? "" : ", ") + std::to_string(number) + " " + wordOf(state);
  };
  add(converted, State::kConverted);
  add(current, State::kCurrent);
  add(skipped, State::kSkipped);
  add(failed, State::kFailed);
  add(stopped, State::kStopped);
  return out;
}

Summary runBatch(const std::vector<Item>& items, const Options& options, BatchObserver& observer) {
  Summary summary;
  bool stopped = false;
  const Clock::time_point start = Clock::now();
  for (size_t i = 0; i < items.size(); ++i) {
    ItemResult result;
    stopped = stopped || !observer.moved(i, 0);
    if (!stopped) {
      observer.started(i);
      const Clock::time_point own = Clock::now();
      result = convertItem(items[i], options, [&](double part) {
        stopped = stopped || !observer.moved(i, part);
        return !stopped;
      });
      result.seconds = secondsSince(own);
    }
    if (stopped && result.state != State::kConverted) {
      result.state = State::kStopped;
      result.message = items[i].input + ": was stopped";
    }
    count(result.state, summary);
    observer.finished(i, result);
  }
  summary.seconds = secondsSince(start);
  return summary;
}

}  // namespace tarn::convert
