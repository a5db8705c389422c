#include "imageclient/httpsource.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "components/raster/tiffdirectory.h"

namespace tarn::client {
namespace {

// What a small image's directories need.
constexpr uint64_t kHead = 16 << 10;
// What is read at least by itself.
constexpr uint64_t kBlock = 4 << 10;
// Less than a request costs.
constexpr uint64_t kGap = 1 << 10;
// Longer requests would keep connections idle that could share the work.
constexpr uint64_t kLongestRequest = 1 << 20;

/// The start of a file, and where else something was looked for.
class KnownStart final : public RandomBytes {
 public:
  explicit KnownStart(const std::string& bytes) : bytes_(bytes) {}

  bool readAt(uint64_t offset, void* out, size_t size) const override {
    if (offset > bytes_.size() || size > bytes_.size() - offset) {
      missing_ = offset;
      return false;
    }
    std::memcpy(out, bytes_.data() + offset, size);
    return true;
  }
  /// 0 when all was found.
  uint64_t missing() const { return missing_; }

 private:
  const std::string& bytes_;
  mutable uint64_t missing_ = 0;
};

}  // namespace

std::vector<raster::ByteRange> mergeRanges(std::vector<raster::ByteRange> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const auto& a, const auto& b) { return a.offset < b.offset; });
  std::vector<raster::ByteRange> merged;
  for (const raster::ByteRange& range : ranges) {
    if (!merged.empty()) {
      raster::ByteRange& last = merged.back();
      const uint64_t lastEnd = last.offset + last.size, end = range.offset + range.size;
      const bool inside = end <= lastEnd;
      if (inside || (range.offset <= lastEnd + kGap && end - last.offset <= kLongestRequest)) {
        last.size = std::max(lastEnd, end) - last.offset;
        continue;
      }
    }
    merged.push_back(range);
  }
  return merged;
}

HttpSource::HttpSource(const ServerPlace& place, const std::string& path)
    : place_(place), path_(path), name_(place.text() + '/' + path) {}

HttpRequest HttpSource::headRequest(const std::string& path) {
  HttpRequest head;
  head.path = path;
  head.count = head.mostBytes = kHead;
  return head;
}

Result<std::shared_ptr<HttpSource>> HttpSource::open(const ServerPlace& place,
                                                     const std::string& path,
                                                     const std::shared_ptr<Operation>& operation,
                                                     HttpAnswer& refusal) {
  return open(place, path, operation, runRequest(place, headRequest(path), *operation), refusal);
}

Result<std::shared_ptr<HttpSource>> HttpSource::open(const ServerPlace& place,
                                                     const std::string& path,
                                                     const std::shared_ptr<Operation>& operation,
                                                     HttpAnswer head, HttpAnswer& refusal) {
  std::shared_ptr<HttpSource> source(new HttpSource(place, path));
  source->operation_ = operation;
  if (Status loaded = source->load(std::move(head)); !loaded) {
    refusal = source->failure();
    return loaded;
  }
  return source;
}

Status HttpSource::load(HttpAnswer answer) {
  if (answer.failure.empty() && !answer.isPart)
    answer.failure = "its server does not give out parts of files";
  if (answer.failure.empty() && (answer.version.size == 0 || answer.body.empty()))
    answer.failure = "is empty, or its server does not say how large it is";
  if (answer.failure.empty() && answer.version.etag.empty() && answer.version.lastModified.empty())
    answer.failure = "its server does not say when it was changed";
  if (!answer.failure.empty()) {
    fail(answer);
    return Status::error(name_ + ": " + answer.failure);
  }
  version_ = answer.version;
  headEnd_ = answer.body.size();
  confirmed_ = Operation::Clock::now();
  head_ = {std::make_shared<Piece>(Piece{0, std::move(answer.body)})};
  keep(head_.front());
  return Status::ok();
}

std::string HttpSource::condition() const {
  // Weak tags never match; the time is then what there is.
  if (!version_.etag.empty() && version_.etag.compare(0, 2, "W/") != 0)
    return "If-Match: " + version_.etag;
  if (!version_.lastModified.empty()) return "If-Unmodified-Since: " + version_.lastModified;
  return {};
}

std::shared_ptr<Operation> HttpSource::operation() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return operation_;
}

void HttpSource::setOperation(std::shared_ptr<Operation> operation) {
  const std::lock_guard<std::mutex> lock(mutex_);
  operation_ = std::move(operation);
}

Operation::Clock::time_point HttpSource::confirmed() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return confirmed_;
}

HttpAnswer HttpSource::failure() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return failure_;
}

