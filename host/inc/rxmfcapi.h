// Windows of the host, its window messages, and pixels of the current view.
#pragma once

#include "adesk.h"
#include "adsdef.h"
#include "afxwin.h"

/// The main frame. WM_COPYDATA with data tag 1 and a UTF-16 text with its terminator is text for
/// the command line (a blank ends a command); it is queued and runs once the running command has
/// ended.
ACADHOST_EXPORT CMDIFrameWnd* acedGetAcadFrame();
ACADHOST_EXPORT CWnd* acedGetAcadDockCmdLine();

/// A watcher sees every message before the host handles it. Registering one again keeps its place.
using AcedWatchWinMsgFn = void (*)(const MSG*);
ACADHOST_EXPORT BOOL acedRegisterWatchWinMsg(const AcedWatchWinMsgFn watcher);
ACADHOST_EXPORT BOOL acedRemoveWatchWinMsg(const AcedWatchWinMsgFn watcher);

/// Pixel coordinates are pixel edges of the current view, y down: (0, height) is its lower left
/// corner. World coordinates are drawing units. `windnum` is the viewport's number; there is one
/// view, so every number means it.
ACADHOST_EXPORT BOOL acedCoordFromPixelToWorld(int windnum, CPoint pixel, ads_point world);
ACADHOST_EXPORT void acedCoordFromPixelToWorld(const CPoint& pixel, ads_point world);
/// Rounded to the nearest pixel edge and clamped to 32 bits.
ACADHOST_EXPORT BOOL acedCoordFromWorldToPixel(int windnum, const ads_point world, CPoint& pixel);
