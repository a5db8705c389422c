#include "host/filing/versioner.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "host/filing/encoding.h"
#include "host/filing/savedform.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

namespace {

constexpr char kR2004[] = "AC1018";
constexpr char kR2007[] = "AC1021";
constexpr char kR2010[] = "AC1024";
constexpr char kR2013[] = "AC1027";
constexpr char kR2018[] = "AC1032";
constexpr int kComment = 999;
constexpr int kFirstExtended = 1000;

/// The version in which variables of the header came.
const std::map<std::string_view, std::string_view>& variableVersions() {
  static const std::map<std::string_view, std::string_view> all = [] {
    std::map<std::string_view, std::string_view> map;
    for (const char* name : {"$SORTENTS", "$INDEXCTL", "$HIDETEXT", "$XCLIPFRAME", "$HALOGAP",
                             "$OBSCOLOR", "$OBSLTYPE", "$INTERSECTIONDISPLAY", "$INTERSECTIONCOLOR",
                             "$DIMASSOC", "$PROJECTNAME", "$LASTSAVEDBY"}) {
      map[name] = kR2004;
    }
    for (const char* name : {"$CAMERADISPLAY",
                             "$LENSLENGTH",
                             "$CAMERAHEIGHT",
                             "$STEPSPERSEC",
                             "$STEPSIZE",
                             "$3DDWFPREC",
                             "$PSOLWIDTH",
                             "$PSOLHEIGHT",
                             "$LOFTANG1",
                             "$LOFTANG2",
                             "$LOFTMAG1",
                             "$LOFTMAG2",
                             "$LOFTPARAM",
                             "$LOFTNORMALS",
                             "$LATITUDE",
                             "$LONGITUDE",
                             "$NORTHDIRECTION",
                             "$TIMEZONE",
                             "$LIGHTGLYPHDISPLAY",
                             "$TILEMODELIGHTSYNCH",
                             "$CMATERIAL",
                             "$SOLIDHIST",
                             "$SHOWHIST",
                             "$DWFFRAME",
                             "$DGNFRAME",
                             "$REALWORLDSCALE",
                             "$INTERFERECOLOR",
                             "$INTERFEREOBJVS",
                             "$INTERFEREVPVS",
                             "$CSHADOW",
                             "$SHADOWPLANELOCATION",
                             "$DIMFXL",
                             "$DIMFXLON",
                             "$DIMJOGANG",
                             "$DIMTFILL",
                             "$DIMTFILLCLR",
                             "$DIMARCSYM",
                             "$DIMLTYPE",
                             "$DIMLTEX1",
                             "$DIMLTEX2"}) {
      map[name] = kR2007;
    }
    map["$DIMTXTDIRECTION"] = kR2010;
    map["$REQUIREDVERSIONS"] = kR2013;
    return map;
  }();
  return all;
}

/// Codes that came in a version, in objects of a type (null: any) behind a subclass mark.
struct NewCodes {
  const char* since;
  const char* type;
  const char* mark;
  std::vector<int> codes;
};

const std::vector<NewCodes>& newCodes() {
  static const std::vector<int> kShownBy = {61,  63,  141, 142, 282, 292, 332,
                                            333, 334, 335, 348, 361, 421, 431};
  static const std::vector<NewCodes> all = {
      {kR2004, nullptr, "AcDbEntity", {420, 430, 440}},
      {kR2007, nullptr, "AcDbEntity", {284, 347, 348}},
      {kR2004, "LAYER", "AcDbLayerTableRecord", {420, 430, 440}},
      {kR2007, "LAYER", "AcDbLayerTableRecord", {347, 348}},
      {kR2004, "MTEXT", "AcDbMText", {45, 63, 90, 420, 421, 430, 431, 441}},
      {kR2004, "HATCH", "AcDbHatch", {450, 451, 452, 453, 460, 461, 462, 463, 470}},
      {kR2007, "DIMSTYLE", "AcDbDimStyleTableRecord", {49, 50, 69, 90, 290, 345, 346, 347}},
      {kR2010, "DIMSTYLE", "AcDbDimStyleTableRecord", {295}},
      {kR2004, "VIEWPORT", "AcDbViewport", {170}},
      {kR2007, "VIEWPORT", "AcDbViewport", kShownBy},
      {kR2007, "VPORT", "AcDbViewportTableRecord", kShownBy},
      {kR2007, "VPORT", "AcDbViewportTableRecord", {60}},
      {kR2007, "BLOCK_RECORD", "AcDbBlockTableRecord", {70, 280, 281}},
      {kR2010, "LWPOLYLINE", "AcDbPolyline", {91}},
      {kR2007, "ATTRIB", "AcDbAttribute", {280}},
      {kR2007, "ATTDEF", "AcDbAttributeDefinition", {280}},
      {kR2010, "DIMENSION", "AcDbDimension", {280}},
      {kR2010, "IMAGE", "AcDbRasterImage", {290}},
      {kR2004, nullptr, "AcDbPlotSettings", {76, 77, 78}},
      {kR2007, nullptr, "AcDbPlotSettings", {333}},
  };
  return all;
}

bool isText(int code) {
  return (code >= 0 && code <= 9) || (code >= 300 && code <= 309) || (code >= 410 && code <= 419) ||
         (code >= 430 && code <= 439) || (code >= 470 && code <= 479) || code == kComment ||
         (code >= 1000 && code <= 1003);
}

/// Solids have one form before R2013 and another from then on.
bool isBody(std::string_view type) {
  return type == "3DSOLID" || type == "BODY" || type == "REGION" ||
         (type.size() > 7 && type.substr(type.size() - 7) == "SURFACE");
}

constexpr const char* kOtherPages[] = {"ANSI_936",  "ANSI_950",  "ANSI_932",  "ANSI_949",
                                       "ANSI_1250", "ANSI_1251", "ANSI_1253", "ANSI_1254"};

bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
}

