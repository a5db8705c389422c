// Commands and the stack of command groups.
#pragma once

#include "acarray.h"
#include "rxobject.h"

class AcEdUIContext;

using AcRxFunctionPtr = void (*)();

#define ACRX_CMD_MODAL 0x00000000
#define ACRX_CMD_TRANSPARENT 0x00000001
#define ACRX_CMD_USEPICKSET 0x00000002
#define ACRX_CMD_REDRAW 0x00000004
#define ACRX_CMD_NOPERSPECTIVE 0x00000008
#define ACRX_CMD_NOMULTIPLE 0x00000010
#define ACRX_CMD_NOTILEMODE 0x00000020
#define ACRX_CMD_NOPAPERSPACE 0x00000040
#define ACRX_CMD_UNDEFINED 0x00000200
#define ACRX_CMD_DEFUN 0x00000800
#define ACRX_CMD_NOHISTORY 0x00002000
#define ACRX_CMD_NOUNDOMARKER 0x00004000
#define ACRX_CMD_SESSION 0x00200000

/// One command. Owned by the command stack; valid until it is removed or replaced.
class ACADHOST_EXPORT AcEdCommand : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcEdCommand);
  virtual const ACHAR* groupName() const = 0;
  virtual const ACHAR* globalName() const = 0;
  virtual const ACHAR* localName() const = 0;
  virtual Adesk::Int32 commandFlags() const = 0;
  virtual AcRxFunctionPtr functionAddr() const = 0;
  virtual AcEdUIContext* UIContext() const = 0;
};

/// All commands by group. Group, global and local names are compared without regard to case.
class ACADHOST_EXPORT AcEdCommandStack : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcEdCommandStack);

  /// Adds a command. One of the same global name in the same group is replaced. Whatever is
  /// registered last is found first. eInvalidInput: an empty name or no function.
  virtual Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName,
                                       const ACHAR* localName, Adesk::Int32 commandFlags,
                                       AcRxFunctionPtr function, AcEdUIContext* uiContext = nullptr,
                                       int functionCode = -1, void* resourceHandle = nullptr,
                                       AcEdCommand** added = nullptr) = 0;
  /// eKeyNotFound when there is none.
  virtual Acad::ErrorStatus removeCmd(const ACHAR* group, const ACHAR* globalName) = 0;
  virtual Acad::ErrorStatus removeGroup(const ACHAR* group) = 0;
  virtual Acad::ErrorStatus popGroupToTop(const ACHAR* group) = 0;

  /// Exact names, newest registration first; null when there is none.
  virtual AcEdCommand* lookupGlobalCmd(const ACHAR* name) const = 0;
  virtual AcEdCommand* lookupLocalCmd(const ACHAR* name) const = 0;
  virtual AcEdCommand* lookupCmd(const ACHAR* name, bool globalLookup) const = 0;
  /// The command of one group.
  virtual AcEdCommand* lookupInGroup(const ACHAR* group, const ACHAR* globalName) const = 0;

  /// What a user means by a typed name: leading '.' are ignored; a name with '_' is a global name,
  /// first with its underscore (global or local names may be registered so), then without; any
  /// other name is a local name. Null when there is none.
  virtual AcEdCommand* lookupTyped(const ACHAR* typed) const = 0;

  /// All commands of a group, or of all groups when `group` is null, in order of registration.
  virtual void getCommands(const ACHAR* group, AcArray<AcEdCommand*>& commands) const = 0;
};

ACADHOST_EXPORT AcEdCommandStack* acedCommandStackPtr();
#define acedRegCmds (acedCommandStackPtr())
