#include "components/convert/jpegrows.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "base/parallel.h"
#include "components/raster/jpegtile.h"
#include "components/raster/pyramidfile.h"

namespace tarn::convert {
namespace {

using raster::kPyramidTile;

// The second byte of a marker; the first is 0xFF.
enum Marker : uint8_t {
  kFrame = 0xC0,
  kFirstRestart = 0xD0,
  kLastRestart = 0xD7,
  kStart = 0xD8,
  kEnd = 0xD9,
  kScan = 0xDA,
  kInterval = 0xDD,
  kFirstApp = 0xE0,
  kLastApp = 0xEF,
  kComment = 0xFE,
};
constexpr uint8_t kMark = 0xFF;
constexpr int kRestarts = 8;

/// A segment before the pixels: its marker, and where it begins (at its 0xFF) and ends.
struct Segment {
  uint8_t marker = 0;
  size_t begin = 0;
  size_t end = 0;
};

/// The segments of a stream up to its first scan, that one included; empty when it is none.
std::vector<Segment> segmentsOf(const std::vector<uint8_t>& stream) {
  std::vector<Segment> segments;
  if (stream.size() < 4 || stream[0] != kMark || stream[1] != kStart) return {};
  for (size_t at = 2; at + 4 <= stream.size() && stream[at] == kMark;) {
    const size_t length = static_cast<size_t>(stream[at + 2]) << 8 | stream[at + 3];
    if (length < 2 || length > stream.size() - at - 2) return {};
    segments.push_back({stream[at + 1], at, at + 2 + length});
    at += 2 + length;
    if (segments.back().marker == kScan) return segments;
  }
  return {};
}

void addBytes(std::vector<uint8_t>& to, const std::vector<uint8_t>& from, size_t begin,
              size_t end) {
  to.insert(to.end(), from.begin() + static_cast<std::ptrdiff_t>(begin),
            from.begin() + static_cast<std::ptrdiff_t>(end));
}

uint8_t restart(int number) {
  return static_cast<uint8_t>(kFirstRestart + number % kRestarts);
}

/// Follows the markers among the compressed pixels.
class MarkerWalk {
 public:
  /// False when a marker stands where it does not belong.
  bool pass(const uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count;) {
      if (!afterMark_) {
        const void* found = std::memchr(bytes + i, kMark, count - i);
        if (!found) return true;
        i = static_cast<size_t>(static_cast<const uint8_t*>(found) - bytes) + 1;
        afterMark_ = true;
        continue;
      }
      const uint8_t code = bytes[i++];
      afterMark_ = false;
      if (code == 0) continue;  // 0xFF itself
      if (ended_ || (code != kEnd && code != restart(restarts_))) return false;
      code == kEnd ? ended_ = true : ++restarts_ > 0;
    }
    return true;
  }
  bool ended() const { return ended_; }
  int restarts() const { return restarts_; }

 private:
  bool afterMark_ = false;
  bool ended_ = false;
  int restarts_ = 0;
};

}  // namespace

std::vector<uint8_t> describingSegments(const std::vector<uint8_t>& stream) {
  std::vector<uint8_t> kept;
  for (const Segment& segment : segmentsOf(stream)) {
    const bool app = segment.marker >= kFirstApp && segment.marker <= kLastApp;
    if (app || segment.marker == kComment) addBytes(kept, stream, segment.begin, segment.end);
  }
  return kept;
}

Status JpegRowWriter::create(const std::string& path, JpegForm form) {
  path_ = path;
  form_ = std::move(form);
  blockRows_ = form_.channels == 1 ? 8 : 16;
  return file_.create(path);
}

int JpegRowWriter::rowsIn(int tileRow) const {
  return std::min(kPyramidTile, form_.height - tileRow * kPyramidTile);
}

Status JpegRowWriter::writeTile(size_t, int column, int row, const uint8_t* pixels) {
  const int left = column * kPyramidTile, columns = std::min(kPyramidTile, form_.width - left);
  Gathered* gathered = nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    gathered = &gathered_[row];
    if (gathered->missing == 0) {
      gathered->missing = (form_.width - 1) / kPyramidTile + 1;
      if (!spare_.empty()) {
        gathered->pixels = std::move(spare_.back());
        spare_.pop_back();
      }
      gathered->pixels.resize(kPyramidTile * stride());
    }
  }
  const size_t tileStride = static_cast<size_t>(kPyramidTile) * form_.channels;
  uint8_t* to = gathered->pixels.data() + static_cast<size_t>(left) * form_.channels;
  for (int y = 0; y < rowsIn(row); ++y)
    std::memcpy(to + y * stride(), pixels + y * tileStride,
                static_cast<size_t>(columns) * form_.channels);
  std::vector<uint8_t> complete;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (--gathered->missing > 0) return Status::ok();
    complete = std::move(gathered->pixels);
    gathered_.erase(row);
  }
  Status written = writeRows(row * kPyramidTile, rowsIn(row), complete.data());
  const std::lock_guard<std::mutex> lock(mutex_);
  spare_.push_back(std::move(complete));
  return written;
}

