#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "accmd.h"
#include "base/text.h"
#include "host/rx/rxinit.h"
#include "rxclass.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommand, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommandStack, AcRxObject)

namespace tarn::host {

namespace {

class Command final : public AcEdCommand {
 public:
  const ACHAR* groupName() const override { return group.c_str(); }
  const ACHAR* globalName() const override { return global.c_str(); }
  const ACHAR* localName() const override { return local.c_str(); }
  Adesk::Int32 commandFlags() const override { return flags; }
  AcRxFunctionPtr functionAddr() const override { return function; }
  AcEdUIContext* UIContext() const override { return context; }

  std::wstring group, global, local;
  Adesk::Int32 flags = 0;
  AcRxFunctionPtr function = nullptr;
  AcEdUIContext* context = nullptr;
};

bool isEmpty(const ACHAR* text) {
  return text == nullptr || *text == L'\0';
}

/// Commands in order of registration; the newest is the last.
class CommandStack final : public AcEdCommandStack {
 public:
  Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                               Adesk::Int32 commandFlags, AcRxFunctionPtr function,
                               AcEdUIContext* uiContext, int, void*, AcEdCommand** added) override {
    if (isEmpty(group) || isEmpty(globalName) || isEmpty(localName) || function == nullptr) {
      return Acad::eInvalidInput;
    }
    removeCmd(group, globalName);
    auto command = std::make_unique<Command>();
    command->group = group;
    command->global = globalName;
    command->local = localName;
    command->flags = commandFlags;
    command->function = function;
    command->context = uiContext;
    if (added != nullptr) *added = command.get();
    commands_.push_back(std::move(command));
    return Acad::eOk;
  }

  Acad::ErrorStatus removeCmd(const ACHAR* group, const ACHAR* globalName) override {
    return removeIf([&](const Command& command) {
      return equalsIgnoreCase(command.group, std::wstring_view(group)) &&
             equalsIgnoreCase(command.global, std::wstring_view(globalName));
    });
  }

  Acad::ErrorStatus removeGroup(const ACHAR* group) override {
    return removeIf([&](const Command& command) {
      return equalsIgnoreCase(command.group, std::wstring_view(group));
    });
  }

  Acad::ErrorStatus popGroupToTop(const ACHAR* group) override {
    const auto others =
        std::stable_partition(commands_.begin(), commands_.end(), [&](const auto& command) {
          return !equalsIgnoreCase(command->group, std::wstring_view(group));
        });
    return others == commands_.end() ? Acad::eKeyNotFound : Acad::eOk;
  }

  AcEdCommand* lookupGlobalCmd(const ACHAR* name) const override {
    return newest(&Command::global, name);
  }

  AcEdCommand* lookupLocalCmd(const ACHAR* name) const override {
    return newest(&Command::local, name);
  }

  AcEdCommand* lookupCmd(const ACHAR* name, bool globalLookup) const override {
    return globalLookup ? lookupGlobalCmd(name) : lookupLocalCmd(name);
  }

  AcEdCommand* lookupInGroup(const ACHAR* group, const ACHAR* globalName) const override {
    for (const auto& command : commands_) {
      if (equalsIgnoreCase(command->group, std::wstring_view(group)) &&
          equalsIgnoreCase(command->global, std::wstring_view(globalName))) {
        return command.get();
      }
    }
    return nullptr;
  }

  AcEdCommand* lookupTyped(const ACHAR* typed) const override {
    std::wstring_view name = typed;
    bool global = false;
    // "._NAME" and "_.NAME" mean the same.
    while (!name.empty() && (name.front() == L'.' || (name.front() == L'_' && !global))) {
      if (name.front() == L'_') {
        global = true;
        if (AcEdCommand* exact = newest(&Command::global, name)) return exact;
        if (AcEdCommand* exact = newest(&Command::local, name)) return exact;
      }
      name.remove_prefix(1);
    }
    return newest(global ? &Command::global : &Command::local, name);
  }

  void getCommands(const ACHAR* group, AcArray<AcEdCommand*>& commands) const override {
    for (const auto& command : commands_) {
      if (group == nullptr || equalsIgnoreCase(command->group, std::wstring_view(group))) {
        commands.append(command.get());
      }
    }
  }

 private:
  template <typename Matches>
  Acad::ErrorStatus removeIf(Matches matches) {
    const auto kept = std::remove_if(commands_.begin(), commands_.end(),
                                     [&](const auto& command) { return matches(*command); });
    if (kept == commands_.end()) return Acad::eKeyNotFound;
    commands_.erase(kept, commands_.end());
    return Acad::eOk;
  }

  AcEdCommand* newest(std::wstring Command::*name, std::wstring_view wanted) const {
    const auto found = std::find_if(commands_.rbegin(), commands_.rend(), [&](const auto& command) {
      return equalsIgnoreCase((*command).*name, wanted);
    });
    return found == commands_.rend() ? nullptr : found->get();
  }

  std::vector<std::unique_ptr<Command>> commands_;
};

[[maybe_unused]] const bool kRegistered = [] {
  registerRxClasses();
  AcEdCommand::rxInit();
  AcEdCommandStack::rxInit();
  return true;
}();

}  // namespace

}  // namespace tarn::host

AcEdCommandStack* acedCommandStackPtr() {
  static auto* const stack = new tarn::host::CommandStack;
  return stack;
}
