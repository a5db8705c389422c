#include "imageclient/tarnclientmanager.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "components/raster/rasterimage.h"
#include "imageclient/clientservices.h"
#include "imageclient/httpsource.h"
#include "imageclient/serverhealth.h"

using tarn::Status;
using tarn::client::Breaker;
using tarn::client::HttpAnswer;
using tarn::client::HttpSource;
using tarn::client::Operation;
using tarn::client::PlacedRequest;
using tarn::client::ServerPlace;
using tarn::raster::RasterImage;
using tarn::raster::ReadCounts;
using tarn::raster::StretchMode;
using tarn::raster::Window;

namespace {

constexpr int kMostCells = 8200;

ClientTimes& currentTimes() {
  static ClientTimes instance;
  return instance;
}

}  // namespace

struct TarnClientManager::State {
  ClientTimes times = currentTimes();
  bool isServe = false;
  std::string host;
  std::string port;
  std::string path;
  std::shared_ptr<HttpSource> source;
  std::shared_ptr<RasterImage> image;
  double transform[6] = {1, 0, 0, -1, 0, 0};
  std::vector<unsigned char> pixels;
  std::optional<Window> announced;
  Breaker breaker;
  std::string error;
  std::string reported;
  int (*updated)(void*) = nullptr;
  void* updatedName = nullptr;
  bool antiAliasing = false;
  StretchMode stretch = StretchMode::kNone;

  std::shared_ptr<Operation> begin() const {
    return std::make_shared<Operation>(times, &tarn::client::userWantsToStop);
  }

  std::optional<ServerPlace> place() {
    auto parsed = tarn::client::parsePlace(host, port);
    if (parsed) return tarn::client::withConfiguration(parsed.take());
    error = parsed.message();
    return std::nullopt;
  }

  /// A fault is told once, until something has succeeded.
  bool fail(const std::string& message, const HttpAnswer& failure) {
    error = message;
    if (failure.isCancelled) return false;
    breaker.failed(times);
    if (const auto where = failure.isUnreachable ? place() : std::nullopt)
      tarn::client::serverFailed(*where, message, times,
                                 failure.isTimeOver && !failure.isUnfinished);
    if (message != reported) tarn::client::tellUser(message);
    reported = message;
    return false;
  }

  void succeed() {
    breaker.succeeded();
    if (const auto where = place()) tarn::client::serverAnswered(*where);
    error.clear();
    reported.clear();
  }

  bool open(const std::shared_ptr<Operation>& operation);
  bool openSource(const std::shared_ptr<Operation>& operation, std::optional<HttpAnswer> head);
  bool openImage(const std::shared_ptr<Operation>& operation);
  std::optional<PlacedRequest> headRequest();
  bool openIfPossible(const std::shared_ptr<Operation>& operation);
  bool isPaused();
  bool isStale() const;
  bool update(const Window& window);
  bool readPixels(const Window& window);
  bool readCurrent(const Window& window, const std::shared_ptr<Operation>& operation,
                   bool& changed);
};

bool TarnClientManager::State::open(const std::shared_ptr<Operation>& operation) {
  return openSource(operation, std::nullopt) && openImage(operation);
}

/// `head`: the answer to headRequest(), when it is there already.
bool TarnClientManager::State::openSource(const std::shared_ptr<Operation>& operation,
                                          std::optional<HttpAnswer> head) {
  image.reset();
  source.reset();
  const auto where = place();
  if (!where) return fail(error, {});
  if (Status usable = tarn::client::checkImagePath(path); !usable)
    return fail(usable.message(), {});
  HttpAnswer refusal;
  auto opened = head ? HttpSource::open(*where, path, operation, std::move(*head), refusal)
                     : HttpSource::open(*where, path, operation, refusal);
  if (!opened) return fail(opened.message(), refusal);
  source = opened.take();
  return true;
}

bool TarnClientManager::State::openImage(const std::shared_ptr<Operation>& operation) {
  source->setOperation(operation);
  auto loaded = RasterImage::open(source);
  source->endHead();
  source->forgetAhead();
  if (!loaded) {
    const HttpAnswer failure = source->failure();
    const std::string message =
        failure.failure.empty() ? loaded.message() : source->name() + ": " + failure.failure;
    source.reset();
    return fail(message, failure);
  }
  image = loaded.take();
  const tarn::raster::GeoTransform& t = image->geoTransform();
  const double numbers[6] = {t.a, 0, 0, t.e, t.x0, t.y0};
  std::copy(numbers, numbers + 6, transform);
  succeed();
  return true;
}

/// What opening begins with; none when it would fail without.
std::optional<PlacedRequest> TarnClientManager::State::headRequest() {
  if (image || !isServe || path.empty() || isPaused()) return std::nullopt;
  const auto where = place();
  if (!where || !tarn::client::checkImagePath(path)) return std::nullopt;
  return PlacedRequest{*where, HttpSource::headRequest(path)};
}