void HttpSource::clearFailure() {
  const std::lock_guard<std::mutex> lock(mutex_);
  failure_ = {};
}

void HttpSource::fail(const HttpAnswer& answer) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!failure_.failure.empty()) return;
  failure_.failure = answer.failure;
  failure_.status = answer.status;
  failure_.isUnreachable = answer.isUnreachable;
  failure_.isCancelled = answer.isCancelled;
  failure_.isTimeOver = answer.isTimeOver;
  failure_.isUnfinished = answer.isUnfinished;
}

PiecePtr HttpSource::find(uint64_t offset, uint64_t size) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (auto at = pieces_.upper_bound(offset); at != pieces_.begin();) {
    --at;
    PiecePtr piece = at->second.lock();
    if (!piece) {
      at = pieces_.erase(at);
      continue;
    }
    if (piece->covers(offset, size)) return piece;
  }
  return nullptr;
}

void HttpSource::keep(const PiecePtr& piece) const {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    pieces_.emplace(piece->offset, piece);
  }
  RangeCache::shared().use(piece);
}

bool HttpSource::accept(const HttpAnswer& answer, const raster::ByteRange& range) const {
  const bool other = answer.status == 412 || answer.status == 416 ||
                     (answer.failure.empty() && !version_.agreesWith(answer.version));
  if (other) {
    changed_ = true;
    return false;
  }
  HttpAnswer judged = answer;
  if (judged.failure.empty() &&
      (!judged.isPart || judged.first != range.offset || judged.body.size() != range.size))
    judged.failure = "its server answers with other bytes than it was asked for";
  if (judged.failure.empty()) return true;
  fail(judged);
  return false;
}

HttpRequest HttpSource::requestFor(const raster::ByteRange& range) const {
  HttpRequest request;
  request.path = path_;
  request.first = range.offset;
  request.count = request.mostBytes = range.size;
  request.condition = condition();
  return request;
}

bool HttpSource::request(const std::vector<raster::ByteRange>& ranges,
                         std::vector<PiecePtr>& pieces) const {
  const std::shared_ptr<Operation> current = operation();
  // After a failure the rest of the operation is not tried.
  if (!current || changed_ || !failure().failure.empty() || hasFailedAhead(ranges)) return false;
  std::vector<PlacedRequest> requests;
  for (const raster::ByteRange& range : ranges) requests.push_back({place_, requestFor(range)});
  std::vector<HttpAnswer> answers = runRequests(requests, *current);
  bool whole = true;
  for (size_t i = 0; i < answers.size(); ++i) whole = accept(answers[i], ranges[i]) && whole;
  if (!whole) return false;
  for (size_t i = 0; i < answers.size(); ++i) {
    pieces.push_back(std::make_shared<Piece>(Piece{ranges[i].offset, std::move(answers[i].body)}));
    keep(pieces.back());
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  confirmed_ = Operation::Clock::now();
  return true;
}

/// Ranges that are not kept; the pieces of the others count as used.
std::vector<raster::ByteRange> HttpSource::missingOf(const std::vector<raster::ByteRange>& ranges,
                                                     std::vector<PiecePtr>& pieces) const {
  std::vector<raster::ByteRange> missing;
  for (const raster::ByteRange& range : ranges) {
    if (range.size > version_.size || range.offset > version_.size - range.size) continue;
    if (PiecePtr piece = find(range.offset, range.size)) {
      RangeCache::shared().use(piece);
      pieces.push_back(std::move(piece));
    } else {
      missing.push_back(range);
    }
  }
  return mergeRanges(std::move(missing));
}

bool HttpSource::fetch(const std::vector<raster::ByteRange>& ranges,
                       std::shared_ptr<const void>& held) const {
  auto pieces = std::make_shared<std::vector<PiecePtr>>();
  const std::vector<raster::ByteRange> missing = missingOf(ranges, *pieces);
  if (!missing.empty() && !request(missing, *pieces)) return false;
  held = std::move(pieces);
  return true;
}

std::vector<PlacedRequest> HttpSource::requestsFor(
    const std::vector<raster::ByteRange>& ranges) const {
  std::vector<PiecePtr> known;
  std::vector<PlacedRequest> requests;
  for (const raster::ByteRange& range : missingOf(ranges, known))
    requests.push_back({place_, requestFor(range)});
  return requests;
}

void HttpSource::takeAhead(const std::vector<PlacedRequest>& requests,
                           std::vector<HttpAnswer> answers) {
  for (size_t i = 0; i < requests.size(); ++i) {
    const raster::ByteRange range{requests[i].request.first, requests[i].request.count};
    // What the time did not suffice for is asked for again by who needs it.
    if (answers[i].isUnfinished && !answers[i].isCancelled) continue;
    const bool fine = answers[i].failure.empty() && accept(answers[i], range);
    PiecePtr piece;
    if (fine) {
      piece = std::make_shared<Piece>(Piece{range.offset, std::move(answers[i].body)});
      keep(piece);
    }
    if (fine && range.offset == headEnd_) holdHead(piece);
    const std::lock_guard<std::mutex> lock(mutex_);
    if (fine) {
      ahead_.push_back(std::move(piece));
    } else {
      failedAhead_.emplace_back(range, std::move(answers[i]));
    }
  }
  clearFailure();
}

void HttpSource::forgetAhead() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ahead_.clear();
  failedAhead_.clear();
}

