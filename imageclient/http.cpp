#include "imageclient/http.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "base/text.h"
#include "imageclient/transfer.h"

namespace tarn::client {
namespace {

using Clock = Operation::Clock;

constexpr int kConnectionsToAServer = 12;
constexpr long kConnectionsKept = 32;
// Short, so that cancelling is felt at once.
constexpr int kPollMs = 40;

std::atomic<uint64_t> g_requests{0};
std::atomic<uint64_t> g_bytes{0};

/// The process' one set of connections.
class Connections {
 public:
  static Connections& shared() {
    static Connections instance;
    return instance;
  }

  std::mutex& mutex() { return mutex_; }
  CURLM* multi() const { return multi_; }

  Connections(const Connections&) = delete;
  Connections& operator=(const Connections&) = delete;

 private:
  Connections() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    multi_ = curl_multi_init();
    curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, long{kConnectionsToAServer});
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kConnectionsKept);
  }
  ~Connections() { curl_multi_cleanup(multi_); }

  std::mutex mutex_;
  CURLM* multi_ = nullptr;
};

/// One request with its tries.
struct Job {
  const PlacedRequest* request = nullptr;
  HttpAnswer* answer = nullptr;
  std::string server;
  std::unique_ptr<Transfer> transfer;
  Clock::time_point notBefore;
  int tries = 0;
  int redirects = 0;
  std::string url;
  bool done = false;
};

class Run {
 public:
  Run(CURLM* multi, Operation& operation) : multi_(multi), operation_(operation) {}

  void run(std::vector<Job>& jobs);

 private:
  void start(Job& job);
  void startDue(std::vector<Job>& jobs);
  /// Whether there were any.
  bool takeFinished(std::vector<Job>& jobs);
  void finish(Job& job, CURLcode code);
  bool tryAgain(Job& job);
  void end(Job& job);
  void giveUp(Job& job, bool isCancelled) const;

  CURLM* multi_;
  /// How many are under way to each server: who waits for a connection must not run out of time.
  std::map<std::string, int> underWay_;
  Operation& operation_;
};

void Run::start(Job& job) {
  job.transfer = std::make_unique<Transfer>(job.request->place, job.request->request, job.url,
                                            operation_.times(), operation_.left());
  curl_multi_add_handle(multi_, job.transfer->easy());
  ++underWay_[job.server];
  ++g_requests;
}

void Run::startDue(std::vector<Job>& jobs) {
  for (Job& job : jobs) {
    if (!job.done && !job.transfer && Clock::now() >= job.notBefore &&
        underWay_[job.server] < kConnectionsToAServer)
      start(job);
  }
}

void Run::end(Job& job) {
  if (!job.transfer) return;
  curl_multi_remove_handle(multi_, job.transfer->easy());
  g_bytes += job.transfer->received();
  job.transfer.reset();
  --underWay_[job.server];
}

void Run::giveUp(Job& job, bool isCancelled) const {
  job.answer->isCancelled = isCancelled;
  job.answer->isUnreachable = job.answer->isTimeOver = !isCancelled;
  job.answer->isUnfinished = job.transfer ? job.transfer->received() > 0 : job.tries == 0;
  job.answer->failure =
      isCancelled ? "was interrupted" : "its server did not answer in the time it has";
  job.done = true;
}

bool Run::tryAgain(Job& job) {
  const ClientTimes& times = operation_.times();
  if (job.tries >= times.triesAgain) return false;
  const int wait = times.firstWait << job.tries;
  if (wait >= operation_.left()) return false;
  ++job.tries;
  job.notBefore = Clock::now() + std::chrono::milliseconds(wait);
  end(job);
  return true;
}

void Run::finish(Job& job, CURLcode code) {
  const Outcome outcome = job.transfer->outcome(code, job.request->place);
  if (outcome.next == Outcome::Next::kTryAgain && tryAgain(job)) return;
  if (outcome.next == Outcome::Next::kRedirect) {
    constexpr int kMostRedirects = 5;
    if (job.redirects < kMostRedirects) {
      ++job.redirects;
      job.url = outcome.url;
      end(job);
      return;
    }
    job.answer->failure = "its server sends it around in a circle";
  } else {
    *job.answer = job.transfer->takeAnswer();
    job.answer->isTimeOver = code == CURLE_OPERATION_TIMEDOUT && operation_.left() < kPollMs;
    job.answer->isUnfinished = job.answer->isTimeOver && job.transfer->received() > 0;
    job.answer->failure = outcome.failure;
    job.answer->isUnreachable = outcome.isUnreachable;
  }
  job.done = true;
  end(job);
}

bool Run::takeFinished(std::vector<Job>& jobs) {
  int queued = 0;
  bool isAnyFinished = false;
  while (CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
    if (message->msg != CURLMSG_DONE) continue;
    const CURL* easy = message->easy_handle;
    const CURLcode code = message->data.result;
    const auto job = std::find_if(jobs.begin(), jobs.end(), [easy](const Job& candidate) {
      return candidate.transfer && candidate.transfer->easy() == easy;
    });
    if (job == jobs.end()) continue;
    finish(*job, code);
    isAnyFinished = true;
  }
  return isAnyFinished;
}

void Run::run(std::vector<Job>& jobs) {
  const auto isDone = [](const Job& job) { return job.done; };
  while (!std::all_of(jobs.begin(), jobs.end(), isDone)) {
    const bool cancelled = operation_.isCancelled();
    if (cancelled || operation_.left() == 0) {
      for (Job& job : jobs) {
        if (!job.done) giveUp(job, cancelled);
      }
      break;
    }
    startDue(jobs);
    int running = 0;
    curl_multi_perform(multi_, &running);
    // Others may have waited for that.
    if (takeFinished(jobs)) continue;
    curl_multi_poll(multi_, nullptr, 0, kPollMs, nullptr);
  }
  for (Job& job : jobs) end(job);
}

}  // namespace

bool FileVersion::agreesWith(const FileVersion& other) const {
  const auto differ = [](const auto& a, const auto& b) { return a != b; };
  if (!etag.empty() && !other.etag.empty() && differ(etag, other.etag)) return false;
  if (!lastModified.empty() && !other.lastModified.empty() &&
      differ(lastModified, other.lastModified))
    return false;
  return size == 0 || other.size == 0 || size == other.size;
}

HttpTotals httpTotals() {
  return {g_requests, g_bytes};
}

std::vector<HttpAnswer> runRequests(const std::vector<PlacedRequest>& requests,
                                    Operation& operation) {
  std::vector<HttpAnswer> answers(requests.size());
  std::vector<Job> jobs(requests.size());
  for (size_t i = 0; i < requests.size(); ++i) {
    jobs[i].request = &requests[i];
    jobs[i].answer = &answers[i];
    jobs[i].notBefore = Clock::now();
    jobs[i].server = requests[i].place.text();
    jobs[i].url = urlOf(requests[i].place, requests[i].request.path);
  }
  Connections& connections = Connections::shared();
  const std::lock_guard<std::mutex> lock(connections.mutex());
  Run(connections.multi(), operation).run(jobs);
  return answers;
}

HttpAnswer runRequest(const ServerPlace& place, const HttpRequest& request, Operation& operation) {
  return runRequests({{place, request}}, operation).front();
}

}  // namespace tarn::client