bool TarnClientManager::State::openIfPossible(const std::shared_ptr<Operation>& operation) {
  if (image) return true;
  if (!isServe || path.empty() || isPaused()) return false;
  return open(operation);
}

bool TarnClientManager::State::isPaused() {
  if (breaker.isOpen()) return true;
  const auto where = place();
  const std::string reason = where ? tarn::client::serverPause(*where) : std::string();
  if (!reason.empty()) error = reason;
  return !reason.empty();
}

bool TarnClientManager::State::isStale() const {
  // The images of a drawing take turns: asking about all of them at once would be felt.
  static Operation::Clock::time_point nextTurn{};
  const auto now = Operation::Clock::now();
  if (now < nextTurn || now - source->confirmed() <= std::chrono::milliseconds(times.believed))
    return false;
  nextTurn = now + std::chrono::milliseconds(times.believed / 200);
  return true;
}

bool TarnClientManager::State::readPixels(const Window& window) {
  std::vector<unsigned char> fresh(static_cast<size_t>(window.columns) * window.rows * 3);
  ReadCounts counts;
  const uint64_t before = tarn::client::httpTotals().bytes;
  const Status read = image->read(window, antiAliasing, fresh.data(), counts);
  tarn::client::countForUser("windows", 1);
  tarn::client::countForUser("pixels", static_cast<long long>(counts.pixels));
  tarn::client::countForUser("bytes",
                             static_cast<long long>(tarn::client::httpTotals().bytes - before));
  tarn::client::countForUser("tiles_read", static_cast<long long>(counts.tilesRead));
  tarn::client::countForUser("tiles_cached", static_cast<long long>(counts.tilesCached));
  if (!read || source->hasChanged()) return false;
  image->stretch(stretch, fresh.data(), fresh.size() / 3);
  pixels = std::move(fresh);
  return true;
}

bool TarnClientManager::State::readCurrent(const Window& window,
                                           const std::shared_ptr<Operation>& operation,
                                           bool& changed) {
  source->setOperation(operation);
  source->clearFailure();
  if (isStale()) source->checkVersion();
  if (!source->hasChanged() && source->failure().failure.empty() && readPixels(window)) return true;
  if (!source->hasChanged()) return false;
  // Nothing of the old file may be seen beside the new one, so all of it is read again.
  changed = true;
  const int width = image->width(), height = image->height();
  const std::vector<double> place(transform, transform + 6);
  if (!open(operation)) return false;
  // The window counts pixels of the old image.
  const bool same = width == image->width() && height == image->height() &&
                    std::equal(place.begin(), place.end(), transform);
  return same && readPixels(window);
}

TarnClientManager::TarnClientManager() : state_(std::make_unique<State>()) {}
TarnClientManager::~TarnClientManager() = default;

void TarnClientManager::setTimes(const ClientTimes& times) {
  currentTimes() = times;
}

const ClientTimes& TarnClientManager::times() {
  return currentTimes();
}

void TarnClientManager::setIsServe(bool isServe) {
  state_->isServe = isServe;
}

void TarnClientManager::setServeIp(const kel::DString& address) {
  state_->host = address.str();
}

void TarnClientManager::setPort(const kel::DString& port) {
  state_->port = port.str();
}

bool TarnClientManager::connectServe() {
  if (!state_->isServe || state_->isPaused()) return false;
  const auto where = state_->place();
  if (!where) return state_->fail(state_->error, {});
  if (tarn::client::hasAnsweredLately(*where, state_->times)) return true;
  tarn::client::HttpRequest request;
  request.headOnly = true;
  const auto operation = state_->begin();
  const HttpAnswer answer = tarn::client::runRequest(*where, request, *operation);
  // Any answer shows that there is a server.
  if (answer.status != 0) {
    state_->error.clear();
    tarn::client::serverAnswered(*where);
    return true;
  }
  return state_->fail(where->text() + ": " + answer.failure, answer);
}

void TarnClientManager::selectImg(const kel::DString& path) {
  state_->image.reset();
  state_->source.reset();
  state_->pixels.clear();
  state_->path = path.str();
}

bool TarnClientManager::setCurImg(const kel::DString& path) {
  selectImg(path);
  return state_->openIfPossible(state_->begin());
}

bool TarnClientManager::isReady() {
  return state_->openIfPossible(state_->begin());
}

void TarnClientManager::makeReady(const std::vector<TarnClientManager*>& clients) {
  std::vector<State*> states;
  std::vector<PlacedRequest> requests;
  for (const TarnClientManager* client : clients) {
    if (auto request = client->state_->headRequest()) {
      states.push_back(client->state_.get());
      requests.push_back(std::move(*request));
    } else {
      client->state_->openIfPossible(client->state_->begin());
    }
  }
  if (states.empty()) return;
  const auto operation = states.front()->begin();
  std::vector<HttpAnswer> heads = tarn::client::runRequests(requests, *operation);
  std::vector<State*> begun;
  std::vector<PlacedRequest> rests;
  std::vector<State*> restOf;
  for (size_t i = 0; i < states.size(); ++i) {
    // Who has failed too often meanwhile has its pause.
    if (states[i]->isPaused() || !states[i]->openSource(operation, std::move(heads[i]))) continue;
    begun.push_back(states[i]);
    if (auto rest = states[i]->source->restOfHead()) {
      rests.push_back(std::move(*rest));
      restOf.push_back(states[i]);
    }
  }
  std::vector<HttpAnswer> answers = tarn::client::runRequests(rests, *operation);
  for (size_t i = 0; i < rests.size(); ++i)
    restOf[i]->source->takeAhead({rests[i]}, {std::move(answers[i])});
  for (State* state : begun) state->openImage(state->begin());
}