/// Empty when a drawing with solids can be of both versions.
std::string reasonAgainstSolids(std::string_view own, std::string_view version) {
  if ((own >= kR2013) == (version >= kR2013)) return {};
  return std::string("Solids of ") + nameOfVersion(own) + " cannot be written as those of " +
         nameOfVersion(version) + ".";
}

/// What has to be known of the whole drawing before its first byte goes out in another version.
class Survey {
 public:
  /// Before R2007 `encodings` holds the pages that may be taken, the preferred one first.
  Survey(const TextEncoding& from, const std::vector<TextEncoding>& encodings)
      : from_(from), encodings_(encodings), misses_(encodings.size()) {}

  void pass(const TagDocument& part) {
    for (std::uint32_t i = 0; i < part.objectCount(); ++i) {
      const std::string_view type = part.typeOf(i);
      ++counts_[std::string(type)];
      hasSolids_ = hasSolids_ || isBody(type);
    }
    for (const Tag& tag : part.tags()) {
      const std::string_view text = part.text(tag);
      if (!encodings_.empty() && isText(tag.code) && !isPlain(text)) {
        passText(from_.decode(text), tag.code);
      }
    }
  }

  bool hasSolids() const { return hasSolids_; }
  size_t countOf(const std::string& type) const {
    const auto found = counts_.find(type);
    return found != counts_.end() ? found->second : 0;
  }
  /// The first page that holds all texts; when none does the one that lacks the fewest names and
  /// then the fewest texts: other programs take no names with `\U+XXXX`.
  size_t page() const {
    return static_cast<size_t>(std::min_element(misses_.begin(), misses_.end()) - misses_.begin());
  }

 private:
  void passText(const std::wstring& text, int code) {
    const bool isName = code == 2 || (code >= 6 && code <= 8);
    for (size_t i = 0; i < encodings_.size(); ++i) {
      const std::string bytes = encodings_[i].encode(text);
      const bool holds =
          encodings_[i].decode(bytes) == text && bytes.find("\\U+") == std::string::npos;
      if (!holds) ++(isName ? misses_[i].first : misses_[i].second);
    }
  }

