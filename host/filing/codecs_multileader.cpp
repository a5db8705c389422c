// Leaders with several lines. Their data stand in blocks inside one another.
#include <map>

#include "dbmleader.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

using Values = AcDbMLeaderValues;
using Scalars = std::map<int, double*>;

/// Which block a tag stands in.
enum class Part { kBefore, kContent, kLeader, kLine, kBehind };

constexpr int kPointFirst = 10;
constexpr int kPointLast = 39;
constexpr int kPlaneFirst = 110;
constexpr int kPlaneLast = 139;
constexpr int kMatrix = 47;
constexpr int kColumnHeight = 144;
constexpr int kExtended = 1000;

/// Goes through the tags and says for each number where among the values it belongs. What is read
/// grows the lists; what is written finds them as long as they were read.
class Walk {
 public:
  explicit Walk(Values& values) : values_(values) {}

  Part part() const { return part_; }
  /// Null for a tag that is no number of a place or a length. To be called for every tag.
  double* next(int code, std::string_view word) {
    if (enter(code, word)) return nullptr;
    if (code >= kPointFirst && code <= kPointLast) {
      return axis(pointOf(kPointFirst + code % 10, code < 20), code / 10 - 1);
    }
    if (part_ == Part::kContent && code >= kPlaneFirst && code <= kPlaneLast) {
      return axis(planeOf(code % 10), (code - kPlaneFirst) / 10);
    }
    if (part_ == Part::kContent && code == kMatrix) return at(values_.block.matrix, matrix_++);
    if (part_ == Part::kContent && code == kColumnHeight) {
      return at(values_.text.columnHeights, heights_++);
    }
    const Scalars scalars = scalarsOf();
    const auto found = scalars.find(code);
    return found != scalars.end() ? found->second : nullptr;
  }
  Values::Leader& leader() { return values_.leaders[leader_]; }

 private:
  /// True for a tag that begins or ends a block.
  bool enter(int code, std::string_view word) {
    if (part_ == Part::kBefore && code == 300 && word == "CONTEXT_DATA{") {
      part_ = Part::kContent;
    } else if (part_ == Part::kContent && code == 302 && word == "LEADER{") {
      part_ = Part::kLeader;
      leader_ = leaders_++;
      if (leader_ >= values_.leaders.size()) values_.leaders.emplace_back();
      lines_ = breaks_ = 0;
    } else if (part_ == Part::kLeader && code == 304 && word == "LEADER_LINE{") {
      part_ = Part::kLine;
      line_ = lines_++;
      if (line_ >= leader().lines.size()) leader().lines.emplace_back();
      vertices_ = lineBreaks_ = 0;
    } else if (part_ == Part::kLine && code == 305) {
      part_ = Part::kLeader;
    } else if (part_ == Part::kLeader && code == 303) {
      part_ = Part::kContent;
    } else if (part_ == Part::kContent && code == 301) {
      part_ = Part::kBehind;
    } else {
      return false;
    }
    return true;
  }

  struct Axes {
    double* x = nullptr;
    double* y = nullptr;
    double* z = nullptr;
  };
  template <class Triple>
  static Axes axesOf(Triple& triple) {
    return {&triple.x, &triple.y, &triple.z};
  }
  static double* axis(const Axes& axes, int which) {
    return which == 0 ? axes.x : which == 1 ? axes.y : axes.z;
  }
  template <class T>
  static T* at(std::vector<T>& list, size_t place) {
    if (place >= list.size()) list.resize(place + 1);
    return &list[place];
  }
  /// One of several points of a code: x begins the next, y and z belong to the last.
  static Axes listed(std::vector<AcGePoint3d>& list, size_t& count, bool isX) {
    if (isX) ++count;
    return count == 0 ? Axes() : axesOf(*at(list, count - 1));
  }

  Axes pointOf(int code, bool isX) {
    switch (part_) {
      case Part::kContent:
        if (code == 10) return axesOf(values_.base);
        if (code == 11) return axesOf(values_.text.normal);
        if (code == 12) return axesOf(values_.text.location);
        if (code == 13) return axesOf(values_.text.direction);
        if (code == 14) return axesOf(values_.block.normal);
        if (code == 15) return axesOf(values_.block.position);
        if (code == 16) return axesOf(values_.block.scale);
        return {};
      case Part::kLeader:
        if (code == 10) return axesOf(leader().last);
        if (code == 11) return axesOf(leader().dogleg);
        if (code == 12 || code == 13) return listed(leader().breaks, breaks_, isX);
        return {};
      case Part::kLine: {
        Values::Line& line = leader().lines[line_];
        if (code == 10) return listed(line.vertices, vertices_, isX);
        if (code == 11 || code == 12) return listed(line.breaks, lineBreaks_, isX);
        return {};
      }
      case Part::kBehind:
        return code == 10 ? axesOf(values_.blockScale) : Axes();
      default:
        return {};
    }
  }
  Axes planeOf(int which) {
    if (which == 0) return axesOf(values_.planeOrigin);
    if (which == 1) return axesOf(values_.planeX);
    return which == 2 ? axesOf(values_.planeY) : Axes();
  }

