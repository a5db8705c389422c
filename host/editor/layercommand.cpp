// Layers as a command.
#include <algorithm>

#include "acedads.h"
#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/layeredits.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

AcDbDatabase& drawing() {
  return *app().documents().current().database();
}

void say(const std::string& text) {
  app().print("\n" + text + "\n");
}

/// Names typed in one line with commas between them; empty when none was given or it was cancelled.
std::vector<std::string> askNames(const ACHAR* prompt) {
  ACHAR typed[513] = {0};
  std::vector<std::string> names;
  if (acedGetString(1, prompt, typed) != RTNORM) return names;
  for (const std::string& piece : split(toUtf8(typed), ',')) {
    const std::string name(trim(std::string_view(piece)));
    if (!name.empty()) names.push_back(name);
  }
  return names;
}

AcDbObjectId layerNamed(const std::string& name) {
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing().layerTableId(), AcDb::kForRead);
  AcDbObjectId id;
  if (layers.openStatus() == Acad::eOk) layers->getAt(toWide(name).c_str(), id);
  return id;
}

/// The layers of the names; "*" is all of them. A name without a layer gets a message.
std::vector<AcDbObjectId> layersNamed(const std::vector<std::string>& names) {
  std::vector<AcDbObjectId> ids;
  for (const std::string& name : names) {
    const AcDbObjectId id = name == "*" ? AcDbObjectId() : layerNamed(name);
    if (!id.isNull()) {
      ids.push_back(id);
    } else if (name != "*") {
      say("There is no layer \"" + name + "\".");
    }
    if (name != "*") continue;
    const AcDbObjectPointer<AcDbLayerTable> layers(drawing().layerTableId(), AcDb::kForRead);
    for (const AcDbObjectId& one : layers->recordIds()) {
      if (!one.isErased()) ids.push_back(one);
    }
  }
  return ids;
}

void change(const std::vector<AcDbObjectId>& ids, void (*apply)(AcDbLayerTableRecord&, int),
            int value) {
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    if (layer.openStatus() == Acad::eOk) apply(*layer.object(), value);
  }
}

void listLayers() {
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing().layerTableId(), AcDb::kForRead);
  for (const AcDbObjectId& id : layers->recordIds()) {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
    const ACHAR* name = nullptr;
    if (layer.openStatus() != Acad::eOk || layer->getName(name) != Acad::eOk) continue;
    say("\"" + toUtf8(name) + "\"  colour " + std::to_string(layer->colorIndex()) +
        (layer->isOff() ? "  off" : "  on") + (layer->isFrozen() ? "  frozen" : "") +
        (layer->isLocked() ? "  locked" : "") + (id == drawing().clayer() ? "  current" : ""));
  }
}

void makeLayers(bool makesCurrent) {
  for (const std::string& name : askNames(ACRX_T("\nName of the new layer: "))) {
    const Result<AcDbObjectId> made = makeLayer(drawing(), name);
    if (!made) say(made.message());
    if (made && makesCurrent) drawing().setClayer(made.value());
  }
}

void setLayer() {
  const std::vector<std::string> names = askNames(ACRX_T("\nName of the layer to be current: "));
  if (names.empty()) return;
  const AcDbObjectId id = layerNamed(names.front());
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
  if (layer.openStatus() != Acad::eOk) return say("There is no layer \"" + names.front() + "\".");
  if (layer->isFrozen()) return say("A frozen layer cannot be the current one: thaw it first.");
  drawing().setClayer(id);
}

void colourLayers() {
  acedInitGet(RSG_NOZERO | RSG_NONEG | RSG_NONULL, nullptr);
  int colour = 0;
  if (acedGetInt(ACRX_T("\nColour, 1 to 255: "), &colour) != RTNORM) return;
  if (colour > 255) return say("Colours are numbers from 1 to 255.");
  change(
      layersNamed(askNames(ACRX_T("\nNames of the layers, or *: "))),
      [](AcDbLayerTableRecord& layer, int value) {
        layer.setColorIndex(static_cast<Adesk::UInt16>(value));
      },
      colour);
}

void freezeLayers(bool frozen) {
  std::vector<AcDbObjectId> ids = layersNamed(askNames(ACRX_T("\nNames of the layers, or *: ")));
  const auto current = std::find(ids.begin(), ids.end(), drawing().clayer());
  if (frozen && current != ids.end()) {
    say("The current layer cannot be frozen. Make another one current first.");
    ids.erase(current);
  }
  change(
      ids, [](AcDbLayerTableRecord& layer, int value) { layer.setIsFrozen(value != 0); },
      frozen ? 1 : 0);
}

void switchLayers(bool off) {
  const auto ids = layersNamed(askNames(ACRX_T("\nNames of the layers, or *: ")));
  change(
      ids, [](AcDbLayerTableRecord& layer, int value) { layer.setIsOff(value != 0); }, off ? 1 : 0);
  if (off && std::find(ids.begin(), ids.end(), drawing().clayer()) != ids.end()) {
    say("The current layer is off now: what is drawn will not be seen.");
  }
}

void lockLayers(bool locked) {
  change(
      layersNamed(askNames(ACRX_T("\nNames of the layers, or *: "))),
      [](AcDbLayerTableRecord& layer, int value) { layer.setIsLocked(value != 0); },
      locked ? 1 : 0);
}

void runOption(const std::string& word) {
  if (word == "?") listLayers();
  if (word == "Make" || word == "New") makeLayers(word == "Make");
  if (word == "Set") setLayer();
  if (word == "Color") colourLayers();
  if (word == "ON" || word == "OFF") switchLayers(word == "OFF");
  if (word == "Freeze" || word == "Thaw") freezeLayers(word == "Freeze");
  if (word == "LOck" || word == "Unlock") lockLayers(word == "LOck");
}

}  // namespace

void layerCommand() {
  for (;;) {
    acedInitGet(0, ACRX_T("? Make Set New ON OFF Color Freeze Thaw LOck Unlock eXit"));
    ACHAR word[513] = {0};
    const int answer =
        acedGetKword(ACRX_T("\nOption "
                            "[?/Make/Set/New/ON/OFF/Color/Freeze/Thaw/LOck/Unlock/eXit] <eXit>: "),
                     word);
    const std::string chosen = toUtf8(word);
    if (answer != RTNORM || chosen == "eXit") return;
    runOption(chosen);
    if (app().commands().inputCancelled()) return;
  }
}

}  // namespace tarn::host
