// The bytes of one file on a server, fetched by ranges and kept for a while.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/result.h"
#include "components/raster/remotebytes.h"
#include "imageclient/http.h"
#include "imageclient/rangecache.h"

namespace tarn::client {

/// What is wanted of a file, put together to few requests: sorted by offset, those that lie close
/// together merged.
std::vector<raster::ByteRange> mergeRanges(std::vector<raster::ByteRange> ranges);

/// One state of a file: as soon as the server has another, nothing can be read any more.
class HttpSource final : public raster::RemoteBytes {
 public:
  /// Fetches the start of the file, which says what it is. The reason of a failure is a sentence
  /// that names it; `refusal` then tells more.
  static Result<std::shared_ptr<HttpSource>> open(const ServerPlace& place, const std::string& path,
                                                  const std::shared_ptr<Operation>& operation,
                                                  HttpAnswer& refusal);
  /// The same with the answer to headRequest().
  static Result<std::shared_ptr<HttpSource>> open(const ServerPlace& place, const std::string& path,
                                                  const std::shared_ptr<Operation>& operation,
                                                  HttpAnswer head, HttpAnswer& refusal);
  static HttpRequest headRequest(const std::string& path);

  const std::string& name() const override { return name_; }
  uint64_t size() const override { return version_.size; }
  bool readAt(uint64_t offset, void* out, size_t size) const override;
  bool fetch(const std::vector<raster::ByteRange>& ranges,
             std::shared_ptr<const void>& held) const override;

  /// The requests that fetch() of these ranges would make.
  std::vector<PlacedRequest> requestsFor(const std::vector<raster::ByteRange>& ranges) const;
  /// Their answers, which reads find from now on, failures included, until forgetAhead().
  void takeAhead(const std::vector<PlacedRequest>& requests, std::vector<HttpAnswer> answers);
  void forgetAhead();
  /// Forgets what has been fetched but for the directories: it turned out to be wrong.
  void forgetPixels();

  /// What the directories need besides what has been read, as far as that can be told; its answer
  /// goes to takeAhead().
  std::optional<PlacedRequest> restOfHead() const;
  /// The file's directories are known: what is read by itself from now on is not one of them.
  void endHead();
  /// Reads are part of this operation from now on.
  void setOperation(std::shared_ptr<Operation> operation);
  /// Asks the server whether the file is still the same; hasChanged() then tells. A server that
  /// cannot be reached is believed to have it still.
  void checkVersion();
  bool hasChanged() const { return changed_; }
  /// When the server last said that the file is as it was.
  Operation::Clock::time_point confirmed() const;
  /// Why the last read failed; its failure is empty when none has.
  HttpAnswer failure() const;
  /// Forgets the last failure.
  void clearFailure();

 private:
  HttpSource(const ServerPlace& place, const std::string& path);
  Status load(HttpAnswer head);
  std::vector<raster::ByteRange> missingOf(const std::vector<raster::ByteRange>& ranges,
                                           std::vector<PiecePtr>& pieces) const;
  HttpRequest requestFor(const raster::ByteRange& range) const;
  bool hasFailedAhead(const std::vector<raster::ByteRange>& ranges) const;
  bool request(const std::vector<raster::ByteRange>& ranges, std::vector<PiecePtr>& pieces) const;
  bool accept(const HttpAnswer& answer, const raster::ByteRange& range) const;
  PiecePtr find(uint64_t offset, uint64_t size) const;
  void keep(const PiecePtr& piece) const;
  void fail(const HttpAnswer& answer) const;
  std::string condition() const;
  /// What is read on for some bytes of the directories; none when they lie too far from the start.
  std::optional<raster::ByteRange> headRange(uint64_t offset, uint64_t size) const;
  PiecePtr readOn(uint64_t offset, uint64_t size) const;
  /// What the directories lie in stays as long as this.
  void holdHead(const PiecePtr& piece) const;
  std::shared_ptr<Operation> operation() const;

  ServerPlace place_;
  std::string path_;
  std::string name_;
  FileVersion version_;
  mutable std::atomic<bool> changed_{false};
  mutable std::mutex mutex_;
  mutable std::multimap<uint64_t, std::weak_ptr<const Piece>> pieces_;
  /// The directories, which are read again with every handle of a decoder, stay as long as this.
  mutable std::vector<PiecePtr> head_;
  mutable uint64_t headEnd_ = 0;
  bool isHeadOpen_ = true;
  /// What came ahead: pieces that stay, and the ranges that failed.
  std::vector<PiecePtr> ahead_;
  std::vector<std::pair<raster::ByteRange, HttpAnswer>> failedAhead_;
  mutable HttpAnswer failure_;
  mutable Operation::Clock::time_point confirmed_;
  std::shared_ptr<Operation> operation_;
};

}  // namespace tarn::client