void TarnClientManager::setUpdFunc(int (*callback)(void*)) {
  state_->updated = callback;
}

void TarnClientManager::setAds_name(void* name) {
  state_->updatedName = name;
}

int TarnClientManager::imgWei() {
  return state_->image ? state_->image->width() : 0;
}

int TarnClientManager::imgHei() {
  return state_->image ? state_->image->height() : 0;
}

double* TarnClientManager::getTfwData() {
  return state_->transform;
}

void TarnClientManager::announceWindow(double x, double y, double cellX, double cellY, int columns,
                                       int rows) {
  state_->announced = Window{x, y, cellX, cellY, columns, rows};
}

void TarnClientManager::fetchAnnounced(const std::vector<TarnClientManager*>& clients) {
  // The rest is fetched image by image, so that all of it need not be kept at once.
  constexpr uint64_t kMostBytes = 16 << 20;
  struct Part {
    State* state;
    std::vector<PlacedRequest> requests;
  };
  std::vector<Part> parts;
  std::vector<PlacedRequest> all;
  uint64_t bytes = 0;
  for (const TarnClientManager* client : clients) {
    State& state = *client->state_;
    if (!state.image || !state.announced || state.isPaused()) continue;
    const auto ranges = state.image->rangesOf(*state.announced, state.antiAliasing);
    auto requests = state.source->requestsFor(ranges);
    for (const PlacedRequest& request : requests) bytes += request.request.count;
    if (bytes > kMostBytes) break;
    all.insert(all.end(), requests.begin(), requests.end());
    parts.push_back({&state, std::move(requests)});
  }
  if (all.empty()) return;
  const uint64_t before = tarn::client::httpTotals().bytes;
  std::vector<HttpAnswer> answers = tarn::client::runRequests(all, *parts.front().state->begin());
  tarn::client::countForUser("bytes",
                             static_cast<long long>(tarn::client::httpTotals().bytes - before));
  auto answer = answers.begin();
  for (Part& part : parts) {
    const auto end = answer + static_cast<std::ptrdiff_t>(part.requests.size());
    part.state->source->takeAhead(part.requests,
                                  {std::make_move_iterator(answer), std::make_move_iterator(end)});
    answer = end;
  }
}

bool TarnClientManager::updateImage(int x, int y, int w, int h, double reductionX,
                                    double reductionY, unsigned char** buffer) {
  if (buffer) *buffer = nullptr;
  Window window{static_cast<double>(x),
                static_cast<double>(y),
                std::fabs(reductionX),
                std::fabs(reductionY),
                w,
                h};
  if (state_->announced) {
    window = *state_->announced;
    window.columns = w;
    window.rows = h;
    state_->announced.reset();
  }
  if (w < 1 || h < 1 || w > kMostCells || h > kMostCells) return false;
  const bool read = state_->update(window);
  if (state_->source) state_->source->forgetAhead();
  if (read && buffer) {
    *buffer = new unsigned char[state_->pixels.size()];
    std::memcpy(*buffer, state_->pixels.data(), state_->pixels.size());
  }
  return read;
}

bool TarnClientManager::State::update(const Window& window) {
  if (isPaused()) return false;
  const auto operation = begin();
  if (!openIfPossible(operation)) return false;
  bool changed = false;
  const bool read = readCurrent(window, operation, changed);
  if (read) {
    succeed();
  } else if (source && !changed) {
    const HttpAnswer failure = source->failure();
    if (failure.failure.empty()) source->forgetPixels();
    fail(source->name() + ": " +
             (failure.failure.empty() ? "some of its pixels cannot be read" : failure.failure),
         failure);
  }
  if (changed && updated) updated(updatedName);
  return read;
}

const unsigned char* TarnClientManager::getMaybeImgData() {
  return state_->pixels.empty() ? nullptr : state_->pixels.data();
}

void TarnClientManager::close() {
  state_->image.reset();
  state_->source.reset();
  state_->pixels = {};
  state_->path.clear();
}

kel::DString TarnClientManager::error() {
  return state_->error;
}

void TarnClientManager::setAntiAliasing(bool on) {
  state_->antiAliasing = on;
}

void TarnClientManager::setStretchMode(int mode) {
  const bool known = mode == 1 || mode == 2;
  state_->stretch = known ? static_cast<StretchMode>(mode) : StretchMode::kNone;
}
