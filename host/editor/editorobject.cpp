#include "host/editor/editorobject.h"

#include <algorithm>

namespace tarn::host {

EditorObject& editorObject() {
  // Never destroyed: reactors of modules may leave when the process ends.
  static auto* const editor = new EditorObject;
  return *editor;
}

void enterEditorObject() {
  AcRxEvent::rxInit();
  AcRxEventReactor::rxInit();
  AcEditor::rxInit();
  AcEditorReactor::rxInit();
  acrxSysRegistry()->atPut(ACED_EDITOR_OBJ, &editorObject());
}

void EditorObject::addReactor(AcRxEventReactor* reactor) {
  if (reactor == nullptr) return;
  if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) {
    reactors_.push_back(reactor);
  }
}

void EditorObject::removeReactor(AcRxEventReactor* reactor) {
  reactors_.erase(std::remove(reactors_.begin(), reactors_.end(), reactor), reactors_.end());
}

template <typename Call>
void EditorObject::notify(Call call) {
  // A reactor may take itself, or another, off the list.
  const auto all = reactors_;
  for (AcRxEventReactor* reactor : all) {
    if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) continue;
    if (auto* editorReactor = dynamic_cast<AcEditorReactor*>(reactor)) call(*editorReactor);
  }
}

void EditorObject::notifyWillStart(const std::wstring& command) {
  notify([&](AcEditorReactor& r) { r.commandWillStart(command.c_str()); });
}

void EditorObject::notifyEnd(const std::wstring& command, CommandOutcome outcome) {
  notify([&](AcEditorReactor& r) {
    if (outcome == CommandOutcome::kEnded) r.commandEnded(command.c_str());
    if (outcome == CommandOutcome::kCancelled) r.commandCancelled(command.c_str());
    if (outcome == CommandOutcome::kFailed) r.commandFailed(command.c_str());
  });
}

void EditorObject::notifyUnknown(const std::wstring& command, AcDbDatabase* database) {
  notify([&](AcEditorReactor& r) { r.unknownCommand(command.c_str(), database); });
}

void EditorObject::notifyVariable(const std::wstring& name, bool before, bool success) {
  notify([&](AcEditorReactor& r) {
    if (before) {
      r.sysVarWillChange(name.c_str());
    } else {
      r.sysVarChanged(name.c_str(), success);
    }
  });
}

void EditorObject::notifyViewChanged() {
  notify([](AcEditorReactor& r) { r.viewChanged(); });
}

void EditorObject::notifyQuit() {
  notify([](AcEditorReactor& r) { r.beginQuit(); });
}

}  // namespace tarn::host
