#include "host/editor/entityvalues.h"

#include <cmath>
#include <functional>
#include <optional>

#include "acutmem.h"
#include "base/text.h"
#include "dbcurve.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/editor/layeredits.h"

namespace tarn::host {

namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr const char* kByLayer = "ByLayer";
constexpr const char* kByBlock = "ByBlock";

std::string taken(ACHAR* text) {
  const std::string copy = toUtf8(text);
  acutDelString(text);
  return copy;
}

std::string colorText(const AcCmColor& color) {
  if (color.isByColor()) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", color.red(), color.green(), color.blue());
    return text;
  }
  if (color.colorIndex() == 256) return kByLayer;
  return color.colorIndex() == 0 ? kByBlock : std::to_string(color.colorIndex());
}

std::optional<AcCmColor> colorFrom(const std::string& text) {
  AcCmColor color;
  int index = 0;
  if (equalsIgnoreCase(std::string_view(text), kByLayer)) {
    index = 256;
  } else if (!equalsIgnoreCase(std::string_view(text), kByBlock)) {
    unsigned rgb = 0;
    char after = 0;
    if (text.size() == 7 && std::sscanf(text.c_str(), "#%6x%c", &rgb, &after) == 1) {
      color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8),
                   static_cast<Adesk::UInt8>(rgb));
      return color;
    }
    if (!parseInt(text, index) || index < 1 || index > 255) return std::nullopt;
  }
  color.setColorIndex(static_cast<Adesk::UInt16>(index));
  return color;
}

/// A value of one class: how it is read, and how a number sets it; null for one that is only shown.
template <class T>
struct Number {
  const char* name;
  double (*read)(const T&);
  bool (*write)(T&, double);
};

template <class T>
using Numbers = std::vector<Number<T>>;

bool done(Acad::ErrorStatus status) {
  return status == Acad::eOk;
}

AcGePoint3d withX(AcGePoint3d p, double v) {
  return {v, p.y, p.z};
}
AcGePoint3d withY(AcGePoint3d p, double v) {
  return {p.x, v, p.z};
}

const Numbers<AcDbLine>& numbersOf(const AcDbLine&) {
  using E = AcDbLine;
  static const Numbers<E> all = {
      {"Start X", [](const E& e) { return e.startPoint().x; },
       [](E& e, double v) { return done(e.setStartPoint(withX(e.startPoint(), v))); }},
      {"Start Y", [](const E& e) { return e.startPoint().y; },
       [](E& e, double v) { return done(e.setStartPoint(withY(e.startPoint(), v))); }},
      {"End X", [](const E& e) { return e.endPoint().x; },
       [](E& e, double v) { return done(e.setEndPoint(withX(e.endPoint(), v))); }},
      {"End Y", [](const E& e) { return e.endPoint().y; },
       [](E& e, double v) { return done(e.setEndPoint(withY(e.endPoint(), v))); }},
      {"Length", [](const E& e) { return e.startPoint().distanceTo(e.endPoint()); }, nullptr},
      {"Angle",
       [](const E& e) {
         const AcGePoint3d a = e.startPoint();
         const AcGePoint3d b = e.endPoint();
         const double degrees = std::atan2(b.y - a.y, b.x - a.x) / kDegree;
         return degrees < 0 ? degrees + 360 : degrees;
       },
       nullptr}};
  return all;
}

const Numbers<AcDbCircle>& numbersOf(const AcDbCircle&) {
  using E = AcDbCircle;
  static const Numbers<E> all = {
      {"Center X", [](const E& e) { return e.center().x; },
       [](E& e, double v) { return done(e.setCenter(withX(e.center(), v))); }},
      {"Center Y", [](const E& e) { return e.center().y; },
       [](E& e, double v) { return done(e.setCenter(withY(e.center(), v))); }},
      {"Radius", [](const E& e) { return e.radius(); },
       [](E& e, double v) { return v > 0 && done(e.setRadius(v)); }}};
  return all;
}

const Numbers<AcDbPoint>& numbersOf(const AcDbPoint&) {
  using E = AcDbPoint;
  static const Numbers<E> all = {
      {"X", [](const E& e) { return e.position().x; },
       [](E& e, double v) { return done(e.setPosition(withX(e.position(), v))); }},
      {"Y", [](const E& e) { return e.position().y; },
       [](E& e, double v) { return done(e.setPosition(withY(e.position(), v))); }}};
  return all;
}

bool setTextHeight(AcDbText& text, double height) {
  AcDbTextLine line = text.line();
  line.height = height;
  return height > 0 && done(text.setLine(line));
}

const Numbers<AcDbText>& numbersOf(const AcDbText&) {
  static const Numbers<AcDbText> all = {
      {"Height", [](const AcDbText& e) { return e.line().height; }, &setTextHeight}};
  return all;
}

const Numbers<AcDbMText>& numbersOf(const AcDbMText&) {
  using E = AcDbMText;
  static const Numbers<E> all = {
      {"Height", [](const E& e) { return e.textHeight(); },
       [](E& e, double v) { return v > 0 && done(e.setTextHeight(v)); }}};
  return all;
}

const Numbers<AcDbPolyline>& numbersOf(const AcDbPolyline&) {
  using E = AcDbPolyline;
  static const Numbers<E> all = {
      {"Vertices", [](const E& e) { return 1.0 * e.numVerts(); }, nullptr},
      {"Elevation", [](const E& e) { return e.elevation(); }, nullptr}};
  return all;
}

