// Which of the sheets a drawing file has in front.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "host/filing/drawingedits.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/encoding.h"
#include "host/filing/tageditor.h"
#include "host/filing/tagview.h"

namespace tarn::host {

namespace {

constexpr const wchar_t* kFront = L"*Paper_Space";

bool isSame(const std::wstring& a, const std::wstring& b) {
  return equalsIgnoreCase(std::wstring_view(a), std::wstring_view(b));
}

/// Tells of the entities of the model's section which stand on the sheet in front. Parts go with
/// their entity, whether they say so or not.
class PaperWatch {
 public:
  bool isOnPaper(const TagView& entity) {
    const std::string_view type = entity.type();
    const bool isPart = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
    if (!isPart) onPaper_ = entity.integer(67) == 1;
    return onPaper_;
  }

 private:
  bool onPaper_ = false;
};

/// Where the blocks of the two sheets and their entities stand, object after object.
enum class Place { kElsewhere, kRecord, kHead, kInside, kEnd, kOnPaper, kEndOfEntities };

/// A sheet's block in the file; its definition may be missing.
struct SheetBlock {
  std::wstring name;
  bool isDefined = false;
};

class SheetReader {
 public:
  SheetReader(const TextEncoding& encoding, std::uint64_t block, SheetBlock& wanted,
              SheetBlock& front)
      : encoding_(encoding), block_(block), wanted_(wanted), front_(front) {}

  /// `isWanted` tells of which of the two it is.
  Place pass(const TagDocument& part, std::uint32_t object, bool& isWanted) {
    sections_.pass(part, object);
    const TagView tags(part, encoding_, object);
    const std::string& section = sections_.section();
    if (section == "TABLES" && tags.type() == "BLOCK_RECORD") {
      return passRecord(tags, part.handleOf(object), isWanted);
    }
    if (section == "BLOCKS") return passBlocks(tags, isWanted);
    if (section != "ENTITIES" || tags.type() == "SECTION") return Place::kElsewhere;
    if (tags.type() == "ENDSEC") return Place::kEndOfEntities;
    return paper_.isOnPaper(tags) ? Place::kOnPaper : Place::kElsewhere;
  }

 private:
  Place passRecord(const TagView& tags, std::uint64_t handle, bool& isWanted) {
    const std::wstring name = tags.behind("AcDbBlockTableRecord").text(2);
    isWanted = handle == block_;
    if (!isWanted && !isSame(name, kFront)) return Place::kElsewhere;
    (isWanted ? wanted_ : front_).name = name;
    return Place::kRecord;
  }

  Place passBlocks(const TagView& tags, bool& isWanted) {
    if (tags.type() == "BLOCK") {
      const std::wstring name = tags.text(2);
      insideWanted_ = !wanted_.name.empty() && isSame(name, wanted_.name);
      inside_ = insideWanted_ || (!front_.name.empty() && isSame(name, front_.name));
      isWanted = insideWanted_;
      return inside_ ? Place::kHead : Place::kElsewhere;
    }
    if (!inside_) return Place::kElsewhere;
    isWanted = insideWanted_;
    if (tags.type() != "ENDBLK") return Place::kInside;
    inside_ = false;
    (isWanted ? wanted_ : front_).isDefined = true;
    return Place::kEnd;
  }

  const TextEncoding& encoding_;
  std::uint64_t block_;
  SheetBlock& wanted_;
  SheetBlock& front_;
  SectionWatch sections_;
  PaperWatch paper_;
  bool inside_ = false;
  bool insideWanted_ = false;
};

/// Changes the names of the two blocks and the places of their entities. The entities that change
/// their places are gathered first.
class FrontSheet {
 public:
  FrontSheet(DrawingPieces pieces, const Ground& ground, std::uint64_t block)
      : pieces_(std::move(pieces)), ground_(ground), block_(block) {}