  Scalars scalarsOf() {
    Values& v = values_;
    if (part_ == Part::kContent) {
      return {{40, &v.scale},
              {41, &v.textHeight},
              {42, &v.text.rotation},
              {43, &v.text.width},
              {44, &v.text.definedHeight},
              {45, &v.text.spacing},
              {46, &v.block.rotation},
              {140, &v.arrowSize},
              {142, &v.text.columnWidth},
              {143, &v.text.columnGutter},
              {145, &v.gap}};
    }
    if (part_ == Part::kLeader) return {{40, &leader().doglegLength}};
    if (part_ == Part::kBehind) {
      return {
          {41, &v.usualDogleg}, {42, &v.usualArrow}, {43, &v.blockRotation}, {45, &v.usualScale}};
    }
    return {};
  }

  Values& values_;
  Part part_ = Part::kBefore;
  size_t leaders_ = 0;
  size_t leader_ = 0;
  size_t lines_ = 0;
  size_t line_ = 0;
  size_t breaks_ = 0;
  size_t vertices_ = 0;
  size_t lineBreaks_ = 0;
  size_t matrix_ = 0;
  size_t heights_ = 0;
};

AcDbObjectId recordOf(const DrawingBinding& binding, std::string_view handle) {
  return binding.find(parseHandle(handle));
}

void readContent(const EntityTags& tags, const Tag& tag, Values& values) {
  const TagView& head = tags.head;
  const auto isSet = [&] { return head.integerOf(tag) != 0; };
  const std::string_view word = head.document().word(tag);
  if (tag.code == 290) values.hasText = isSet();
  if (tag.code == 296) values.hasBlock = isSet();
  if (tag.code == 304) values.text.contents = head.textOf(tag);
  if (tag.code == 340) values.text.style = recordOf(tags.binding, word);
  if (tag.code == 341) values.block.id = recordOf(tags.binding, word);
  if (tag.code == 90) values.text.color = head.integerOf(tag, Values::kByBlock);
  if (tag.code == 93) values.block.color = head.integerOf(tag, Values::kByBlock);
  if (tag.code == 171) values.text.alignment = static_cast<short>(head.integerOf(tag, 1));
}

void readBehind(const EntityTags& tags, const Tag& tag, Values& values) {
  const TagView& head = tags.head;
  if (tag.code == 170) values.kind = static_cast<short>(head.integerOf(tag, 1));
  if (tag.code == 91) values.lineColor = head.integerOf(tag, Values::kByBlock);
  if (tag.code == 291) values.hasDogleg = head.integerOf(tag) != 0;
  if (tag.code == 342) values.arrow = recordOf(tags.binding, head.document().word(tag));
}

/// One that has no content stays in the file as it is.
AcDbEntity* readMultiLeader(const EntityTags& tags) {
  Values values;
  Walk walk(values);
  tags.head.behind("AcDbMLeader").forEach([&](const Tag& tag) {
    if (tag.code >= kExtended) return;
    const std::string_view word = tags.head.document().word(tag);
    if (double* number = walk.next(tag.code, word)) *number = tags.head.realOf(tag);
    if (walk.part() == Part::kContent) readContent(tags, tag, values);
    if (walk.part() == Part::kBehind) readBehind(tags, tag, values);
    if (walk.part() == Part::kLeader && tag.code == 290) {
      walk.leader().hasLast = tags.head.integerOf(tag) != 0;
    }
    if (walk.part() == Part::kLeader && tag.code == 291) {
      walk.leader().hasDogleg = tags.head.integerOf(tag) != 0;
    }
  });
  if (walk.part() != Part::kBehind) return nullptr;
  const short alignment = values.text.alignment;
  if (alignment < 1 || alignment > 3) values.text.alignment = 1;
  if (AcDbBlockTableRecord::cast(peek(values.arrow)) == nullptr) values.arrow = AcDbObjectId();
  auto* leader = new AcDbMLeader;
  leader->setValues(std::move(values));
  return leader;
}

/// Only numbers change; each stands where it stood.
void writeMultiLeader(const AcDbEntity& entity, EntityOutput& output) {
  Values values = static_cast<const AcDbMLeader&>(entity).values();
  Walk walk(values);
  const TagView own = output.old->head.behind("AcDbMLeader");
  size_t place = output.head.placeBehindMark();
  own.forEach([&](const Tag& tag) {
    const size_t here = place++;
    if (tag.code >= kExtended) return;
    const double* number = walk.next(tag.code, own.document().word(tag));
    if (number != nullptr && *number != own.realOf(tag)) {
      output.head.replaceAt(here, formatReal(*number));
    }
  });
}

}  // namespace

const std::vector<EntityCodec>& multiLeaderCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"MULTILEADER", "AcDbMLeader", &AcDbMLeader::desc, readMultiLeader, writeMultiLeader, false,
       false},
      {"MLEADER", "AcDbMLeader", &AcDbMLeader::desc, readMultiLeader, writeMultiLeader, false,
       false},
  };
  return codecs;
}

}  // namespace tarn::host
