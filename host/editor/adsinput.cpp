// Input of the function interface.
#include <algorithm>
#include <cmath>
#include <functional>

#include "acedads.h"
#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/editor/objectsnap.h"
#include "host/editor/pointinput.h"
#include "host/editor/sysvars.h"
#include "host/editor/textbuffer.h"

using tarn::host::GroundPoint;
using tarn::host::HostApp;
using tarn::host::InputKind;
using tarn::host::Point3;

namespace {

constexpr size_t kTextCapacity = 513;
constexpr double kPi = 3.141592653589793;

/// What acedInitGet asked for, used up by the next input.
struct InputRules {
  int bits = 0;
  std::vector<std::string> keywords;
};

InputRules& pendingRules() {
  static InputRules rules;
  return rules;
}

/// The last keyword or free text, for acedGetInput.
std::string& lastKeyword() {
  static std::string keyword;
  return keyword;
}

std::string promptText(const ACHAR* prompt, const char* standard) {
  return prompt != nullptr ? tarn::toUtf8(prompt) : standard;
}

/// Asks until the text is a keyword, is taken by `accept`, or the input is Enter or cancelled.
/// `accept` returns "" or the sentence that says what is wrong.
int askValue(const std::string& prompt, InputKind kind,
             const std::function<std::string(const std::string&, int bits)>& accept) {
  const InputRules rules = std::exchange(pendingRules(), {});
  HostApp* app = HostApp::instance();
  if (app == nullptr) return RTERROR;
  for (;;) {
    const auto text = app->commands().ask(prompt, kind);
    if (!text) return RTCAN;
    if (text->empty()) {
      if ((rules.bits & RSG_NONULL) == 0) return RTNONE;
      continue;
    }
    if (const auto keyword = tarn::host::matchKeyword(*text, rules.keywords)) {
      lastKeyword() = *keyword;
      return RTKWORD;
    }
    const std::string fault = accept(*text, rules.bits);
    if (app->commands().inputCancelled()) return RTCAN;
    if (fault.empty()) return RTNORM;
    if ((rules.bits & RSG_OTHER) != 0) {
      lastKeyword() = *text;
      return RTKWORD;
    }
    app->print("\n" + fault + "\n");
  }
}

template <typename T>
std::string rangeFault(T value, int bits) {
  if ((bits & RSG_NOZERO) != 0 && value == 0) return "Value must not be zero.";
  if ((bits & RSG_NONEG) != 0 && value < 0) return "Value must not be negative.";
  return {};
}

int askNumber(const std::string& prompt, double& value) {
  return askValue(prompt, InputKind::kToken, [&](const std::string& text, int bits) {
    const auto number = tarn::host::parseNumber(text);
    if (!number) return std::string("Requires a number or an option keyword.");
    value = *number;
    return rangeFault(value, bits);
  });
}

Point3 lastPoint() {
  const auto value = HostApp::instance()->variables().get("LASTPOINT");
  return std::get<Point3>(*value);
}

/// The point of an entity that snap words and a further point mean; else what is wrong.
std::string snapTo(int bits, ads_point value) {
  HostApp& app = *HostApp::instance();
  app.documents().current().selection().namedSnaps = bits;
  const auto text = app.commands().ask("of ", InputKind::kPoint);
  app.documents().current().selection().namedSnaps = 0;
  const auto near = text ? tarn::host::parsePoint(*text, lastPoint()) : std::nullopt;
  if (!near) return "A point on the entity is needed.";
  const auto snap = tarn::host::findSnap(app, bits, {near->x, near->y}, false);
  if (!snap) return "No such point of an entity there.";
  std::copy_n(asDblArray(snap->point), 3, value);
  return {};
}

int askPoint(const std::string& prompt, ads_point value, InputKind kind = InputKind::kPoint) {
  const int result = askValue(prompt, kind, [&](const std::string& text, int) -> std::string {
    if (const auto bits = tarn::host::snapBits(text)) return snapTo(*bits, value);
    const auto point = tarn::host::parsePoint(text, lastPoint());
    if (!point) return "Point or option keyword required.";
    value[0] = point->x;
    value[1] = point->y;
    value[2] = point->z;
    return {};
  });
  if (result == RTNORM) {
    HostApp::instance()->variables().set("LASTPOINT", Point3{value[0], value[1], value[2]});
  }
  return result;
}

/// Shows where the point that is asked for begins, while it lives.
class Rubber {
 public:
  Rubber(const ads_real* base, bool isCorner) {
    if (HostApp* app = base != nullptr ? HostApp::instance() : nullptr) {
      auto& memory = app->documents().current().selection();
      (isCorner ? memory.windowCorner : memory.rubberBase) = GroundPoint{base[0], base[1]};
    }
  }
  ~Rubber() {
    HostApp* app = HostApp::instance();
    if (app == nullptr) return;
    auto& memory = app->documents().current().selection();
    memory.windowCorner.reset();
    memory.rubberBase.reset();
    app->frontEnd().displayChanged();
  }
  Rubber(const Rubber&) = delete;
  Rubber& operator=(const Rubber&) = delete;
};

}  // namespace

