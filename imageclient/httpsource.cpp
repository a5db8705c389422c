#include "imageclient/httpsource.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn::client {
namespace {

// What a small image's directories need; larger ones are read on in growing steps.
constexpr uint64_t kHead = 16 << 10;
constexpr uint64_t kLongestStep = 256 << 10;
// Less than a request costs.
constexpr uint64_t kGap = 1 << 10;
// Longer requests would keep connections idle that could share the work.
constexpr uint64_t kLongestRequest = 1 << 20;

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

Result<std::shared_ptr<HttpSource>> HttpSource::open(const ServerPlace& place,
                                                     const std::string& path,
                                                     const std::shared_ptr<Operation>& operation,
                                                     HttpAnswer& refusal) {
  std::shared_ptr<HttpSource> source(new HttpSource(place, path));
  source->operation_ = operation;
  if (Status loaded = source->load(); !loaded) {
    refusal = source->failure();
    return loaded;
  }
  return source;
}

Status HttpSource::load() {
  HttpRequest head;
  head.path = path_;
  head.count = kHead;
  head.mostBytes = kHead;
  HttpAnswer answer = runRequests(place_, {head}, *operation_).front();
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

bool HttpSource::request(const std::vector<raster::ByteRange>& ranges,
                         std::vector<PiecePtr>& pieces) const {
  const std::shared_ptr<Operation> current = operation();
  if (!current || changed_) return false;
  std::vector<HttpRequest> requests(ranges.size());
  for (size_t i = 0; i < ranges.size(); ++i) {
    requests[i].path = path_;
    requests[i].first = ranges[i].offset;
    requests[i].count = requests[i].mostBytes = ranges[i].size;
    requests[i].condition = condition();
  }
  std::vector<HttpAnswer> answers = runRequests(place_, requests, *current);
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

bool HttpSource::fetch(const std::vector<raster::ByteRange>& ranges,
                       std::shared_ptr<const void>& held) const {
  auto pieces = std::make_shared<std::vector<PiecePtr>>();
  std::vector<raster::ByteRange> missing;
  for (const raster::ByteRange& range : ranges) {
    if (range.size > version_.size || range.offset > version_.size - range.size) continue;
    if (PiecePtr piece = find(range.offset, range.size)) {
      RangeCache::shared().use(piece);
      pieces->push_back(std::move(piece));
    } else {
      missing.push_back(range);
    }
  }
  if (!missing.empty() && !request(mergeRanges(std::move(missing)), *pieces)) return false;
  held = std::move(pieces);
  return true;
}

PiecePtr HttpSource::readOn(uint64_t offset, uint64_t size) const {
  uint64_t step = size;
  bool isHead = false;
  {
    // The directories follow one another at the start of a well-made file.
    const std::lock_guard<std::mutex> lock(mutex_);
    isHead = offset <= headEnd_;
    if (isHead) step = std::max(size, std::min(headEnd_, kLongestStep));
  }
  step = std::min(step, version_.size - offset);
  std::vector<PiecePtr> fetched;
  if (!request({{offset, step}}, fetched)) return nullptr;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (isHead && offset <= headEnd_) {
    head_.push_back(fetched.front());
    headEnd_ = std::max(headEnd_, offset + step);
  }
  return fetched.front();
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
  const HttpAnswer answer = runRequests(place_, {request}, *current).front();
  if (!answer.failure.empty() && !answer.isUnreachable) {
    fail(answer);
    return;
  }
  if (answer.failure.empty() && !version_.agreesWith(answer.version)) changed_ = true;
  const std::lock_guard<std::mutex> lock(mutex_);
  confirmed_ = Operation::Clock::now();
}

}  // namespace tarn::client