  const TextEncoding& from_;
  const std::vector<TextEncoding>& encodings_;
  std::vector<std::pair<size_t, size_t>> misses_;  ///< names and other texts
  std::map<std::string, size_t> counts_;
  bool hasSolids_ = false;
};

/// Writes the parts of a drawing in another version.
class Versioner {
 public:
  Versioner(const Ground& ground, std::string_view version) : ground_(ground), version_(version) {
    const TagRange range = ground.document.headerVariable("$DWGCODEPAGE");
    hasPage_ = range.begin != 0;
    if (range.begin < range.end) page_ = ground.document.word(ground.document.tag(range.begin));
    if (!isBefore(kR2007)) return;
    pages_ = {page_.empty() ? "ANSI_1252" : page_};
    // Among versions with code pages the page stays.
    if (ground.encoding.isUtf8()) {
      pages_.insert(pages_.end(), std::begin(kOtherPages), std::end(kOtherPages));
    }
    for (const std::string& page : pages_) encodings_.push_back(TextEncoding::ofCodePage(page));
  }

  Result<size_t> give(const DrawingPieces& pieces, const PieceTaker& take) {
    Survey survey(ground_.encoding, encodings_);
    const std::string_view own = ground_.document.version();
    Status status = forEachPart(pieces, ground_, [&](const TagDocument& part) {
      survey.pass(part);
      return Status();
    });
    if (!status) return status;
    if (survey.hasSolids()) {
      if (const std::string reason = reasonAgainstSolids(own, version_); !reason.empty())
        return Status::error(reason);
    }
    if (!pages_.empty()) {
      page_ = pages_[survey.page()];
      to_ = encodings_[survey.page()];
    }
    survey_ = &survey;
    leftOut_ = 0;
    sections_ = {};
    status = forEachPart(pieces, ground_,
                         [&](const TagDocument& part) { return take(partInVersion(part)); });
    if (!status) return status;
    return leftOut_;
  }

 private:
  bool isBefore(std::string_view version) const { return version_ < version; }

  std::string partInVersion(const TagDocument& part) {
    std::string made;
    made.reserve(part.bytes().size() + 4096);
    made.append(part.bytes(), 0, part.startOf(0));
    const auto all = static_cast<std::uint32_t>(part.tags().size());
    const std::uint32_t first = part.objectCount() > 0 ? part.tagsOf(0).begin : all;
    for (std::uint32_t i = 0; i < first; ++i) keep(part, i, made);
    for (std::uint32_t i = 0; i < part.objectCount(); ++i) {
      sections_.pass(part, i);
      // Without solids it holds preview pictures and the like.
      const bool isStored = isBefore(kR2013) && sections_.section() == "ACDSDATA";
      if (isStored && part.typeOf(i) == "SECTION") ++leftOut_;
      if (!isStored) addObject(part, i, made);
    }
    made.append(part.bytes(), part.startOf(all), std::string::npos);
    return made;
  }

