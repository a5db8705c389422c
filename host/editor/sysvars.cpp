#include "host/editor/sysvars.h"

#include <algorithm>

#include "base/path.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/regenerator.h"

namespace tarn::host {

namespace {

using Reader = VariableValue (*)(HostApp&);
using Writer = bool (*)(HostApp&, const VariableValue&);

/// One variable. Without a reader the value is kept by SystemVariables, starting with `initial`.
struct Rule {
  const char* name;
  VariableType type;
  bool readOnly;
  Reader read;
  VariableValue initial;
  Writer write = nullptr;
  double minimum = -1e300;
  double maximum = 1e300;
};

HostDocument& document(HostApp& app) {
  return app.documents().current();
}

std::string drawingFolder(HostApp& app) {
  const std::string folder = folderOf(document(app).path());
  return folder.empty() ? folder : folder + "/";
}

Point3 extentsCorner(HostApp& app, bool maximum) {
  const GroundBox box = app.regenerator().extents(document(app));
  // An empty drawing has its extents the wrong way round, as everywhere in this trade.
  if (box.isEmpty()) return maximum ? Point3{-1e20, -1e20, -1e20} : Point3{1e20, 1e20, 1e20};
  return maximum ? Point3{box.maxX, box.maxY, 0} : Point3{box.minX, box.minY, 0};
}

bool writeTileMode(HostApp& app, const VariableValue& value) {
  const Space& space = document(app).space();
  const bool tiled = std::get<short>(value) == 1;
  return tiled == space.isTiled() || app.showTab(tiled ? "Model" : space.sheet().name).isOk();
}

bool writeTab(HostApp& app, const VariableValue& value) {
  return app.showTab(std::get<std::string>(value)).isOk();
}

bool writeViewport(HostApp& app, const VariableValue& value) {
  return document(app).space().setCurrentPort(std::get<short>(value));
}

template <bool kUpper>
VariableValue readLimits(HostApp& app) {
  const GroundBox box = document(app).space().limits();
  return kUpper ? Point3{box.maxX, box.maxY, 0} : Point3{box.minX, box.minY, 0};
}

template <bool kUpper>
bool writeLimits(HostApp& app, const VariableValue& value) {
  HostDocument& drawing = document(app);
  if (drawing.space().currentPort() == kPaperViewport) return false;
  const Point3& point = std::get<Point3>(value);
  AcDbDatabase& database = *drawing.database();
  return (kUpper ? database.setLimmax({point.x, point.y})
                 : database.setLimmin({point.x, point.y})) == Acad::eOk;
}

bool writeLayer(HostApp& app, const VariableValue& value) {
  return document(app).setCurrentLayer(std::get<std::string>(value));
}

bool writeLineWeightDisplay(HostApp& app, const VariableValue& value) {
  document(app).database()->setLineWeightDisplay(std::get<short>(value) == 1);
  app.frontEnd().displayChanged();
  return true;
}

/// What is drawn otherwise from then on, by all entities.
template <typename Value, auto Setter>
bool writeLook(HostApp& app, const VariableValue& value) {
  HostDocument& drawing = document(app);
  if ((drawing.database()->*Setter)(std::get<Value>(value)) != Acad::eOk) return false;
  app.regenerator().regenerate(drawing);
  app.frontEnd().displayChanged();
  return true;
}

template <typename Value, auto Getter>
VariableValue readLook(HostApp& app) {
  return static_cast<Value>((document(app).database()->*Getter)());
}

bool writeLocale(HostApp& app, const VariableValue& value) {
  return app.profile().setLocale(std::get<std::string>(value));
}

const std::vector<Rule>& rules() {
  using T = VariableType;
  static const std::vector<Rule> table = {
      {"ACADPREFIX", T::kString, true,
       [](HostApp& a) -> VariableValue { return a.profile().configurationFolder() + "/"; },
       std::string()},
      {"ACADVER", T::kString, true, nullptr, std::string("23.1s (LMS Tech)")},
      {"BACKZ", T::kReal, true, nullptr, 0.0},
      {"CIRCLERAD", T::kReal, false, nullptr, 0.0},
      {"CLAYER", T::kString, false,
       [](HostApp& a) -> VariableValue { return document(a).currentLayer(); }, std::string(),
       writeLayer},
      {"CMDACTIVE", T::kShort, true,
       [](HostApp& a) -> VariableValue { return static_cast<short>(a.commandActive() ? 1 : 0); },
       short{0}},
      {"CMDDIA", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
      {"CMDECHO", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
      {"CMDNAMES", T::kString, true, [](HostApp& a) -> VariableValue { return a.commandNames(); },
       std::string()},
      {"CTAB", T::kString, false,
       [](HostApp& a) -> VariableValue { return document(a).space().tab().name; }, std::string(),
       writeTab},
      {"CVPORT", T::kShort, false,
       [](HostApp& a) -> VariableValue { return document(a).space().currentPort(); }, short{2},
       writeViewport, 1, 32767},
      {"DWGNAME", T::kString, true,
       [](HostApp& a) -> VariableValue { return nameOf(document(a).path()); }, std::string()},
      {"DWGPREFIX", T::kString, true, [](HostApp& a) -> VariableValue { return drawingFolder(a); },
       std::string()},
      {"APERTURE", T::kShort, false, nullptr, short{10}, nullptr, 1, 50},
      {"EXPERT", T::kShort, false, nullptr, short{0}, nullptr, 0, 5},
      {"EXTMAX", T::kPoint3, true,
       [](HostApp& a) -> VariableValue { return extentsCorner(a, true); }, Point3{}},
      {"EXTMIN", T::kPoint3, true,
       [](HostApp& a) -> VariableValue { return extentsCorner(a, false); }, Point3{}},
      {"FILEDIA", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
      {"FRONTZ", T::kReal, true, nullptr, 0.0},
      {"IMAGEFRAME", T::kShort, false, &readLook<short, &AcDbDatabase::imageFrame>, short{1},
       &writeLook<short, &AcDbDatabase::setImageFrame>, 0, 2},
      {"LASTPOINT", T::kPoint3, false, nullptr, Point3{}},
      {"LENSLENGTH", T::kReal, true, nullptr, 50.0},
      {"LIMMAX", T::kPoint2, false, &readLimits<true>, Point3{}, &writeLimits<true>},
      {"LIMMIN", T::kPoint2, false, &readLimits<false>, Point3{}, &writeLimits<false>},
      {"LOCALE", T::kString, false,
       [](HostApp& a) -> VariableValue { return a.profile().locale(); }, std::string(),
       writeLocale},
      {"LTSCALE", T::kReal, false, &readLook<double, &AcDbDatabase::ltscale>, 1.0,
       &writeLook<double, &AcDbDatabase::setLtscale>},
      {"LWDISPLAY", T::kShort, false,
       [](HostApp& a) -> VariableValue {
         return static_cast<short>(document(a).database()->lineWeightDisplay() ? 1 : 0);
       },
       short{0}, writeLineWeightDisplay, 0, 1},
      {"ORTHOMODE", T::kShort, false, nullptr, short{0}, nullptr, 0, 1},
      {"OSMODE", T::kShort, false, nullptr, short{0}, nullptr, 0, 32767},
      {"PDMODE", T::kShort, false, &readLook<short, &AcDbDatabase::pdmode>, short{0},
       &writeLook<short, &AcDbDatabase::setPdmode>, 0, 100},
      {"PDSIZE", T::kReal, false, &readLook<double, &AcDbDatabase::pdsize>, 0.0,
       &writeLook<double, &AcDbDatabase::setPdsize>},
      {"PICKBOX", T::kShort, false, nullptr, short{5}, nullptr, 0, 50},
      {"PICKFIRST", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
      {"REGENMODE", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
      {"SAVETIME", T::kShort, false, nullptr, short{5}, nullptr, 0, 600},
      {"SCREENSIZE", T::kPoint2, true,
       [](HostApp& a) -> VariableValue {
         const ViewState view = a.view();
         return Point3{view.pixelWidth * 1.0, view.pixelHeight * 1.0, 0};
       },
       Point3{}},
      {"TARGET", T::kPoint3, true, nullptr, Point3{}},
      {"TEXTSIZE", T::kReal, false, nullptr, 2.5},
      {"TILEMODE", T::kShort, false,
       [](HostApp& a) -> VariableValue {
         return static_cast<short>(document(a).space().isTiled() ? 1 : 0);
       },
       short{1}, writeTileMode, 0, 1},
      {"USERI1", T::kShort, false, nullptr, short{0}},
      {"USERR1", T::kReal, false, nullptr, 0.0},
      {"USERR2", T::kReal, false, nullptr, 0.0},
      {"USERR3", T::kReal, false, nullptr, 0.0},
      {"USERR4", T::kReal, false, nullptr, 0.0},
      {"USERR5", T::kReal, false, nullptr, 0.0},
      {"USERS1", T::kString, false, nullptr, std::string()},
      {"VIEWCTR", T::kPoint3, true,
       [](HostApp& a) -> VariableValue {
         const ViewState view = a.view();
         return Point3{view.centerX, view.centerY, 0};
       },
       Point3{}},
      {"VIEWDIR", T::kPoint3, true, nullptr, Point3{0, 0, 1}},
      {"VIEWMODE", T::kShort, true, nullptr, short{0}},
      {"VIEWSIZE", T::kReal, true, [](HostApp& a) -> VariableValue { return a.view().height; },
       0.0},
      {"VIEWTWIST", T::kReal, true, [](HostApp& a) -> VariableValue { return a.view().twist; },
       0.0},
      {"WIPEOUTFRAME", T::kShort, false, &readLook<short, &AcDbDatabase::wipeoutFrame>, short{1},
       &writeLook<short, &AcDbDatabase::setWipeoutFrame>, 0, 2},
      {"WORLDVIEW", T::kShort, false, nullptr, short{1}, nullptr, 0, 1},
  };
  return table;
}

const Rule* ruleOf(const std::string& name) {
  for (const Rule& rule : rules()) {
    if (equalsIgnoreCase(std::string_view(rule.name), name)) return &rule;
  }
  return nullptr;
}

/// The value with exactly the rule's type; nothing when it cannot be taken so.
std::optional<VariableValue> typed(const Rule& rule, const VariableValue& value) {
  switch (rule.type) {
    case VariableType::kShort:
      if (std::holds_alternative<short>(value)) return value;
      return std::nullopt;
    case VariableType::kReal:
      if (const short* number = std::get_if<short>(&value)) {
        return std::optional<VariableValue>(std::in_place, static_cast<double>(*number));
      }
      if (std::holds_alternative<double>(value)) return value;
      return std::nullopt;
    case VariableType::kString:
      if (std::holds_alternative<std::string>(value)) return value;
      return std::nullopt;
    default:
      if (std::holds_alternative<Point3>(value)) return value;
      return std::nullopt;
  }
}

bool inRange(const Rule& rule, const VariableValue& value) {
  const short* number = std::get_if<short>(&value);
  return number == nullptr || (*number >= rule.minimum && *number <= rule.maximum);
}

}  // namespace

SystemVariables::SystemVariables(HostApp& app) : app_(app) {
  for (const Rule& rule : rules()) {
    if (rule.read == nullptr) stored_[rule.name] = rule.initial;
  }
}

std::optional<VariableValue> SystemVariables::get(const std::string& name) const {
  const Rule* rule = ruleOf(name);
  if (rule == nullptr) return std::nullopt;
  if (rule->read != nullptr) return rule->read(app_);
  return stored_.at(rule->name);
}

std::optional<VariableType> SystemVariables::typeOf(const std::string& name) const {
  const Rule* rule = ruleOf(name);
  if (rule == nullptr) return std::nullopt;
  return rule->type;
}

bool SystemVariables::isReadOnly(const std::string& name) const {
  const Rule* rule = ruleOf(name);
  return rule != nullptr && rule->readOnly;
}

VariableError SystemVariables::set(const std::string& name, const VariableValue& value) {
  const Rule* rule = ruleOf(name);
  if (rule == nullptr) return VariableError::kUnknown;
  if (rule->readOnly) return VariableError::kReadOnly;
  const auto wanted = typed(*rule, value);
  if (!wanted) return VariableError::kWrongType;
  if (!inRange(*rule, *wanted)) return VariableError::kOutOfRange;
  if (rule->write != nullptr) {
    return rule->write(app_, *wanted) ? VariableError::kNone : VariableError::kOutOfRange;
  }
  stored_[rule->name] = *wanted;
  return VariableError::kNone;
}

std::optional<VariableValue> SystemVariables::parse(const std::string& name,
                                                    const std::string& text) const {
  const Rule* rule = ruleOf(name);
  if (rule == nullptr) return std::nullopt;
  if (rule->type == VariableType::kString) return std::optional<VariableValue>(std::in_place, text);
  if (rule->type == VariableType::kShort) {
    int number = 0;
    if (!parseInt(text, number) || number < -32768 || number > 32767) return std::nullopt;
    return std::optional<VariableValue>(std::in_place, static_cast<short>(number));
  }
  if (rule->type == VariableType::kReal) {
    const auto number = parseNumber(text);
    if (!number) return std::nullopt;
    return std::optional<VariableValue>(std::in_place, *number);
  }
  const auto point = parsePoint(text, {});
  if (!point) return std::nullopt;
  return std::optional<VariableValue>(std::in_place, *point);
}

std::vector<std::string> SystemVariables::names() const {
  std::vector<std::string> out;
  for (const Rule& rule : rules()) out.emplace_back(rule.name);
  std::sort(out.begin(), out.end());
  return out;
}

short SystemVariables::shortOf(const std::string& name) const {
  const auto value = get(name);
  const short* number = value ? std::get_if<short>(&*value) : nullptr;
  return number != nullptr ? *number : short{0};
}

std::string formatValue(const VariableValue& value) {
  if (const short* number = std::get_if<short>(&value)) return std::to_string(*number);
  if (const double* number = std::get_if<double>(&value)) return formatDouble(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return "\"" + *text + "\"";
  const Point3& p = std::get<Point3>(value);
  return formatDouble(p.x) + "," + formatDouble(p.y) + "," + formatDouble(p.z);
}

}  // namespace tarn::host
