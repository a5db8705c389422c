// The editor's function interface: input, output, system variables, selection, commands. Functions
// return the RT codes (RTNORM 5100 when done). Texts are ACHAR. Main thread only.
#pragma once

#include "acdb.h"
#include "adesk.h"
#include "adscodes.h"
#include "adsdef.h"
#include "dbid.h"

/// Prints to the command line, formatted as wide printf (%s takes a wide text with ACHAR formats of
/// the public interface; %ls does so as well).
ACADHOST_EXPORT int acutPrintf(const ACHAR* format, ...);
ACADHOST_EXPORT int acedPrompt(const ACHAR* text);

/// System variable as a result buffer of its own type. A string is the caller's
/// (acutDelString). RTERROR: unknown name.
ACADHOST_EXPORT int acedGetVar(const ACHAR* name, resbuf* value);
/// RTERROR: unknown, read-only, or another type than the variable's. A short is taken for a real.
ACADHOST_EXPORT int acedSetVar(const ACHAR* name, const resbuf* value);

/// Rules for the next acedGet call: bits RSG_NONULL 1, RSG_NOZERO 2, RSG_NONEG 4, RSG_OTHER 128;
/// keywords separated by blanks, their capital letters the abbreviation.
ACADHOST_EXPORT int acedInitGet(int bits, const ACHAR* keywords);

/// Each asks with `prompt`: RTNORM with the value, RTNONE on Enter, RTKWORD when a keyword of
/// acedInitGet was typed (acedGetInput gives it), RTCAN when cancelled.
ACADHOST_EXPORT int acedGetInt(const ACHAR* prompt, int* value);
ACADHOST_EXPORT int acedGetReal(const ACHAR* prompt, ads_real* value);
/// A distance: a number, or the length between two points.
ACADHOST_EXPORT int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* value);
/// An angle typed in degrees, delivered in radians.
ACADHOST_EXPORT int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* value);
/// cronly 0: the text ends at a blank; else at the end of the line. `value` holds 512 characters
/// and its end.
ACADHOST_EXPORT int acedGetString(int cronly, const ACHAR* prompt, ACHAR* value);
ACADHOST_EXPORT int acedGetString(int cronly, const ACHAR* prompt, ACHAR* value, size_t capacity);
/// "x,y", "x,y,z", or "@dx,dy" relative to the last point.
ACADHOST_EXPORT int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point value);
ACADHOST_EXPORT int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point value);
ACADHOST_EXPORT int acedGetKword(const ACHAR* prompt, ACHAR* value);
ACADHOST_EXPORT int acedGetKword(const ACHAR* prompt, ACHAR* value, size_t capacity);
ACADHOST_EXPORT int acedGetInput(ACHAR* value);

/// Selection sets. Modes: "X" all entities of the drawing, "A" those of the current space, "L" the
/// last one, "P" the previous set, "I" what was selected before the command, "W" inside the window
/// of two points, "C" touching it; nullptr with a point picks there, without one it asks the user,
/// or takes what was selected before a command that has the flag for it. Filters: codes 0, 8, 60,
/// 62, 67 and the brackets of -4. RTERROR: nothing was selected, or an unknown mode or filter;
/// RTCAN: cancelled. Free each set with acedSSFree.
ACADHOST_EXPORT int acedSSGet(const ACHAR* mode, const void* first, const void* second,
                              const resbuf* filter, ads_name set);
ACADHOST_EXPORT int acedSSLength(const ads_name set, Adesk::Int32* count);
ACADHOST_EXPORT int acedSSName(const ads_name set, int index, ads_name entity);
ACADHOST_EXPORT int acedSSAdd(const ads_name entity, const ads_name set, ads_name result);
/// RTERROR when the entity is not in the set.
ACADHOST_EXPORT int acedSSDel(const ads_name entity, const ads_name set);
ACADHOST_EXPORT int acedSSMemb(const ads_name entity, const ads_name set);
ACADHOST_EXPORT int acedSSFree(const ads_name set);
/// Replaces what is selected for the next command; a null set clears it.
ACADHOST_EXPORT int acedSSSetFirst(const ads_name gripSet, const ads_name pickFirst);
/// One entity by a picked point. RTERROR when there is none under it or Enter was given, RTKWORD a
/// keyword of acedInitGet, RTCAN.
ACADHOST_EXPORT int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point);

ACADHOST_EXPORT Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name entity);
ACADHOST_EXPORT Acad::ErrorStatus acdbGetAdsName(ads_name& entity, AcDbObjectId id);

/// Looks for a file on the support path: the folder of the profile's settings, then the drawing's,
/// then that of the program. `result` holds 260 characters unless its size is given.
ACADHOST_EXPORT int acedFindFile(const ACHAR* name, ACHAR* result);
ACADHOST_EXPORT int acedFindFile(const ACHAR* name, ACHAR* result, size_t capacity);

/// Runs a command with its inputs: pairs of type and value, RTNONE or 0 ends them. The inputs must
/// be complete; nothing is asked of the user.
ACADHOST_EXPORT int acedCommandS(int type, ...);
ACADHOST_EXPORT int acedCommand(int type, ...);
ACADHOST_EXPORT int acedCmdS(const resbuf* inputs);
ACADHOST_EXPORT int acedCmd(const resbuf* inputs);

/// A file name by dialog. `flags`: 1 to write a new file, 4 any ending may be typed, 16 the name is
/// a folder as start. The name comes as one RTSTR in `result`.
ACADHOST_EXPORT int acedGetFileD(const ACHAR* title, const ACHAR* initial, const ACHAR* extension,
                                 int flags, resbuf* result);

/// A line over the picture of the current viewport, in no drawing, gone with the next regeneration
/// or redraw. Colour indices 1 to 255, others are the foreground; highlighted lines are dashed.
ACADHOST_EXPORT int acedGrDraw(const ads_point from, const ads_point to, int color, int highlight);
/// A null entity: takes away what was drawn over the picture. Else draws the entity anew.
ACADHOST_EXPORT int acedRedraw(const ads_name entity, int mode);
/// Draws an entity anew for the current view. RTERROR when there is none.
ACADHOST_EXPORT int acdbEntUpd(const ads_name entity);

/// 1 when the user has asked to stop the running operation.
ACADHOST_EXPORT int acedUsrBrk();

/// The meter in the status bar.
ACADHOST_EXPORT int acedSetStatusBarProgressMeter(const ACHAR* label, int minimum, int maximum);
ACADHOST_EXPORT int acedSetStatusBarProgressMeterPos(int position);
ACADHOST_EXPORT void acedRestoreStatusBar();

/// A point, or with `isVector` a direction, of the user's coordinate system in that of the world.
/// This host has one coordinate system.
ACADHOST_EXPORT bool acdbUcs2Wcs(const ads_real* from, ads_real* to, bool isVector);