Status JpegRowWriter::writeRows(int top, int rows, const uint8_t* pixels) {
  Segments encoded((static_cast<size_t>(rows) - 1) / blockRows_ + 1);
  std::atomic<bool> failed{false};
  parallelFor(encoded.size(), [&](size_t i) {
    const int from = static_cast<int>(i) * blockRows_;
    if (!raster::encodeJpegTile(pixels + from * stride(), form_.width,
                                std::min(blockRows_, rows - from), form_.channels, form_.quality,
                                encoded[i]))
      failed = true;
  });
  if (failed) return Status::error(path_ + ": cannot be written: there is no memory for it");
  return takeEncoded(top / kPyramidTile, std::move(encoded));
}

/// Writes what is complete from the top on.
Status JpegRowWriter::takeEncoded(int tileRow, Segments encoded) {
  const std::lock_guard<std::mutex> lock(mutex_);
  waiting_[tileRow] = std::move(encoded);
  const int perTile = kPyramidTile / blockRows_;
  while (!waiting_.empty() && waiting_.begin()->first * perTile == written_) {
    for (const std::vector<uint8_t>& stream : waiting_.begin()->second) {
      const std::vector<Segment> segments = segmentsOf(stream);
      if (segments.empty()) return Status::error(path_ + ": its rows cannot be joined");
      if (written_ == 0) {
        if (Status head = writeHead(stream); !head) return head;
      }
      std::vector<uint8_t> bytes;
      if (written_ > 0) bytes = {kMark, restart(written_ - 1)};
      addBytes(bytes, stream, segments.back().end, stream.size() - 2);
      if (Status appended = append(bytes); !appended) return appended;
      ++written_;
    }
    waiting_.erase(waiting_.begin());
  }
  return Status::ok();
}

/// All that comes before the pixels, from the stream of the first row of blocks.
Status JpegRowWriter::writeHead(const std::vector<uint8_t>& stream) {
  std::vector<uint8_t> head = {kMark, kStart};
  head.insert(head.end(), form_.description.begin(), form_.description.end());
  for (const Segment& segment : segmentsOf(stream)) {
    const size_t at = head.size();
    if (segment.marker == kScan) {
      const int blocks = (form_.width - 1) / blockRows_ + 1;
      head.insert(head.end(), {kMark, kInterval, 0, 4, static_cast<uint8_t>(blocks >> 8),
                               static_cast<uint8_t>(blocks)});
    }
    addBytes(head, stream, segment.begin, segment.end);
    if (segment.marker != kFrame) continue;
    // Behind the length and the bits of a sample.
    head[at + 5] = static_cast<uint8_t>(form_.height >> 8);
    head[at + 6] = static_cast<uint8_t>(form_.height);
  }
  headEnd_ = head.size();
  return append(head);
}

Status JpegRowWriter::append(const std::vector<uint8_t>& bytes) {
  Status written = file_.writeAt(end_, bytes.data(), bytes.size());
  end_ += bytes.size();
  return written;
}

Status JpegRowWriter::finish() {
  if (Status appended = append({kMark, kEnd}); !appended) return appended;
  return file_.finish();
}

Status JpegRowWriter::check() const {
  constexpr size_t kPiece = 1 << 20;
  Status damaged = Status::error(path_ + ": cannot be read back as it was written");
  RandomFile file;
  if (Status opened = file.open(path_); !opened) return opened;
  MarkerWalk walk;
  std::vector<uint8_t> piece(kPiece);
  for (uint64_t at = headEnd_; at < end_; at += kPiece) {
    const auto count = static_cast<size_t>(std::min<uint64_t>(kPiece, end_ - at));
    if (!file.readAt(at, piece.data(), count) || !walk.pass(piece.data(), count)) return damaged;
  }
  const int rows = (form_.height - 1) / blockRows_ + 1;
  const bool whole = walk.ended() && walk.restarts() + 1 == rows && written_ == rows &&
                     fileTimes(path_).size == end_;
  return whole ? Status::ok() : damaged;
}

}  // namespace tarn::convert