  Status give(const PieceTaker& take) {
    if (Status status = gather(); !status) return status;
    if (!wanted_.isDefined || isSame(wanted_.name, kFront) || !hasEntities_) return pieces_(take);
    isPutIn_ = false;
    SheetBlock wanted;
    SheetBlock front;
    SheetReader reader(ground_.encoding, block_, wanted, front);
    return forEachPart(pieces_, ground_, [&](const TagDocument& part) {
      DrawingEdits edits;
      for (std::uint32_t i = 0; i < part.objectCount(); ++i) edit(part, i, reader, edits);
      return edits.give(part, take);
    });
  }

 private:
  Status gather() {
    wanted_ = {};
    front_ = {};
    ofWanted_.clear();
    onPaper_.clear();
    SheetReader reader(ground_.encoding, block_, wanted_, front_);
    return forEachPart(pieces_, ground_, [&](const TagDocument& part) {
      for (std::uint32_t i = 0; i < part.objectCount(); ++i) {
        bool isWanted = false;
        const Place place = reader.pass(part, i, isWanted);
        if (place == Place::kInside && isWanted) ofWanted_ += asPaperEntity(part, i);
        if (place == Place::kOnPaper) onPaper_ += bytesOf(part, i);
        hasEntities_ = hasEntities_ || place == Place::kEndOfEntities;
      }
      return Status();
    });
  }

  void edit(const TagDocument& part, std::uint32_t object, SheetReader& reader,
            DrawingEdits& edits) {
    bool isWanted = false;
    const Place place = reader.pass(part, object, isWanted);
    const bool isKnown = isWanted || front_.isDefined;
    const std::wstring name = isWanted ? std::wstring(kFront) : wanted_.name;
    if (place == Place::kRecord && isKnown) {
      TagEditor record(part, ground_.encoding, part.tagsOf(object));
      record.enter("AcDbBlockTableRecord");
      record.setText(2, name);
      edits.replace(object, 1, record.bytes());
    } else if (place == Place::kHead && isKnown) {
      TagEditor head(part, ground_.encoding, part.tagsOf(object));
      head.enter("AcDbBlockBegin");
      head.setText(2, name);
      head.setText(3, name);
      edits.replace(object, 1, head.bytes());
    } else if (place == Place::kInside && isWanted) {
      edits.replace(object, 1, {});
    } else if (place == Place::kEnd && !isWanted) {
      edits.insertBefore(object, onPaper_);
    } else if (place == Place::kOnPaper && front_.isDefined) {
      edits.replace(object, 1, {});
    } else if (place == Place::kEndOfEntities && !std::exchange(isPutIn_, true)) {
      edits.insertBefore(object, ofWanted_);
    }
  }

  static std::string bytesOf(const TagDocument& part, std::uint32_t object) {
    const TagRange tags = part.tagsOf(object);
    const size_t begin = part.startOf(tags.begin);
    return part.bytes().substr(begin, part.startOf(tags.end) - begin);
  }

  /// Among those of the model entities must say where they belong.
  std::string asPaperEntity(const TagDocument& part, std::uint32_t object) const {
    TagEditor entity(part, ground_.encoding, part.tagsOf(object));
    entity.enter("AcDbEntity");
    entity.setInteger(67, 1);
    return entity.bytes();
  }

  DrawingPieces pieces_;
  Ground ground_;
  std::uint64_t block_;
  SheetBlock wanted_;
  SheetBlock front_;
  bool hasEntities_ = false;
  bool isPutIn_ = false;
  std::string ofWanted_;
  std::string onPaper_;
};

}  // namespace

std::vector<std::uint32_t> frontSheetObjects(const TagDocument& document,
                                             const TextEncoding& encoding) {
  std::vector<std::uint32_t> found;
  PaperWatch paper;
  for (const DrawingSection& entities : document.sectionsNamed("ENTITIES")) {
    for (std::uint32_t i = entities.firstObject + 1; i < entities.endObject; ++i) {
      if (paper.isOnPaper(TagView(document, encoding, i))) found.push_back(i);
    }
  }
  return found;
}

DrawingPieces withFrontSheet(DrawingPieces pieces, const Ground& ground, std::uint64_t block) {
  if (ground.document.isOld()) return pieces;
  const auto sheet = std::make_shared<FrontSheet>(std::move(pieces), ground, block);
  return [sheet](const PieceTaker& take) { return sheet->give(take); };
}

}  // namespace tarn::host