/// Calls `use` with the entity as its own class.
template <class Use>
void asItself(AcDbEntity& entity, Use use) {
  if (auto* line = AcDbLine::cast(&entity)) return use(*line);
  if (auto* circle = AcDbCircle::cast(&entity)) return use(*circle);
  if (auto* point = AcDbPoint::cast(&entity)) return use(*point);
  if (auto* text = AcDbText::cast(&entity)) return use(*text);
  if (auto* paragraph = AcDbMText::cast(&entity)) return use(*paragraph);
  if (auto* polyline = AcDbPolyline::cast(&entity)) return use(*polyline);
}

std::vector<EntityValue> valuesOf(AcDbEntity& entity) {
  const ACHAR* kind = entity.isA()->dxfName();
  std::vector<EntityValue> all = {
      {"Kind", toUtf8(kind != nullptr ? kind : entity.isA()->name())},
      {"Layer", taken(entity.layer()), ValueKind::kLayer},
      {"Colour", colorText(entity.color()), ValueKind::kColor},
      {"Line type", entity.linetypeId().isNull() ? kByLayer : taken(entity.linetype()),
       ValueKind::kLinetype},
      {"Line type scale", formatDouble(entity.linetypeScale()), ValueKind::kNumber}};
  if (const auto* text = AcDbText::cast(&entity)) {
    all.push_back({"Text", toUtf8(text->textString()), ValueKind::kText});
  }
  asItself(entity, [&](auto& own) {
    for (const auto& number : numbersOf(own)) {
      all.push_back({number.name, formatDouble(number.read(own)),
                     number.write != nullptr ? ValueKind::kNumber : ValueKind::kShown});
    }
  });
  return all;
}

bool setNumber(AcDbEntity& entity, const std::string& name, double value) {
  if (name == "Line type scale") return done(entity.setLinetypeScale(value));
  bool set = false;
  asItself(entity, [&](auto& own) {
    for (const auto& number : numbersOf(own)) {
      if (number.name == name && number.write != nullptr) set = number.write(own, value);
    }
  });
  return set;
}

using Change = std::function<bool(AcDbEntity&)>;

/// How the value is set; else the sentence that says what it may be.
Result<Change> changeFor(const std::string& name, const std::string& value) {
  if (name == "Layer") {
    return Change([value](AcDbEntity& e) { return done(e.setLayer(toWide(value).c_str())); });
  }
  if (name == "Colour") {
    const auto color = colorFrom(value);
    if (!color) {
      return Status::error("\"" + value +
                           "\" is no colour: ByLayer, ByBlock, 1 to 255 or #rrggbb are.");
    }
    return Change([color](AcDbEntity& e) { return done(e.setColor(*color)); });
  }
  if (name == "Line type") {
    if (equalsIgnoreCase(std::string_view(value), kByLayer)) {
      return Change([](AcDbEntity& e) { return done(e.setLinetype(AcDbObjectId())); });
    }
    return Change([value](AcDbEntity& e) { return done(e.setLinetype(toWide(value).c_str())); });
  }
  if (name == "Text") {
    return Change([value](AcDbEntity& e) {
      auto* text = AcDbText::cast(&e);
      return text != nullptr && !value.empty() && done(text->setTextString(toWide(value).c_str()));
    });
  }
  const auto number = parseNumber(value);
  if (!number) return Status::error(name + " needs a number, not \"" + value + "\".");
  return Change([name, number](AcDbEntity& e) { return setNumber(e, name, *number); });
}

}  // namespace

std::vector<EntityValue> valuesOf(const EntityIds& ids) {
  std::vector<EntityValue> common;
  bool first = true;
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    const std::vector<EntityValue> own = valuesOf(*entity.object());
    if (std::exchange(first, false)) {
      common = own;
      continue;
    }
    std::vector<EntityValue> both;
    for (EntityValue& value : common) {
      for (const EntityValue& other : own) {
        if (std::string_view(value.name) != other.name) continue;
        if (value.differs || value.value != other.value) {
          value.differs = true;
          value.value.clear();
        }
        both.push_back(value);
      }
    }
    common = std::move(both);
  }
  return common;
}

Status changeValue(HostApp& app, const EntityIds& ids, const std::string& name,
                   const std::string& value) {
  const Result<Change> change = changeFor(name, value);
  if (!change) return Status::error(change.message());
  changeEntities(app, ids, "changed", change.value());
  app.documents().endUndoStep("PROPERTIES");
  return {};
}

std::vector<std::string> choicesFor(HostApp& app, ValueKind kind) {
  std::vector<std::string> names;
  AcDbDatabase& drawing = *app.documents().current().database();
  if (kind == ValueKind::kLayer) {
    for (const LayerEntry& layer : layersOf(drawing)) names.push_back(layer.name);
  } else if (kind == ValueKind::kColor) {
    names = {kByLayer, kByBlock, "1", "2", "3", "4", "5", "6", "7", "8", "9"};
  } else if (kind == ValueKind::kLinetype) {
    names = {kByLayer};
    const AcDbObjectPointer<AcDbLinetypeTable> table(drawing.linetypeTableId(), AcDb::kForRead);
    if (table.openStatus() != Acad::eOk) return names;
    for (const AcDbObjectId& id : table->recordIds()) {
      const AcDbObjectPointer<AcDbLinetypeTableRecord> record(id, AcDb::kForRead);
      const ACHAR* name = nullptr;
      if (record.openStatus() != Acad::eOk || record->getName(name) != Acad::eOk) continue;
      if (!equalsIgnoreCase(std::wstring_view(name), L"ByLayer")) names.push_back(toUtf8(name));
    }
  }
  return names;
}

}  // namespace tarn::host