void HttpSource::forgetPixels() {
  const std::lock_guard<std::mutex> lock(mutex_);
  pieces_.clear();
  for (const PiecePtr& piece : head_) pieces_.emplace(piece->offset, piece);
}

/// Whether something of these ranges has been asked for ahead in vain: that is their answer.
bool HttpSource::hasFailedAhead(const std::vector<raster::ByteRange>& ranges) const {
  const auto touches = [&](const raster::ByteRange& failed) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const raster::ByteRange& range) {
      return range.offset < failed.offset + failed.size &&
             failed.offset < range.offset + range.size;
    });
  };
  std::optional<std::pair<raster::ByteRange, HttpAnswer>> found;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& failed : failedAhead_) {
      if (!found && touches(failed.first)) found = failed;
    }
  }
  return found && !accept(found->second, found->first);
}

// The directories of a well-made file follow one another at its start, and those of each level are
// a quarter as long as those of the level before: where one begins tells where all end.
std::optional<raster::ByteRange> HttpSource::headRange(uint64_t offset, uint64_t size) const {
  constexpr uint64_t kSlack = 2 << 10;
  const std::lock_guard<std::mutex> lock(mutex_);
  const uint64_t end = std::min(offset + size + offset / 3 + kSlack, version_.size);
  if (!isHeadOpen_ || offset < headEnd_ || end - headEnd_ > kLongestRequest) return std::nullopt;
  return raster::ByteRange{headEnd_, end - headEnd_};
}

PiecePtr HttpSource::readOn(uint64_t offset, uint64_t size) const {
  const auto head = headRange(offset, size);
  const raster::ByteRange range = head.value_or(
      raster::ByteRange{offset, std::min(std::max(size, kBlock), version_.size - offset)});
  std::vector<PiecePtr> fetched;
  if (!request({range}, fetched)) return nullptr;
  if (head) holdHead(fetched.front());
  return fetched.front();
}

void HttpSource::holdHead(const PiecePtr& piece) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  head_.push_back(piece);
  headEnd_ = std::max(headEnd_, piece->offset + piece->bytes.size());
}

std::optional<PlacedRequest> HttpSource::restOfHead() const {
  const KnownStart start(head_.front()->bytes);
  raster::hasMorePicturesThan(start, version_.size, 1);
  const auto rest = start.missing() > 0 ? headRange(start.missing(), 1) : std::nullopt;
  if (!rest) return std::nullopt;
  return PlacedRequest{place_, requestFor(*rest)};
}

void HttpSource::endHead() {
  const std::lock_guard<std::mutex> lock(mutex_);
  isHeadOpen_ = false;
}

bool HttpSource::readAt(uint64_t offset, void* out, size_t size) const {
  if (size > version_.size || offset > version_.size - size) return false;
  auto* bytes = static_cast<char*>(out);
  while (size > 0) {
    PiecePtr piece = find(offset, 1);
    if (!piece) piece = readOn(offset, size);
    if (!piece) return false;
    const uint64_t from = offset - piece->offset;
    const size_t part = std::min<uint64_t>(size, piece->bytes.size() - from);
    std::memcpy(bytes, piece->bytes.data() + from, part);
    bytes += part;
    offset += part;
    size -= part;
  }
  return true;
}

void HttpSource::checkVersion() {
  const std::shared_ptr<Operation> current = operation();
  if (!current) return;
  HttpRequest request;
  request.path = path_;
  request.headOnly = true;
  const HttpAnswer answer = runRequest(place_, request, *current);
  if (!answer.failure.empty() && !answer.isUnreachable) {
    fail(answer);
    return;
  }
  if (answer.failure.empty() && !version_.agreesWith(answer.version)) changed_ = true;
  const std::lock_guard<std::mutex> lock(mutex_);
  confirmed_ = Operation::Clock::now();
}

}  // namespace tarn::client