  void add(int code, std::string_view value, std::string& made) const {
    std::string digits = std::to_string(code);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, ' ');
    const std::string_view lineEnd = ground_.document.lineEnd();
    for (const std::string_view piece : {std::string_view(digits), lineEnd, value, lineEnd}) {
      made += piece;
    }
  }

  void keep(const TagDocument& part, std::uint32_t index, std::string& made) const {
    const Tag& tag = part.tag(index);
    const std::string_view text = part.text(tag);
    if (isPlain(text) || !isText(tag.code) || ground_.encoding.isUtf8() == to_.isUtf8()) {
      const size_t start = part.startOf(index);
      made.append(part.bytes(), start, part.startOf(index + 1) - start);
    } else {
      add(tag.code, to_.encode(ground_.encoding.decode(text)), made);
    }
  }

  void addObject(const TagDocument& part, std::uint32_t object, std::string& made) {
    const TagRange range = part.tagsOf(object);
    const std::string_view type = part.typeOf(object);
    if (type == "SECTION") return addSection(part, range, made);
    if (type == "CLASS") return addClass(part, range, made);
    std::string_view mark;
    bool inEmbedded = false;
    int seen70 = 0;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = part.tag(i);
      if (tag.code == 100) mark = part.word(tag);
      // An object inside the object, up to the extended data.
      if (tag.code == 101) inEmbedded = isBefore(kR2018);
      if (tag.code > kFirstExtended) inEmbedded = false;
      const bool isSecond70 = tag.code == 70 && mark == "AcDbDimStyleTableRecord" && ++seen70 > 1;
      const bool isNew = inEmbedded || (isSecond70 && isBefore(kR2007)) ||
                         (tag.code < kComment && isNewCode(type, mark, tag.code));
      if (isNew) {
        ++leftOut_;
      } else {
        keep(part, i, made);
      }
    }
  }

  bool isNewCode(std::string_view type, std::string_view mark, int code) const {
    for (const NewCodes& some : newCodes()) {
      if (!isBefore(some.since) || mark != some.mark) continue;
      if (some.type != nullptr && type != some.type) continue;
      if (std::find(some.codes.begin(), some.codes.end(), code) != some.codes.end()) return true;
    }
    return false;
  }

  void addSection(const TagDocument& part, TagRange range, std::string& made) const {
    std::string_view variable;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = part.tag(i);
      if (tag.code == 9) variable = part.word(tag);
      const auto known = variableVersions().find(variable);
      // The number of a version's revision has another code in R2018.
      const bool leaves = (known != variableVersions().end() && isBefore(known->second)) ||
                          variable == "$ACADMAINTVER";
      if (leaves && tag.code != kComment) continue;
      if (variable == "$ACADVER" && tag.code == 1) {
        add(1, version_, made);
        if (!isBefore(kR2007) || hasPage_) continue;
        add(9, "$DWGCODEPAGE", made);
        add(3, page_, made);
      } else if (variable == "$DWGCODEPAGE" && tag.code == 3 && part.word(tag) != page_) {
        add(3, page_, made);
      } else {
        keep(part, i, made);
      }
    }
  }

  /// Since R2004 a class says how many objects it has.
  void addClass(const TagDocument& part, TagRange range, std::string& made) const {
    bool hasCount = false;
    std::string_view type;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = part.tag(i);
      if (tag.code == 1) type = part.word(tag);
      hasCount = hasCount || tag.code == 91;
    }
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = part.tag(i);
      if (tag.code == 91 && isBefore(kR2004)) continue;
      keep(part, i, made);
      if (tag.code != 90 || hasCount || isBefore(kR2004)) continue;
      add(91, std::to_string(survey_->countOf(std::string(type))), made);
    }
  }

  const Ground& ground_;
  std::string_view version_;
  bool hasPage_ = false;
  std::string page_;
  std::vector<std::string> pages_;  ///< that may be taken; none for versions without
  std::vector<TextEncoding> encodings_;
  TextEncoding to_;
  const Survey* survey_ = nullptr;
  size_t leftOut_ = 0;
  SectionWatch sections_;
};

}  // namespace

Status canBeVersion(const TagDocument& document, std::string_view version) {
  if (document.isOld()) {
    return Status::error("A drawing of R12 has to become one of R2000 first.");
  }
  const std::string reason = reasonAgainstSolids(document.version(), version);
  for (std::uint32_t i = 0; i < document.objectCount() && !reason.empty(); ++i) {
    if (isBody(document.typeOf(i))) return Status::error(reason);
  }
  return {};
}

Result<size_t> giveAsVersion(const DrawingPieces& pieces, const Ground& ground,
                             std::string_view version, const PieceTaker& take) {
  return Versioner(ground, version).give(pieces, take);
}

}  // namespace tarn::host