int tarn::host::askPickedPoint(const std::string& prompt, ads_point value, const ads_real* corner) {
  const Rubber rubber(corner, true);
  return askPoint(prompt, value, InputKind::kSelect);
}

int acedInitGet(int bits, const ACHAR* keywords) {
  pendingRules() = {bits, keywords != nullptr ? tarn::host::keywordList(tarn::toUtf8(keywords))
                                              : std::vector<std::string>()};
  return RTNORM;
}

int acedGetInt(const ACHAR* prompt, int* value) {
  if (value == nullptr) return RTERROR;
  return askValue(promptText(prompt, "Integer: "), InputKind::kToken,
                  [&](const std::string& text, int bits) {
                    int number = 0;
                    if (!tarn::parseInt(text, number)) {
                      return std::string("Requires an integer value or an option keyword.");
                    }
                    *value = number;
                    return rangeFault(number, bits);
                  });
}

int acedGetReal(const ACHAR* prompt, ads_real* value) {
  if (value == nullptr) return RTERROR;
  return askNumber(promptText(prompt, "Number: "), *value);
}

int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* value) {
  if (value == nullptr) return RTERROR;
  const std::string text = promptText(prompt, "Distance: ");
  bool needsSecond = false;
  Point3 first;
  const int result = askValue(text, InputKind::kPoint, [&](const std::string& typed, int bits) {
    const auto number = tarn::host::parseNumber(typed);
    if (number) {
      *value = *number;
      return rangeFault(*value, bits);
    }
    const auto point = tarn::host::parsePoint(typed, lastPoint());
    if (!point) return std::string("Requires a distance or two points.");
    first = *point;
    needsSecond = true;
    return std::string();
  });
  if (result != RTNORM || !needsSecond) return result;
  ads_point second = {0, 0, 0};
  if (base != nullptr) {
    *value = std::hypot(first.x - base[0], first.y - base[1]);
    return RTNORM;
  }
  const int answer = askPoint("Second point: ", second);
  if (answer != RTNORM) return answer;
  *value = std::hypot(second[0] - first.x, second[1] - first.y);
  return RTNORM;
}

int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* value) {
  if (value == nullptr) return RTERROR;
  return askValue(promptText(prompt, "Angle: "), InputKind::kPoint,
                  [&](const std::string& typed, int bits) {
                    if (const auto degrees = tarn::host::parseNumber(typed)) {
                      *value = *degrees * kPi / 180;
                      return rangeFault(*value, bits);
                    }
                    const auto point = tarn::host::parsePoint(typed, lastPoint());
                    if (!point || base == nullptr) return std::string("Requires an angle.");
                    *value = std::atan2(point->y - base[1], point->x - base[0]);
                    if (*value < 0) *value += 2 * kPi;
                    return std::string();
                  });
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* value) {
  return acedGetString(cronly, prompt, value, kTextCapacity);
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* value, size_t capacity) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || value == nullptr || capacity == 0) return RTERROR;
  pendingRules() = {};
  const auto text = app->commands().ask(promptText(prompt, ""),
                                        cronly != 0 ? InputKind::kText : InputKind::kToken);
  value[0] = 0;
  if (!text) return RTCAN;
  return tarn::host::copyText(tarn::toWide(*text), value, capacity) ? RTNORM : RTINPUTTRUNCATED;
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point value) {
  if (value == nullptr) return RTERROR;
  const Rubber rubber(base, false);
  return askPoint(promptText(prompt, "Point: "), value);
}

int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point value) {
  if (value == nullptr) return RTERROR;
  const Rubber rubber(base, true);
  return askPoint(promptText(prompt, "Opposite corner: "), value);
}

int acedGetKword(const ACHAR* prompt, ACHAR* value) {
  return acedGetKword(prompt, value, kTextCapacity);
}

int acedGetKword(const ACHAR* prompt, ACHAR* value, size_t capacity) {
  if (value == nullptr || capacity == 0) return RTERROR;
  value[0] = 0;
  const int result =
      askValue(promptText(prompt, ""), InputKind::kToken,
               [](const std::string&, int) { return std::string("Invalid option keyword."); });
  if (result != RTKWORD) return result;
  return tarn::host::copyText(tarn::toWide(lastKeyword()), value, capacity) ? RTNORM
                                                                            : RTINPUTTRUNCATED;
}

int acedGetInput(ACHAR* value) {
  if (value == nullptr) return RTERROR;
  tarn::host::copyText(tarn::toWide(lastKeyword()), value, kTextCapacity);
  return RTNORM;
}
