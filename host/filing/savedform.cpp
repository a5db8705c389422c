#include "host/filing/savedform.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

namespace {

constexpr char kR2000[] = "AC1015";
constexpr char kR2004[] = "AC1018";
constexpr char kR2007[] = "AC1021";
constexpr char kR2010[] = "AC1024";
constexpr char kR2013[] = "AC1027";
constexpr char kR2018[] = "AC1032";
constexpr int kComment = 999;
constexpr int kFirstExtended = 1000;

struct VersionName {
  const char* code;
  const char* name;
};
constexpr VersionName kNames[] = {{"AC1009", "R12"}, {"AC1012", "R13"}, {"AC1014", "R14"},
                                  {kR2000, "R2000"}, {kR2004, "R2004"}, {kR2007, "R2007"},
                                  {kR2010, "R2010"}, {kR2013, "R2013"}, {kR2018, "R2018"}};

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

bool isSolid(std::string_view type) {
  return type == "3DSOLID" || type == "BODY" || type == "REGION" ||
         (type.size() > 7 && type.substr(type.size() - 7) == "SURFACE");
}

constexpr const char* kOtherPages[] = {"ANSI_936",  "ANSI_950",  "ANSI_932",  "ANSI_949",
                                       "ANSI_1250", "ANSI_1251", "ANSI_1253", "ANSI_1254"};

bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
}

class Versioner {
 public:
  Versioner(const TagDocument& document, std::string_view version)
      : document_(document), version_(version), from_(document), page_(targetPage()) {
    if (isBefore(kR2007)) to_ = TextEncoding::ofCodePage(page_);
  }

  VersionedDrawing make() {
    std::uint32_t object = 0;
    const auto count = document_.objectCount();
    VersionedDrawing made;
    made.bytes.reserve(document_.bytes().size() + 4096);
    made.bytes.append(document_.bytes(), 0, document_.startOf(0));
    const std::uint32_t first = count > 0 ? document_.tagsOf(0).begin : 0;
    for (std::uint32_t i = 0; i < first; ++i) keep(i, made);
    // Without solids it holds preview pictures and the like.
    const DrawingSection* store = isBefore(kR2013) ? document_.section("ACDSDATA") : nullptr;
    if (store != nullptr) ++made.leftOut;
    for (; object < count; ++object) {
      const bool isStored =
          store != nullptr && object >= store->firstObject && object <= store->endObject;
      if (!isStored) addObject(object, made);
    }
    const size_t end = document_.startOf(static_cast<std::uint32_t>(document_.tags().size()));
    made.bytes.append(document_.bytes(), end, std::string::npos);
    return made;
  }

 private:
  bool isBefore(std::string_view version) const { return version_ < version; }

  /// The drawing's own code page, or the first one that has all texts.
  std::string targetPage() const {
    const TagRange range = document_.headerVariable("$DWGCODEPAGE");
    const std::string own =
        range.begin < range.end ? std::string(document_.word(document_.tag(range.begin))) : "";
    if (!isBefore(kR2007)) return own;
    std::vector<std::string> pages = {own.empty() ? "ANSI_1252" : own};
    pages.insert(pages.end(), std::begin(kOtherPages), std::end(kOtherPages));
    for (const std::string& page : pages) {
      if (holdsAllTexts(TextEncoding::ofCodePage(page))) return page;
    }
    return pages.front();
  }

  bool holdsAllTexts(const TextEncoding& encoding) const {
    const std::vector<Tag>& tags = document_.tags();
    return std::all_of(tags.begin(), tags.end(), [&](const Tag& tag) {
      const std::string_view text = document_.text(tag);
      if (!isText(tag.code) || isPlain(text)) return true;
      const std::wstring wide = from_.decode(text);
      return encoding.decode(encoding.encode(wide)) == wide &&
             encoding.encode(wide).find("\\U+") == std::string::npos;
    });
  }

