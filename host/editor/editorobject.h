// The editor object: keeps the reactors and tells them.
#pragma once

#include <string>
#include <vector>

#include "aced.h"
#include "host/editor/commandprocessor.h"

namespace tarn::host {

class ACADHOST_EXPORT EditorObject : public AcEditor {
 public:
  void addReactor(AcRxEventReactor* reactor) override;
  void removeReactor(AcRxEventReactor* reactor) override;

  void notifyWillStart(const std::wstring& command);
  void notifyEnd(const std::wstring& command, CommandOutcome outcome);
  void notifyUnknown(const std::wstring& command, AcDbDatabase* database);
  void notifyVariable(const std::wstring& name, bool before, bool success);
  void notifyViewChanged();
  void notifyQuit();

 private:
  template <typename Call>
  void notify(Call call);

  std::vector<AcRxEventReactor*> reactors_;
};

/// The one editor object; enterEditorObject() puts it into the system registry as "AcEditor".
ACADHOST_EXPORT EditorObject& editorObject();
void enterEditorObject();

}  // namespace tarn::host