  void add(int code, std::string_view value, VersionedDrawing& made) const {
    std::string digits = std::to_string(code);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, ' ');
    for (const std::string_view part :
         {std::string_view(digits), document_.lineEnd(), value, document_.lineEnd()}) {
      made.bytes += part;
    }
  }

  void keep(std::uint32_t index, VersionedDrawing& made) const {
    const Tag& tag = document_.tag(index);
    const std::string_view text = document_.text(tag);
    // Among versions with code pages the page stays.
    if (isPlain(text) || !isText(tag.code) || from_.isUtf8() == to_.isUtf8()) {
      const size_t start = document_.startOf(index);
      made.bytes.append(document_.bytes(), start, document_.startOf(index + 1) - start);
    } else {
      add(tag.code, to_.encode(from_.decode(text)), made);
    }
  }

  void addObject(std::uint32_t object, VersionedDrawing& made) {
    const TagRange range = document_.tagsOf(object);
    const std::string_view type = document_.typeOf(object);
    if (type == "SECTION") return addSection(range, made);
    if (type == "CLASS") return addClass(range, made);
    std::string_view mark;
    bool inEmbedded = false;
    int seen70 = 0;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = document_.tag(i);
      if (tag.code == 100) mark = document_.word(tag);
      // An object inside the object, up to the extended data.
      if (tag.code == 101) inEmbedded = isBefore(kR2018);
      if (tag.code > kFirstExtended) inEmbedded = false;
      const bool isSecond70 = tag.code == 70 && mark == "AcDbDimStyleTableRecord" && ++seen70 > 1;
      const bool isNew = inEmbedded || (isSecond70 && isBefore(kR2007)) ||
                         (tag.code < kComment && isNewCode(type, mark, tag.code));
      if (isNew) {
        ++made.leftOut;
      } else {
        keep(i, made);
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

  void addSection(TagRange range, VersionedDrawing& made) const {
    std::string_view variable;
    const bool pageIsMissing =
        isBefore(kR2007) && document_.headerVariable("$DWGCODEPAGE").begin == 0;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = document_.tag(i);
      if (tag.code == 9) variable = document_.word(tag);
      const auto known = variableVersions().find(variable);
      // The number of a version's revision has another code in R2018.
      const bool leaves = (known != variableVersions().end() && isBefore(known->second)) ||
                          variable == "$ACADMAINTVER";
      if (leaves && tag.code != kComment) continue;
      if (variable == "$ACADVER" && tag.code == 1) {
        add(1, version_, made);
        if (!pageIsMissing) continue;
        add(9, "$DWGCODEPAGE", made);
        add(3, page_, made);
      } else if (variable == "$DWGCODEPAGE" && tag.code == 3 && document_.word(tag) != page_) {
        add(3, page_, made);
      } else {
        keep(i, made);
      }
    }
  }

  /// Since R2004 a class says how many objects it has.
  void addClass(TagRange range, VersionedDrawing& made) const {
    bool hasCount = false;
    std::string_view type;
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = document_.tag(i);
      if (tag.code == 1) type = document_.word(tag);
      hasCount = hasCount || tag.code == 91;
    }
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& tag = document_.tag(i);
      if (tag.code == 91 && isBefore(kR2004)) continue;
      keep(i, made);
      if (tag.code != 90 || hasCount || isBefore(kR2004)) continue;
      size_t objects = 0;
      for (std::uint32_t each = 0; each < document_.objectCount(); ++each) {
        objects += document_.typeOf(each) == type ? 1 : 0;
      }
      add(91, std::to_string(objects), made);
    }
  }

  const TagDocument& document_;
  std::string_view version_;
  TextEncoding from_;
  std::string page_;
  TextEncoding to_;
};

/// Why it cannot be done; empty when it can.
std::string reasonAgainst(const TagDocument& document, std::string_view version) {
  if (document.isOld()) return "A drawing of R12 has to become one of R2000 first.";
  const bool wasNew = document.version() >= kR2013;
  if (wasNew == (version >= kR2013)) return {};
  for (std::uint32_t i = 0; i < document.objectCount(); ++i) {
    const std::string_view type = document.typeOf(i);
    if (isSolid(type)) {
      return std::string("Solids of ") + nameOfVersion(document.version()) +
             " cannot be written as those of " + nameOfVersion(version) + ".";
    }
  }
  return {};
}

}  // namespace

const std::vector<std::string>& savedVersions() {
  static const std::vector<std::string> all = {kR2000, kR2004, kR2007, kR2010, kR2013, kR2018};
  return all;
}

std::string nameOfVersion(std::string_view code) {
  for (const VersionName& one : kNames) {
    if (code == one.code) return one.name;
  }
  return code < "AC1012" ? "R12" : std::string(code);
}

Result<VersionedDrawing> asVersion(std::string bytes, std::string_view version) {
  auto parsed = TagDocument::parse(std::move(bytes), "the drawing");
  if (!parsed) return parsed.status();
  const TagDocument& document = parsed.value();
  const std::string reason = reasonAgainst(document, version);
  if (!reason.empty()) return Status::error(reason);
  return Versioner(document, version).make();
}

}  // namespace tarn::host
